#include "doc/KCAlgoKeys.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace {

constexpr const char *KeyKnN = "KN_N";
constexpr const char *KeyScN = "SC_N";
constexpr size_t ValueBytes = 4;
constexpr size_t SlotBytes = 2;

struct FixedField
{
    const char *key;
    size_t offset;
};

// Keys that name fields of the record's fixed part.
constexpr FixedField FixedFields[] = {
    {"BSA", offsetof(TAG_UI_ALGODATA_KRL3, BSA)},
    {"BEA", offsetof(TAG_UI_ALGODATA_KRL3, BEA)},
    {"DSA", offsetof(TAG_UI_ALGODATA_KRL3, DSA)},
    {"DEA", offsetof(TAG_UI_ALGODATA_KRL3, DEA)},
    {"DMA", offsetof(TAG_UI_ALGODATA_KRL3, DMA)},
    {"BUFSIZE", offsetof(TAG_UI_ALGODATA_KRL3, bufferSize)},
    {"ADROFS", offsetof(TAG_UI_ALGODATA_KRL3, addressOffset)},
    {"ALGOFLAGS", offsetof(TAG_UI_ALGODATA_KRL3, algoFlags)},
};

uint32_t readLe32(const uint8_t *p)
{
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

void writeLe32(uint8_t *p, uint32_t v)
{
    for (size_t i = 0; i < ValueBytes; ++i)
        p[i] = uint8_t(v >> (8 * i));
}

uint16_t readLe16(const uint8_t *p)
{
    return uint16_t(p[0] | p[1] << 8);
}

void writeLe16(uint8_t *p, uint16_t v)
{
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
}

// The zero-terminated name at p, or nullptr when it runs past `end`.
const uint8_t *nameEnd(const uint8_t *p, const uint8_t *end)
{
    const void *zero = std::memchr(p, 0, size_t(end - p));
    return static_cast<const uint8_t *>(zero);
}

} // namespace

bool KCAlgoKeys::isFixedNumericKey(const std::string &key)
{
    for (const FixedField &f : FixedFields)
        if (key == f.key)
            return true;
    return false;
}

uint32_t *KCAlgoKeys::fixedField(const std::string &key) const
{
    for (const FixedField &f : FixedFields)
        if (key == f.key)
            return reinterpret_cast<uint32_t *>(reinterpret_cast<uint8_t *>(&m_record) + f.offset);
    return nullptr;
}

char *KCAlgoKeys::textField(const std::string &key) const
{
    if (key == "COM_T")
        return m_record.COM_T;
    if (key == "MCU_T")
        return m_record.MCU_T;
    if (key == "CPD_T")
        return m_record.CPD_T;
    if (key == "ENV_T")
        return m_record.ENV_T;
    if (key == "ADP_T")
        return m_record.ADP_T;
    return nullptr;
}

bool KCAlgoKeys::table(uint16_t offset, uint16_t size, const uint8_t *&begin, const uint8_t *&end) const
{
    if (offset >= ALGODATA_VARIABLE_BYTES)
        return false;
    begin = m_record.variable + offset;
    end = begin + std::min<size_t>(size, ALGODATA_VARIABLE_BYTES - offset);
    return true;
}

uint8_t *KCAlgoKeys::slotValue(const std::string &key) const
{
    const bool knN = key == KeyKnN;
    if (!knN && key != KeyScN)
        return nullptr;
    const uint16_t present = knN ? m_record.knNPresent : m_record.scNPresent;
    const uint16_t offset = knN ? m_record.knNOffset : m_record.scNOffset;
    return present && offset + SlotBytes <= ALGODATA_VARIABLE_BYTES ? m_record.variable + offset : nullptr;
}

bool KCAlgoKeys::scanNumeric(const std::function<bool(std::string_view, uint8_t *)> &visit) const
{
    const uint8_t *p, *end;
    if (!table(m_record.numKeyTableOffset, m_record.numKeyTableSize, p, end))
        return false;
    while (p < end) {
        const uint8_t *zero = nameEnd(p, end);
        if (!zero || zero + 1 + ValueBytes > end)
            break;
        if (visit(std::string_view(reinterpret_cast<const char *>(p), size_t(zero - p)), const_cast<uint8_t *>(zero + 1)))
            return true;
        p = zero + 1 + ValueBytes;
    }
    return false;
}

bool KCAlgoKeys::scanText(const std::function<bool(std::string_view, std::string_view)> &visit) const
{
    const uint8_t *p, *end;
    if (!table(m_record.textKeyTableOffset, m_record.textKeyTableSize, p, end))
        return false;
    while (p < end) {
        const uint8_t *zero = nameEnd(p, end);
        const uint8_t *valueEnd = zero ? nameEnd(zero + 1, end) : nullptr;
        if (!valueEnd)
            break;
        if (visit(std::string_view(reinterpret_cast<const char *>(p), size_t(zero - p)),
                  std::string_view(reinterpret_cast<const char *>(zero + 1), size_t(valueEnd - zero - 1))))
            return true;
        p = valueEnd + 1;
    }
    return false;
}

