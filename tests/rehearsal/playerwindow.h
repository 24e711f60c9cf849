#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QString>

// The player's video window as the X server has it: found among the top-level
// windows by its WM_CLASS (instance or class name), with its place on the
// root window and its title.
struct PlayerWindow {
    bool found = false;
    QRect rect;       // in root-window pixels
    QString title;    // WM_NAME
    QString instance; // WM_CLASS, first part
    QString wmClass;  // WM_CLASS, second part

    static PlayerWindow find(const QString& className);
};

// Waits until the X server has carried out every request sent to it so far.
void syncWithDisplay();

// What a part of a screen shot shows, in shares of its pixels.
struct PictureReading {
    double black = 0;      // every channel under 24
    double lit = 0;        // some channel over 64: a logo, a text, a picture
    double background = 0; // within a small distance of the colour asked about
    QColor mean;

    // Reads `area` of `screen`, less a margin that window edges and scaling blur.
    static PictureReading of(const QImage& screen, const QRect& area, const QColor& background);
    QString describe() const;
};
