#pragma once

#include <QRect>

class QWidget;

// The main window's remembered place: read at start-up and written at exit,
// in twips, through the settings keys MainLeft, MainTop, MainWidth,
// MainHeight and MainState (0 normal, 2 maximised).
struct WindowPlacement {
    bool maximised = false;
    bool centre = false;                          // first start: centre on the primary screen, keep the size
    int left = 0, top = 0, width = 0, height = 0; // twips; width/height 0 = keep
};

// Reads the saved place. `firstStart` centres the window instead of reading
// its place; the size floor applies in any case except maximised.
WindowPlacement GetWindowPositions(bool firstStart, int currentWidth, int currentHeight);
// Writes the place (errors ignored).
void SaveWindowPositions(int left, int top, int state, int width, int height);

// Moves a top-level window back onto the desktop when it lies outside every
// screen (or, without `allowPartlyVisible`, only partly on one).
void EnsureWindowOnDesktop(QWidget* window, bool allowPartlyVisible, bool moveIt);
