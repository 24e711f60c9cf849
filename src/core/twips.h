#pragma once

#include <QRect>

// Measures of the screens are kept in twips, 1440 to the inch, and turned into
// pixels at the widget's edge with the primary screen's logical resolution.
namespace twips {

// Whole twips per pixel, horizontally and vertically (15 at 96 dots an inch).
int perPixelX();
int perPixelY();

int toPixelsX(int twips);
int toPixelsY(int twips);
int fromPixelsX(int pixels);
int fromPixelsY(int pixels);
QRect toPixels(int left, int top, int width, int height);

} // namespace twips
