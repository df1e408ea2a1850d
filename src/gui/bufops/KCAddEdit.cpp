#include "bufops/KCAddEdit.h"

#include "host/KCNumberText.h"

#include <QValidator>

namespace {

constexpr int HexBase = 16;

// Accepts what can still become a number within the bounds; a complete one within them is
// acceptable.
class BoundsValidator : public QValidator
{
public:
    BoundsValidator(const KCAddEdit *edit, const uint64_t &low, const uint64_t &high, const int &base)
        : QValidator(const_cast<KCAddEdit *>(edit)), m_low(low), m_high(high), m_base(base)
    {
    }
    State validate(QString &input, int &) const override
    {
        const std::string text = input.trimmed().toStdString();
        if (text.empty() || text == "0x" || text == "0X")
            return Intermediate;
        uint64_t v = 0;
        if (!KCNumberText::parse(text, v, m_high, m_base))
            return Invalid;
        return v >= m_low ? Acceptable : Intermediate;
    }

private:
    const uint64_t &m_low;
    const uint64_t &m_high;
    const int &m_base;
};

} // namespace

KCAddEdit::KCAddEdit(QWidget *parent) : QLineEdit(parent)
{
    setValidator(new BoundsValidator(this, m_low, m_high, m_base));
}

void KCAddEdit::setBounds(uint64_t low, uint64_t high)
{
    m_low = low;
    m_high = high;
}

void KCAddEdit::setBase(int base, int digits)
{
    m_base = base;
    m_digits = digits;
}

void KCAddEdit::setValue(uint64_t value)
{
    setText(QString::number(value, m_base).toUpper().rightJustified(m_digits, QLatin1Char('0')));
}

bool KCAddEdit::value(uint64_t &value) const
{
    return KCNumberText::parse(text().toStdString(), value, m_high, m_base) && value >= m_low;
}
