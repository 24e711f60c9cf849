#include "mmonitors.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

namespace MMonitors {

QRect desktopOf(const QList<QRect>& screens) {
    QRect d;
    for (const QRect& s : screens)
        d = d.united(s);
    return d;
}

Placement EnsureWindowOnDesktop(const QRect& w, const QRect& d, bool allowPartlyVisible) {
    if (d.isEmpty() || d.united(w) == d)
        return {false, w};
    if (allowPartlyVisible && d.intersects(w))
        return {false, w};
    QRect r = w;
    // QRect's right() and bottom() are the last pixel inside; compare the edges past it.
    if (r.x() + r.width() > d.x() + d.width())
        r.moveLeft(d.x() + d.width() - r.width());
    if (r.y() + r.height() > d.y() + d.height())
        r.moveTop(d.y() + d.height() - r.height());
    if (r.x() < d.x())
        r.moveLeft(d.x());
    if (r.y() < d.y())
        r.moveTop(d.y());
    return {true, r};
}

QList<QRect> screenRects() {
    QList<QRect> out;
    for (QScreen* s : QGuiApplication::screens())
        out << s->geometry();
    return out;
}

bool EnsureWindowOnDesktop(QWindow* window, bool allowPartlyVisible, bool moveIt) {
    if (!window)
        return false;
    const Placement p =
        EnsureWindowOnDesktop(window->frameGeometry(), desktopOf(screenRects()), allowPartlyVisible);
    if (p.corrected && moveIt)
        window->setFramePosition(p.rect.topLeft());
    return p.corrected;
}

} // namespace MMonitors
