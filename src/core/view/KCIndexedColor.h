#pragma once

#include <cstdint>
#include <vector>

// A text colour and a background colour, each 0xRRGGBB.
struct TAG_TextNBkColors
{
    uint32_t text;
    uint32_t background;
};

// The process-wide table of colour pairs that views and dialogs draw with; they register
// the pairs they need and refer to them by index. The first construction registers the
// five default pairs; pairs are never removed.
class KCIndexedColor
{
public:
    // Default pairs, in registration order.
    enum : int { Window = 0, WindowGrey = 1, WhiteOnBlue = 2, BlackOnLavender = 3, BlackOnBrown = 4 };
    // Fill between the data of an image: dimmed, so padding does not read as data.
    static constexpr uint32_t GapText = 0xA8A8A8;
    static constexpr uint32_t GapBackground = 0xF6F6F6;

    // System colours the first two pairs use until the host sets its own palette.
    static constexpr uint32_t DefaultWindowText = 0x000000;
    static constexpr uint32_t DefaultWindow = 0xFFFFFF;
    static constexpr uint32_t DefaultGreyText = 0x808080;

    KCIndexedColor();

    // Index of the first pair equal in both colours; appended when there is none.
    int GetIndexOf(uint32_t text, uint32_t background);
    // The pair at `index`; the outputs stay as they are for an index outside the table.
    void GetColorOf(int index, uint32_t &text, uint32_t &background) const;
    // Blends text and background with the pair at `index`, channel by channel:
    // indexed * factor + given * (1 - factor), truncated.
    void MixWith(int index, uint32_t &text, uint32_t &background, double factor) const;

    // The host's window-text, window and grey-text colours for the first two pairs.
    static void setSystemColors(uint32_t windowText, uint32_t window, uint32_t greyText);
    static int count();

    static std::vector<TAG_TextNBkColors> Color;
};
