#include "twips.h"

#include <QGuiApplication>
#include <QScreen>

namespace {
constexpr int kTwipsPerInch = 1440;

int perPixel(bool horizontal) {
    qreal dpi = 96.0;
    if (auto* s = QGuiApplication::primaryScreen())
        dpi = horizontal ? s->logicalDotsPerInchX() : s->logicalDotsPerInchY();
    if (dpi <= 0)
        dpi = 96.0;
    return qMax(1, int(kTwipsPerInch / dpi));
}
} // namespace

namespace twips {

int perPixelX() {
    return perPixel(true);
}
int perPixelY() {
    return perPixel(false);
}
int toPixelsX(int t) {
    return t / perPixelX();
}
int toPixelsY(int t) {
    return t / perPixelY();
}
int fromPixelsX(int p) {
    return p * perPixelX();
}
int fromPixelsY(int p) {
    return p * perPixelY();
}

QRect toPixels(int left, int top, int width, int height) {
    return QRect(toPixelsX(left), toPixelsY(top), toPixelsX(width), toPixelsY(height));
}

} // namespace twips
