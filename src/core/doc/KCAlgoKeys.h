#pragma once

#include "doc/TAG_UI_ALGODATA_KRL3.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Named keys of a device parameter record. Numeric keys are looked up among the record's
// fixed fields first, then in the "KN_N" and "SC_N" slots, then in the numeric table; text
// keys in the five 32-byte fields, then in the text table. Names match exactly and
// case-sensitively. Scans never leave the record, whatever its tables claim.
class KCAlgoKeys
{
public:
    using NumericKeys = std::vector<std::pair<std::string, uint32_t>>;
    using TextKeys = std::vector<std::pair<std::string, std::string>>;

    explicit KCAlgoKeys(TAG_UI_ALGODATA_KRL3 &record) : m_record(record) {}

    // The value, 0 and `found` false when the record lacks the key.
    uint32_t numeric(const std::string &key, bool *found = nullptr) const;
    // Writes over an existing key's value; a missing key is left missing (false).
    bool setNumeric(const std::string &key, uint32_t value);
    // False when the record lacks the key; a text field that starts with a zero byte is absent.
    bool text(const std::string &key, std::string &value) const;

    // Lays the keys out in the record: "KN_N" and "SC_N" in their slots, the five text
    // fields in place, the rest in the two tables. False, and the record's key area
    // cleared, when they do not fit.
    bool build(const NumericKeys &numericKeys, const TextKeys &textKeys);
    // Every key the record holds, in table order (fixed fields not included).
    NumericKeys numericKeys() const;
    TextKeys textKeys() const;

    static bool isFixedNumericKey(const std::string &key);

private:
    uint32_t *fixedField(const std::string &key) const;
    // The value of "KN_N" or "SC_N" when the record holds it, else null.
    uint8_t *slotValue(const std::string &key) const;
    // The 4 value bytes of a numeric table entry, else null.
    uint8_t *tableValue(const std::string &key) const;
    // Walks a table's entries until `visit` returns true (then true).
    bool scanNumeric(const std::function<bool(std::string_view, uint8_t *)> &visit) const;
    bool scanText(const std::function<bool(std::string_view, std::string_view)> &visit) const;
    char *textField(const std::string &key) const;
    // The table's bytes within the variable area, clipped to it.
    bool table(uint16_t offset, uint16_t size, const uint8_t *&begin, const uint8_t *&end) const;

    TAG_UI_ALGODATA_KRL3 &m_record;
};
