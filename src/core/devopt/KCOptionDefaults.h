#pragma once

#include "doc/DEVICE_KRLXDEF_ITEM.h"
#include "doc/TAG_UI_ALGODATA_KRL3.h"

// The device's own option settings: its option bytes over cleared option fields, and its
// keys laid out anew. What the options view's default button restores.
class KCOptionDefaults
{
public:
    // False when the device's keys do not fit the record (its key area is then cleared).
    static bool restore(TAG_UI_ALGODATA_KRL3 &record, const DEVICE_KRLXDEF_ITEM &device);
};
