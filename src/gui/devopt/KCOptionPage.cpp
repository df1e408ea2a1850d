#include "KCOptionPage.h"

#include "devopt/CDialogAutoDDCCtrls.h"
#include "host/KCFormat.h"
#include "host/KCHostStrings.h"
#include "host/KCMainProgDataExChange.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>

#include <algorithm>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>

namespace {

// Extra room a group box needs beside its title.
constexpr int GroupTitleMargin = 20;
// A list edit's element holds two hex digits and a little room.
constexpr int ElementChars = 4;

// What a combo box shows when the record holds a value none of its items stands for.
QString invalidText(uint32_t value)
{
    if (!g_pMainProgDataExChange)
        return QString::number(value);
    return QString::fromStdString(
        KCFormat::format(g_pMainProgDataExChange->GetHostString(KCHostStrings::OptionValueInvalid), {value}));
}

} // namespace

KCOptionPage::KCOptionPage(const KCOptionPageDesc &desc, TAG_UI_ALGODATA_KRL3 &record, QWidget *parent)
    : QWidget(parent), m_model(desc, record)
{
    desc.forEach([this](const cParamStcBase &c) { create(c); });
    layOut();
    m_model.setListener(this);
    m_model.Refresh();
}

void KCOptionPage::tag(QWidget *w, uint32_t id, size_t element)
{
    w->setProperty(ControlIdProperty, id);
    w->setProperty(ElementProperty, qulonglong(element));
    m_controls[id].push_back(w);
}

QWidget *KCOptionPage::labelled(const cParamStcBase &c, const std::vector<QWidget *> &fields)
{
    auto *box = new QWidget(this);
    auto *row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    if (!c.caption.empty())
        row->addWidget(new QLabel(QString::fromStdString(c.caption), box));
    for (QWidget *f : fields) {
        f->setParent(box);
        row->addWidget(f);
    }
    return box;
}

void KCOptionPage::create(const cParamStcBase &c)
{
    const QString caption = QString::fromStdString(c.caption);
    const uint32_t id = c.id;
    QWidget *placed = nullptr;
    switch (c.kind) {
    case cParamStcBase::GroupBox: {
        auto *g = new QGroupBox(caption, this);
        tag(g, id);
        placed = g;
        break;
    }
    case cParamStcBase::CheckBox:
    case cParamStcBase::RadioButton: {
        QAbstractButton *b = nullptr;
        if (c.kind == cParamStcBase::CheckBox)
            b = new QCheckBox(caption, this);
        else
            b = new QRadioButton(caption, this);
        // The model decides which radio of a field is checked, not the widget's grouping.
        b->setAutoExclusive(false);
        connect(b, &QAbstractButton::toggled, this, [this, id](bool on) { m_model.setChecked(id, on); });
        tag(b, id);
        placed = b;
        break;
    }
    case cParamStcBase::ComboBox: {
        auto *combo = new QComboBox;
        for (const std::string &item : c.items)
            combo->addItem(QString::fromStdString(item));
        connect(combo, qOverload<int>(&QComboBox::currentIndexChanged), this,
                [this, id](int index) { m_model.setIndex(id, index); });
        tag(combo, id);
        placed = labelled(c, {combo});
        break;
    }
    case cParamStcBase::Edit: {
        auto *edit = new QLineEdit;
        edit->setReadOnly(c.binding.kind == KCOptionBinding::TextKey);
        connect(edit, &QLineEdit::textChanged, this,
                [this, id](const QString &text) { m_model.editChanged(id, text.toStdString()); });
        edit->installEventFilter(this);
        tag(edit, id);
        placed = labelled(c, {edit});
        break;
    }
    case cParamStcBase::ListEdit: {
        std::vector<QWidget *> fields;
        for (uint32_t i = 0; i < c.count; ++i) {
            auto *edit = new QLineEdit;
            edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QLatin1Char('0')) * ElementChars +
                                2 * edit->style()->pixelMetric(QStyle::PM_DefaultFrameWidth) + 6);
            connect(edit, &QLineEdit::textChanged, this,
                    [this, id, i](const QString &text) { m_model.editChanged(id, text.toStdString(), i); });
            edit->installEventFilter(this);
            tag(edit, id, i);
            fields.push_back(edit);
        }
        placed = labelled(c, fields);
        break;
    }
    case cParamStcBase::Static: {
        auto *label = new QLabel(caption, this);
        tag(label, id);
        placed = label;
        break;
    }
    case cParamStcBase::Button: {
        auto *button = new QPushButton(caption, this);
        tag(button, id);
        placed = button;
        break;
    }
    }
    m_placed[id] = placed;
}

