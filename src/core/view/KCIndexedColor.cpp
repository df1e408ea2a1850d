#include "view/KCIndexedColor.h"

#include <cstddef>

namespace {

constexpr uint32_t White = 0xFFFFFF;
constexpr uint32_t Black = 0x000000;
constexpr uint32_t Blue = 0x0000FF;
constexpr uint32_t Lavender = 0xD3D4FF;
constexpr uint32_t Brown = 0xC86432;
constexpr uint32_t ChannelMask = 0xFF;
constexpr int ChannelShifts[] = {16, 8, 0};

uint32_t mix(uint32_t indexed, uint32_t given, double factor)
{
    uint32_t out = 0;
    for (int shift : ChannelShifts) {
        const double a = (indexed >> shift) & ChannelMask;
        const double b = (given >> shift) & ChannelMask;
        const double v = a * factor + b * (1.0 - factor);
        const uint32_t channel = v <= 0 ? 0 : v >= ChannelMask ? ChannelMask : static_cast<uint32_t>(v);
        out |= channel << shift;
    }
    return out;
}

} // namespace

std::vector<TAG_TextNBkColors> KCIndexedColor::Color;

KCIndexedColor::KCIndexedColor()
{
    if (!Color.empty())
        return;
    Color.push_back({DefaultWindowText, DefaultWindow});
    Color.push_back({DefaultWindowText, DefaultGreyText});
    Color.push_back({White, Blue});
    Color.push_back({Black, Lavender});
    Color.push_back({Black, Brown});
}

int KCIndexedColor::GetIndexOf(uint32_t text, uint32_t background)
{
    for (size_t i = 0; i < Color.size(); ++i)
        if (Color[i].text == text && Color[i].background == background)
            return static_cast<int>(i);
    Color.push_back({text, background});
    return static_cast<int>(Color.size() - 1);
}

void KCIndexedColor::GetColorOf(int index, uint32_t &text, uint32_t &background) const
{
    if (index < 0 || index >= count())
        return;
    text = Color[index].text;
    background = Color[index].background;
}

void KCIndexedColor::MixWith(int index, uint32_t &text, uint32_t &background, double factor) const
{
    if (index < 0 || index >= count())
        return;
    text = mix(Color[index].text, text, factor);
    background = mix(Color[index].background, background, factor);
}

void KCIndexedColor::setSystemColors(uint32_t windowText, uint32_t window, uint32_t greyText)
{
    KCIndexedColor registerDefaults;
    Color[Window] = {windowText, window};
    Color[WindowGrey] = {windowText, greyText};
}

int KCIndexedColor::count()
{
    return static_cast<int>(Color.size());
}
