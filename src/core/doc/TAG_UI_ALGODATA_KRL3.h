#pragma once

#include <cstddef>
#include <cstdint>

// Sizes of the option and key-table areas of the device parameter record.
constexpr size_t ALGODATA_OPTION_BYTES = 160;
constexpr size_t ALGODATA_KEYTABLE_BYTES = 320;

// The device's parameter record. Packed: the 16-bit data width follows the 32-bit buffer
// size directly, and the device-range-valid flag follows the data width directly.
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
    uint8_t reservedHeader[158];
    // Option flag bytes (offset 196) and key tables (offset 356) of the option pages.
    uint8_t optionBytes[ALGODATA_OPTION_BYTES];
    uint8_t keyTables[ALGODATA_KEYTABLE_BYTES];
};
#pragma pack(pop)

static_assert(offsetof(TAG_UI_ALGODATA_KRL3, dataWidth) == offsetof(TAG_UI_ALGODATA_KRL3, bufferSize) + 4,
              "data width must follow the buffer size without a gap");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, deviceRangeValid) == offsetof(TAG_UI_ALGODATA_KRL3, dataWidth) + 2,
              "device-range-valid must follow the data width without a gap");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, optionBytes) == 196, "option bytes start at 196");
static_assert(offsetof(TAG_UI_ALGODATA_KRL3, keyTables) == 356, "key tables start at 356");
static_assert(sizeof(TAG_UI_ALGODATA_KRL3) == 676, "record size");