void KCOptionPage::layOut()
{
    const auto measure = [this](const cParamStcBase &c) {
        QWidget *w = m_placed.at(c.id);
        if (c.isGroup())
            return CDialogAutoDDCCtrls::Size{w->fontMetrics().horizontalAdvance(static_cast<QGroupBox *>(w)->title()) +
                                                 GroupTitleMargin,
                                             0};
        // Measured in bold, so a value shown in bold (not the default) still fits.
        const QFont normal = w->font();
        QFont bold = normal;
        bold.setBold(true);
        w->setFont(bold);
        const QSize s = w->sizeHint();
        w->setFont(normal);
        return CDialogAutoDDCCtrls::Size{s.width(), s.height()};
    };
    CDialogAutoDDCCtrls::Size total;
    const auto rects = CDialogAutoDDCCtrls::layout(m_model.desc().controls, measure, &total);
    for (const auto &[id, r] : rects) {
        QWidget *w = m_placed.at(id);
        w->setGeometry(r.x, r.y, r.width, r.height);
        if (qobject_cast<QGroupBox *>(w))
            w->lower(); // the frame behind the controls stacked over it
    }
    m_size = QSize(total.width, total.height);
    setMinimumSize(m_size);
}

QWidget *KCOptionPage::control(uint32_t id, size_t element) const
{
    const auto it = m_controls.find(id);
    if (it == m_controls.end() || element >= it->second.size())
        return nullptr;
    return it->second[element];
}

void KCOptionPage::controlRefreshed(const cParamStcBase &c, const KCControlState &state)
{
    const auto it = m_controls.find(c.id);
    if (it == m_controls.end())
        return;
    QWidget *w = it->second.front();
    for (QWidget *shown : it->second) {
        QFont font = shown->font();
        font.setBold(state.differs);
        shown->setFont(font);
    }
    switch (c.kind) {
    case cParamStcBase::CheckBox:
    case cParamStcBase::RadioButton:
        static_cast<QAbstractButton *>(w)->setChecked(state.checked);
        break;
    case cParamStcBase::ComboBox:
        static_cast<QComboBox *>(w)->setCurrentIndex(state.index);
        static_cast<QComboBox *>(w)->setPlaceholderText(state.valid ? QString() : invalidText(state.value));
        break;
    case cParamStcBase::Edit:
        static_cast<QLineEdit *>(w)->setText(QString::fromStdString(state.text));
        break;
    case cParamStcBase::ListEdit:
        for (size_t i = 0; i < it->second.size() && i < state.elements.size(); ++i)
            static_cast<QLineEdit *>(it->second[i])->setText(QString::fromStdString(state.elements[i]));
        break;
    case cParamStcBase::Static:
        // A text read from the record is only known now: the label grows to show it.
        static_cast<QLabel *>(w)->setText(QString::fromStdString(state.text));
        w->resize(std::max(w->width(), w->sizeHint().width()), w->height());
        break;
    default:
        break;
    }
}

bool KCOptionPage::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        const uint32_t id = watched->property(ControlIdProperty).toUInt();
        const size_t element = size_t(watched->property(ElementProperty).toULongLong());
        if (event->type() == QEvent::FocusIn)
            m_model.editFocusIn(id, element);
        else
            m_model.editFocusLost(id, element);
    }
    return QWidget::eventFilter(watched, event);
}
