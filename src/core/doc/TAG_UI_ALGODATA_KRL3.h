#pragma once

#include <cstddef>
#include <cstdint>

// Byte offsets of the device parameter record that the option pages address directly.
constexpr size_t ALGODATA_OPTION_FIELDS = 38;   // first fixed option field
constexpr size_t ALGODATA_TEXT_FIELDS = 196;    // the five 32-byte text fields
constexpr size_t ALGODATA_TEXT_FIELD_BYTES = 32;
constexpr size_t ALGODATA_TEXT_FIELD_COUNT = 5;
constexpr size_t ALGODATA_TABLE_OFFSETS = 364;  // offsets and sizes of the key tables
constexpr size_t ALGODATA_VARIABLE_AREA = 384;  // key tables and the KN_N / SC_N values
constexpr size_t ALGODATA_VARIABLE_BYTES = 1664;
constexpr size_t ALGODATA_RECORD_BYTES = ALGODATA_VARIABLE_AREA + ALGODATA_VARIABLE_BYTES;

// The device's parameter record. Packed: the 16-bit data width follows the 32-bit buffer
// size directly, and the device-range-valid flag follows the data width directly. The fixed
// option fields are flag bytes and words the option pages test bit by bit, by their offset in
// the record (the action-option flags at 74, 75 and 76, for instance). Key tables hold, per
// entry, a zero-terminated name and a 4-byte little-endian value (numeric table) or a
// zero-terminated value (text table); their offsets count from the variable area.
#pragma pack(push, 1)
struct TAG_UI_ALGODATA_KRL3
{
    uint32_t BSA;            // first byte address of the device area
    uint32_t BEA;            // last byte address, inclusive
    uint32_t DSA;            // first display address
    uint32_t DEA;            // last display address, inclusive
    uint32_t DMA;            // highest display address the device accepts
    uint32_t bufferSize;     // size of the device area in bytes
    int16_t dataWidth;       // bits per display unit: 8, 16, 32 or 64
    uint32_t deviceRangeValid;
    uint32_t addressOffset;  // display offset of the offset layout
    uint32_t algoFlags;      // option flags of the algorithm
    uint8_t optionFields[ALGODATA_TEXT_FIELDS - ALGODATA_OPTION_FIELDS];
    char COM_T[ALGODATA_TEXT_FIELD_BYTES];
    char MCU_T[ALGODATA_TEXT_FIELD_BYTES];
    char CPD_T[ALGODATA_TEXT_FIELD_BYTES];
    char ENV_T[ALGODATA_TEXT_FIELD_BYTES];
    char ADP_T[ALGODATA_TEXT_FIELD_BYTES];
    uint8_t reserved[ALGODATA_TABLE_OFFSETS - ALGODATA_TEXT_FIELDS - ALGODATA_TEXT_FIELD_COUNT * ALGODATA_TEXT_FIELD_BYTES];
    uint16_t numKeyTableOffset;
    uint16_t numKeyTableSize;
    uint16_t textKeyTableOffset;
    uint16_t textKeyTableSize;
    uint16_t reservedTables[2];
    uint16_t knNOffset;      // value of key "KN_N"
    uint16_t knNPresent;
    uint16_t scNOffset;      // value of key "SC_N"
    uint16_t scNPresent;
    uint8_t variable[ALGODATA_VARIABLE_BYTES];
};
#pragma pack(pop)

static_assert(offsetof(TAG_UI_ALGODATA_KRL3, dataWidth) == offsetof(TAG_UI_ALGODATA_KRL3, bufferSize) + 4,
              "data width must follow the buffer size without a gap");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, deviceRangeValid) == offsetof(TAG_UI_ALGODATA_KRL3, dataWidth) + 2,
              "device-range-valid must follow the data width without a gap");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, optionFields) == ALGODATA_OPTION_FIELDS, "option fields start at 38");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, COM_T) == 196, "COM_T at 196");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, MCU_T) == 228, "MCU_T at 228");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, CPD_T) == 260, "CPD_T at 260");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, ENV_T) == 292, "ENV_T at 292");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, ADP_T) == 324, "ADP_T at 324");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, numKeyTableOffset) == 364, "numeric table offset at 364");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, numKeyTableSize) == 366, "numeric table size at 366");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, textKeyTableOffset) == 368, "text table offset at 368");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, textKeyTableSize) == 370, "text table size at 370");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, knNOffset) == 376, "KN_N offset at 376");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, knNPresent) == 378, "KN_N flag at 378");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, scNOffset) == 380, "SC_N offset at 380");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, scNPresent) == 382, "SC_N flag at 382");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, variable) == ALGODATA_VARIABLE_AREA, "variable area at 384");
static_assert(sizeof(TAG_UI_ALGODATA_KRL3) == ALGODATA_RECORD_BYTES, "record size");
