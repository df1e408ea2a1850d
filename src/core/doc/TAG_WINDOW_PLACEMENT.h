#pragma once

// How a document window was shown: minimised or maximised, or normal.
enum : int {
    PLACEMENT_NORMAL = 0,
    PLACEMENT_MINIMIZED = 1,
    PLACEMENT_MAXIMIZED = 2,
};

// Where the document's window stood when a project was written: its normal position and
// size in the host's window area, and its state. Plain data: the host fills it while the
// window moves and puts the window there again when a project is opened.
struct TAG_WINDOW_PLACEMENT
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    int showState = PLACEMENT_NORMAL;

    bool operator==(const TAG_WINDOW_PLACEMENT &o) const
    {
        return x == o.x && y == o.y && width == o.width && height == o.height && showState == o.showState;
    }
    bool operator!=(const TAG_WINDOW_PLACEMENT &o) const { return !(*this == o); }
};
