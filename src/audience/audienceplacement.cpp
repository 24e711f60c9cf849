#include "audienceplacement.h"

#include "audience/mmonitors.h"

namespace audienceplacement {

Placement place(const Saved& saved, bool firstStart, const QRect& primary, const QRect& desktop,
                int twipsPerPixelX, int twipsPerPixelY) {
    const int tx = qMax(1, twipsPerPixelX);
    const int ty = qMax(1, twipsPerPixelY);
    Placement p;
    p.maximised = saved.state == 2;
    // A size of nothing or less in either direction: the design size in both.
    const bool sized = saved.width > 0 && saved.height > 0;
    int w = (sized ? saved.width : kDesignWidth) / tx;
    int h = (sized ? saved.height : kDesignHeight) / ty;
    if (!desktop.isEmpty()) {
        w = qMin(w, desktop.width());
        h = qMin(h, desktop.height());
    }
    w = qMax(w, 1);
    h = qMax(h, 1);
    if (firstStart && !p.maximised) {
        // The design size, centred on the primary screen: the only centring there is.
        w = qMin(kDesignWidth / tx, primary.width());
        h = qMin(kDesignHeight / ty, primary.height());
        p.rect =
            QRect(primary.x() + (primary.width() - w) / 2, primary.y() + (primary.height() - h) / 2, w, h);
    } else {
        p.rect = QRect(saved.left / tx, saved.top / ty, w, h);
    }
    p.rect = MMonitors::EnsureWindowOnDesktop(p.rect, desktop).rect;
    return p;
}

} // namespace audienceplacement
