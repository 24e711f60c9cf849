#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <QSize>
#include <QString>

// Pictures from files (JPEG, PNG and whatever else Qt's image readers know),
// returned at a requested size on a canvas of a given colour, scaled with
// high-quality interpolation. A picture is read at the size it is wanted at:
// a JPEG is decoded at a reduced scale by the reader itself, so a photograph
// of 12000 x 9000 pixels never needs its full size in memory.
namespace mGDIPlusResize {

inline constexpr int kLoadError = 999;
inline const QString kSource = QStringLiteral("GDI+ Module");

// Where the picture goes on a canvas of `box`: with `keepRatio` off the whole
// canvas; with it on the largest rectangle of the picture's proportions that
// fits, at the top left corner.
QRect fitRect(const QSize& picture, const QSize& box, bool keepRatio);

// Loads `file` onto a canvas of `width` x `height` pixels filled with `back`.
// A width or height of -1 means the picture's own size, and both are then set
// to it. Throws KvError 999 "Error loading picture <file>" (source "GDI+
// Module") when the file cannot be read as a picture.
QImage LoadPictureGDIPlus(const QString& file, int& width, int& height, const QColor& back, bool keepRatio);

} // namespace mGDIPlusResize
