#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

// Device kinds: how selecting the device reconfigures the document and which layout shows it.
enum DEVICE_KIND : uint32_t {
    DEVICE_KIND_STANDARD = 0x0, // byte, word or fuse-map layouts over the device range
    DEVICE_KIND_OFFSET = 0x1,   // addresses shown shifted by the device's address offset
    DEVICE_KIND_PIC18F = 0x2,   // program, ID, configuration and EEPROM areas of one buffer
};

// The device a document is bound to, as the device database describes it.
struct DEVICE_KRLXDEF_ITEM
{
    std::string name;
    std::string vendor;
    uint32_t type = 0;       // the database's 32-bit device type
    uint32_t family = 0;     // index of the family the device belongs to
    uint32_t kind = DEVICE_KIND_STANDARD;
    uint64_t bufferSize = 0;
    int dataWidth = 8;

    // Address record of the device (byte and display ranges, highest display address).
    uint32_t BSA = 0;
    uint32_t BEA = 0;
    uint32_t DSA = 0;
    uint32_t DEA = 0;
    uint32_t DMA = 0;
    uint32_t addressOffset = 0;

    uint32_t optionType = 0;      // which option pages edit its parameter record
    std::string familyName;       // e.g. "SPI NOR flash"
    std::string layout;           // the buffer layout it opens in
    std::string defaultFileType;  // format name: "intel", "jedec", "bin", ...
    uint32_t fuseCount = 0;       // PLDs: fuses of the JEDEC map
    // Defaults of the parameter record: fixed option bytes by record offset, and keys.
    std::vector<std::pair<uint32_t, uint8_t>> optionBytes;
    std::vector<std::pair<std::string, uint32_t>> numericKeys;
    std::vector<std::pair<std::string, std::string>> textKeys;
    // What a production run needs: the programming engine and its name for the chip.
    std::string engine;
    std::string engineChip;
    std::string engineEmulation; // the engine's emulated chip of that kind, for tests without hardware

    bool operator==(const DEVICE_KRLXDEF_ITEM &o) const
    {
        return name == o.name && vendor == o.vendor && type == o.type && family == o.family && kind == o.kind &&
               bufferSize == o.bufferSize && dataWidth == o.dataWidth && BSA == o.BSA && BEA == o.BEA &&
               DSA == o.DSA && DEA == o.DEA && DMA == o.DMA && addressOffset == o.addressOffset &&
               optionType == o.optionType && familyName == o.familyName && layout == o.layout &&
               defaultFileType == o.defaultFileType && fuseCount == o.fuseCount && optionBytes == o.optionBytes &&
               numericKeys == o.numericKeys && textKeys == o.textKeys && engine == o.engine &&
               engineChip == o.engineChip && engineEmulation == o.engineEmulation;
    }
};