uint8_t *KCAlgoKeys::tableValue(const std::string &key) const
{
    uint8_t *at = nullptr;
    scanNumeric([&](std::string_view name, uint8_t *value) {
        if (name != key)
            return false;
        at = value;
        return true;
    });
    return at;
}

uint32_t KCAlgoKeys::numeric(const std::string &key, bool *found) const
{
    uint32_t v = 0;
    bool have = true;
    if (const uint32_t *field = fixedField(key))
        std::memcpy(&v, field, sizeof v);
    else if (const uint8_t *slot = slotValue(key))
        v = readLe16(slot);
    else if (const uint8_t *value = tableValue(key))
        v = readLe32(value);
    else
        have = false;
    if (found)
        *found = have;
    return v;
}

bool KCAlgoKeys::setNumeric(const std::string &key, uint32_t value)
{
    if (uint32_t *field = fixedField(key))
        std::memcpy(field, &value, sizeof value);
    else if (uint8_t *slot = slotValue(key))
        writeLe16(slot, uint16_t(value));
    else if (uint8_t *at = tableValue(key))
        writeLe32(at, value);
    else
        return false;
    return true;
}

bool KCAlgoKeys::text(const std::string &key, std::string &value) const
{
    if (const char *field = textField(key)) {
        if (!field[0])
            return false;
        value.assign(field, strnlen(field, ALGODATA_TEXT_FIELD_BYTES));
        return true;
    }
    return scanText([&](std::string_view name, std::string_view text) {
        if (name != key)
            return false;
        value.assign(text);
        return true;
    });
}

bool KCAlgoKeys::build(const NumericKeys &numericKeys, const TextKeys &textKeys)
{
    std::memset(m_record.COM_T, 0, ALGODATA_TEXT_FIELD_BYTES * ALGODATA_TEXT_FIELD_COUNT);
    std::memset(&m_record.numKeyTableOffset, 0, ALGODATA_RECORD_BYTES - ALGODATA_TABLE_OFFSETS);
    uint8_t *area = m_record.variable;
    size_t used = 0;
    const auto put = [&](const void *bytes, size_t n) {
        if (used + n > ALGODATA_VARIABLE_BYTES)
            return false;
        std::memcpy(area + used, bytes, n);
        used += n;
        return true;
    };
    bool fits = true;

    // The numeric table first, then the two u16 slots, then the text table.
    m_record.numKeyTableOffset = uint16_t(used);
    for (const auto &[key, value] : numericKeys) {
        if (key.empty() || key == KeyKnN || key == KeyScN || isFixedNumericKey(key))
            continue;
        uint8_t v[ValueBytes];
        writeLe32(v, value);
        fits = fits && put(key.c_str(), key.size() + 1) && put(v, ValueBytes);
    }
    m_record.numKeyTableSize = uint16_t(used - m_record.numKeyTableOffset);
    for (const auto &[key, value] : numericKeys) {
        if (uint32_t *field = fixedField(key)) {
            std::memcpy(field, &value, sizeof value);
            continue;
        }
        if (key != KeyKnN && key != KeyScN)
            continue;
        uint8_t v[SlotBytes];
        writeLe16(v, uint16_t(value));
        const uint16_t at = uint16_t(used);
        fits = fits && put(v, SlotBytes);
        (key == KeyKnN ? m_record.knNOffset : m_record.scNOffset) = at;
        (key == KeyKnN ? m_record.knNPresent : m_record.scNPresent) = 1;
    }
    m_record.textKeyTableOffset = uint16_t(used);
    for (const auto &[key, value] : textKeys) {
        if (char *field = textField(key)) {
            const size_t n = std::min(value.size(), ALGODATA_TEXT_FIELD_BYTES - 1);
            std::memcpy(field, value.data(), n);
            fits = fits && n == value.size();
            continue;
        }
        fits = fits && !key.empty() && put(key.c_str(), key.size() + 1) && put(value.c_str(), value.size() + 1);
    }
    m_record.textKeyTableSize = uint16_t(used - m_record.textKeyTableOffset);
    if (!fits) {
        std::memset(m_record.COM_T, 0, ALGODATA_TEXT_FIELD_BYTES * ALGODATA_TEXT_FIELD_COUNT);
        std::memset(&m_record.numKeyTableOffset, 0, ALGODATA_RECORD_BYTES - ALGODATA_TABLE_OFFSETS);
    }
    return fits;
}

KCAlgoKeys::NumericKeys KCAlgoKeys::numericKeys() const
{
    NumericKeys keys;
    scanNumeric([&](std::string_view name, uint8_t *value) {
        keys.emplace_back(std::string(name), readLe32(value));
        return false;
    });
    for (const char *slot : {KeyKnN, KeyScN})
        if (const uint8_t *value = slotValue(slot))
            keys.emplace_back(slot, readLe16(value));
    return keys;
}

KCAlgoKeys::TextKeys KCAlgoKeys::textKeys() const
{
    TextKeys keys;
    for (const char *field : {"COM_T", "MCU_T", "CPD_T", "ENV_T", "ADP_T"}) {
        std::string v;
        if (text(field, v))
            keys.emplace_back(field, v);
    }
    scanText([&](std::string_view name, std::string_view value) {
        keys.emplace_back(std::string(name), std::string(value));
        return false;
    });
    return keys;
}
