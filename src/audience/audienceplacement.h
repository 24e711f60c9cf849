#pragma once

#include <QRect>

// Where the audience window opens: its remembered place (in twips, as the
// settings hold it) made safe and turned into pixels. A size of nothing or
// less, or larger than the whole desktop, and a state other than normal (0) or
// maximised (2), are read as what the host can still see and reach.
namespace audienceplacement {

// The window's size in its design, to which Restore also returns.
inline constexpr int kDesignWidth = 10380;
inline constexpr int kDesignHeight = 7125;

struct Saved {
    int left = 0;
    int top = 0;
    int state = 0;
    int width = kDesignWidth;
    int height = kDesignHeight;
};

struct Placement {
    QRect rect;             // pixels, on the desktop
    bool maximised = false; // full screen on the monitor that holds rect's corner
};

// `twipsPerPixelX/Y` from the screen; `primary` and `desktop` in pixels.
Placement place(const Saved& saved, bool firstStart, const QRect& primary, const QRect& desktop,
                int twipsPerPixelX, int twipsPerPixelY);

// The strip's top for position 1 (at the bottom), in twips: the window's outer
// height less the strip's and 100 more.
inline int bottomStripTop(int windowHeightTwips, int stripHeightTwips) {
    return windowHeightTwips - stripHeightTwips - 100;
}

} // namespace audienceplacement
