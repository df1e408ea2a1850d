#pragma once

#include <QDialog>
#include <QStringList>

class KCDeviceDatabase;
class QLineEdit;
class QTreeWidget;

// Device > Select Device: the database as a list with a filter that narrows it as the user
// types (name or vendor), the recently used devices first.
class KCSelectDeviceDialog : public QDialog
{
    Q_OBJECT
public:
    KCSelectDeviceDialog(const KCDeviceDatabase &database, const QStringList &recent, QWidget *parent = nullptr);

    // The chosen device's name; empty when none is selected.
    QString selectedName() const;
    void setFilter(const QString &text);
    QTreeWidget *list() const { return m_list; }

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void refill();

    const KCDeviceDatabase &m_database;
    QStringList m_recent;
    QLineEdit *m_filter;
    QTreeWidget *m_list;
};
