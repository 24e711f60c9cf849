#pragma once

#include <QList>
#include <QRect>

class QWindow;

// The display layout as far as the program needs it: the bounding box of all
// monitors (the virtual desktop), and the correction of a window whose
// remembered place has fallen off it, for example because the monitor it
// stood on is gone. Everything here is in pixels.
namespace MMonitors {

struct Placement {
    bool corrected = false; // the window had to be brought back
    QRect rect;             // where it belongs (the window's own when not corrected)
};

// The virtual desktop of `screens`: their bounding box. A gap in an L-shaped
// layout counts as desktop.
QRect desktopOf(const QList<QRect>& screens);

// Where window `w` belongs on desktop `d`. Inside it: unchanged. Otherwise
// shifted by the exact distance, right and bottom edges first and left and top
// last, so that a window larger than the desktop ends at its top left corner.
// With `allowPartlyVisible` a window that overlaps the desktop stays.
Placement EnsureWindowOnDesktop(const QRect& w, const QRect& d, bool allowPartlyVisible = false);

// The screens of the running application, as rectangles.
QList<QRect> screenRects();

// Moves `window` onto the desktop when it lies off it; true when it was moved.
bool EnsureWindowOnDesktop(QWindow* window, bool allowPartlyVisible = false, bool moveIt = true);

} // namespace MMonitors
