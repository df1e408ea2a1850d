#include "devopt/CDialogAutoDDCCtrls.h"

#include <algorithm>
#include <stdexcept>

namespace {

using Size = CDialogAutoDDCCtrls::Size;
using Rect = CDialogAutoDDCCtrls::Rect;

int naturalWidth(const cParamStcBase &c, const CDialogAutoDDCCtrls::Measure &measure)
{
    const int own = measure(c).width;
    if (!c.isGroup())
        return own;
    int widest = 0;
    for (const cParamStcBase &child : c.children)
        widest = std::max(widest, naturalWidth(child, measure));
    return std::max(own, widest + CDialogAutoDDCCtrls::GroupWiden);
}

// Stacks the controls inside a container whose corner is (x, y) and whose width is given;
// returns the container's bottom.
int stack(const std::vector<cParamStcBase> &controls, int x, int y, int width,
          const CDialogAutoDDCCtrls::Measure &measure, std::map<uint32_t, Rect> &out)
{
    int next = y + CDialogAutoDDCCtrls::Indent;
    int bottom = y + CDialogAutoDDCCtrls::Indent;
    for (const cParamStcBase &c : controls) {
        Rect r;
        r.x = x + CDialogAutoDDCCtrls::Indent;
        r.y = next;
        if (c.isGroup()) {
            r.width = std::max(naturalWidth(c, measure), width - CDialogAutoDDCCtrls::GroupWiden);
            r.height = stack(c.children, r.x, r.y, r.width, measure, out) - r.y;
        } else {
            const Size s = measure(c);
            r.width = s.width;
            r.height = s.height;
        }
        out[c.id] = r;
        bottom = r.bottom();
        next = bottom + CDialogAutoDDCCtrls::Gap;
    }
    return bottom + CDialogAutoDDCCtrls::BottomMargin;
}

} // namespace

std::map<uint32_t, Rect> CDialogAutoDDCCtrls::layout(const std::vector<cParamStcBase> &controls,
                                                     const Measure &measure, Size *total)
{
    int widest = 0;
    for (const cParamStcBase &c : controls)
        widest = std::max(widest, naturalWidth(c, measure));
    std::map<uint32_t, Rect> out;
    const int width = widest + GroupWiden;
    const int bottom = stack(controls, 0, 0, width, measure, out);
    if (total)
        *total = {width, bottom};
    return out;
}

cParamStcBase CDialogAutoDDCCtrls::fromItemList(const std::vector<uint32_t> &entries,
                                                const std::vector<cParamStcBase> &items)
{
    const auto item = [&](size_t i) -> const cParamStcBase & {
        if (i >= entries.size() || (entries[i] & MarkerBit) || entries[i] >= items.size())
            throw std::invalid_argument("item list: entry " + std::to_string(i) + " names no item");
        return items[entries[i]];
    };
    cParamStcBase group = item(0);
    cParamStcBase *open = &group;
    for (size_t i = 1; i < entries.size(); ++i) {
        if (entries[i] == NestedGroupMarker) {
            open->children.push_back(item(++i));
            open = &open->children.back();
        } else if (entries[i] & MarkerBit) {
            throw std::invalid_argument("item list: unknown marker " + std::to_string(entries[i]));
        } else {
            open->children.push_back(item(i));
        }
    }
    return group;
}
