#include "devopt/KCOptionDefaults.h"

#include "doc/KCAlgoKeys.h"

#include <algorithm>

bool KCOptionDefaults::restore(TAG_UI_ALGODATA_KRL3 &record, const DEVICE_KRLXDEF_ITEM &device)
{
    std::fill(std::begin(record.optionFields), std::end(record.optionFields), uint8_t(0));
    uint8_t *bytes = reinterpret_cast<uint8_t *>(&record);
    for (const auto &[offset, value] : device.optionBytes)
        if (offset >= ALGODATA_OPTION_FIELDS && offset < ALGODATA_TEXT_FIELDS)
            bytes[offset] = value;
    return KCAlgoKeys(record).build(device.numericKeys, device.textKeys);
}
