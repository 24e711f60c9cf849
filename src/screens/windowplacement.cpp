#include "windowplacement.h"

#include "audience/mmonitors.h"
#include "core/appsettings.h"
#include "core/settings.h"
#include "mainlayout.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

using namespace settings;

WindowPlacement GetWindowPositions(bool firstStart, int currentWidth, int currentHeight) {
    WindowPlacement p;
    p.width = currentWidth;
    p.height = currentHeight;
    const int state = readInt(keys::MainState);
    if (state == 2) {
        p.maximised = true;
        p.left = readText(keys::MainLeft).toInt();
        p.top = readText(keys::MainTop).toInt();
        return p;
    }
    if (firstStart) {
        p.centre = true;
    } else {
        p.left = readText(keys::MainLeft).toInt();
        p.top = readText(keys::MainTop).toInt();
        p.width = readText(keys::MainWidth, QString::number(mainlayout::kRestoreMinWidth)).toInt();
    }
    if (p.width < mainlayout::kRestoreMinWidth)
        p.width = mainlayout::kRestoreMinWidth;
    p.height = readText(keys::MainHeight, QString::number(mainlayout::kRestoreMinHeight)).toInt();
    if (p.height < mainlayout::kRestoreMinHeight)
        p.height = mainlayout::kRestoreMinHeight;
    return p;
}

void SaveWindowPositions(int left, int top, int state, int width, int height) {
    try {
        writeText(keys::MainLeft, QString::number(left));
        writeText(keys::MainTop, QString::number(top));
        writeInt(keys::MainState, state);
        writeText(keys::MainWidth, QString::number(width));
        writeText(keys::MainHeight, QString::number(height));
    } catch (...) {
        // A place that cannot be saved is not worth a message at exit.
    }
}

void EnsureWindowOnDesktop(QWidget* window, bool allowPartlyVisible, bool moveIt) {
    if (!window)
        return;
    // The window may not have its native window yet (it is shown after the
    // splash): its frame as the widget knows it is checked instead.
    const MMonitors::Placement p = MMonitors::EnsureWindowOnDesktop(
        window->frameGeometry(), MMonitors::desktopOf(MMonitors::screenRects()), allowPartlyVisible);
    if (p.corrected && moveIt)
        window->move(p.rect.topLeft());
}
