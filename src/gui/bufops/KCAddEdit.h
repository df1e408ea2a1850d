#pragma once

#include <QLineEdit>

#include <cstdint>

// The number edit of the buffer dialogs: a value within bounds, shown in a base (16 unless
// set) with a number of digits. What would leave the bounds is refused as it is typed.
class KCAddEdit : public QLineEdit
{
    Q_OBJECT
public:
    explicit KCAddEdit(QWidget *parent = nullptr);

    void setBounds(uint64_t low, uint64_t high);
    void setBase(int base, int digits);
    void setValue(uint64_t value);
    // The value typed; false when the field holds none.
    bool value(uint64_t &value) const;

private:
    uint64_t m_low = 0;
    uint64_t m_high = UINT32_MAX;
    int m_base = 16;
    int m_digits = 8;
};
