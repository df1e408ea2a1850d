#pragma once

#include "devopt/KCOptionPageListener.h"
#include "devopt/KCOptionPageModel.h"

#include <QWidget>

#include <map>
#include <vector>

// The one page widget of the option page family: renders any page description with check
// boxes, radio buttons, combo boxes, edits and group boxes placed by the auto layout, and
// forwards every notification to the page model, which holds the rules. Each control
// carries its control id as the "controlId" property (list edit elements also "element").
class KCOptionPage : public QWidget, private KCOptionPageListener
{
    Q_OBJECT
public:
    static constexpr const char *ControlIdProperty = "controlId";
    static constexpr const char *ElementProperty = "element";

    KCOptionPage(const KCOptionPageDesc &desc, TAG_UI_ALGODATA_KRL3 &record, QWidget *parent = nullptr);

    QString className() const { return QString::fromStdString(m_model.desc().className); }
    KCOptionPageModel &model() { return m_model; }
    // The control with the id (a list edit's element `element`), null when the page has none.
    QWidget *control(uint32_t id, size_t element = 0) const;
    // The size the auto layout gave the page.
    QSize pageSize() const { return m_size; }

    // Fills every control from the record.
    void Refresh() { m_model.Refresh(); }
    // A window message for the page (write back, or the ignored one); true when handled.
    bool message(uint32_t msg) { return m_model.message(msg); }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void controlRefreshed(const cParamStcBase &control, const KCControlState &state) override;
    void create(const cParamStcBase &c);
    QWidget *labelled(const cParamStcBase &c, const std::vector<QWidget *> &fields);
    void tag(QWidget *w, uint32_t id, size_t element = 0);
    void layOut();

    KCOptionPageModel m_model;
    std::map<uint32_t, QWidget *> m_placed;                // what the layout moves, by id
    std::map<uint32_t, std::vector<QWidget *>> m_controls; // what carries the id
    QSize m_size;
};
