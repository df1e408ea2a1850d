#pragma once

#include "devopt/cParamStcBase.h"

#include <cstdint>
#include <functional>
#include <map>
#include <vector>

// Places dynamic controls: stacked top to bottom inside their group, the first 20 units right
// of and below the group's corner, each next one 4 below the last, the group ending 10 below
// its last control. A group is as wide as its widest control plus 40, and a nested group
// never narrower than its parent less 40.
class CDialogAutoDDCCtrls
{
public:
    struct Size
    {
        int width = 0;
        int height = 0;
    };
    struct Rect
    {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        int bottom() const { return y + height; }
    };
    using Measure = std::function<Size(const cParamStcBase &)>;

    static constexpr int Indent = 20;
    static constexpr int Gap = 4;
    static constexpr int BottomMargin = 10;
    static constexpr int GroupWiden = 40;
    // Item lists: an entry with the top bit set is a marker.
    static constexpr uint32_t MarkerBit = 0x80000000u;
    static constexpr uint32_t NestedGroupMarker = 0x80000001u;

    // Lays out `controls` inside a container at (0, 0): the rectangle of every control by
    // its id, and in `total` the container's size.
    static std::map<uint32_t, Rect> layout(const std::vector<cParamStcBase> &controls, const Measure &measure,
                                           Size *total = nullptr);

    // A group from an item list: the first entry is the group, the rest its contents; a
    // nested-group marker makes the next entry a group holding the rest of the list.
    // Other entries are indexes into `items`.
    static cParamStcBase fromItemList(const std::vector<uint32_t> &entries, const std::vector<cParamStcBase> &items);
};
