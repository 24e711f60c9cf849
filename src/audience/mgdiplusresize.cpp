#include "mgdiplusresize.h"

#include "core/kverror.h"

#include <QImageReader>
#include <QPainter>
#include <cmath>

namespace mGDIPlusResize {

QRect fitRect(const QSize& picture, const QSize& box, bool keepRatio) {
    if (!keepRatio || picture.isEmpty())
        return QRect(QPoint(0, 0), box);
    const double ri = double(picture.width()) / double(picture.height());
    const double rb = double(box.width()) / double(box.height());
    int w = box.width();
    int h = box.height();
    if (rb < ri)
        h = int(std::lround(box.width() / ri));
    else
        w = int(std::lround(box.height() * ri));
    return QRect(0, 0, w, h);
}

QImage LoadPictureGDIPlus(const QString& file, int& width, int& height, const QColor& back, bool keepRatio) {
    QImageReader reader(file);
    reader.setAutoTransform(true);
    // The readers that scale while decoding (JPEG) use their best filter at this quality.
    reader.setQuality(100);
    const QSize natural = reader.size();
    auto fail = [&file] {
        return KvError(kLoadError, QStringLiteral("Error loading picture ") + file, kSource);
    };
    if (!reader.canRead() || (natural.isValid() && natural.isEmpty()))
        throw fail();

    QImage picture;
    if (width == -1 || height == -1) {
        picture = reader.read();
        if (picture.isNull())
            throw fail();
        width = picture.width();
        height = picture.height();
    }
    if (width <= 0 || height <= 0)
        return QImage();

    const QRect target =
        fitRect(natural.isValid() ? natural : picture.size(), QSize(width, height), keepRatio);
    if (picture.isNull()) {
        if (natural.isValid() && !target.isEmpty())
            reader.setScaledSize(target.size());
        picture = reader.read();
        if (picture.isNull())
            throw fail();
    }
    if (picture.size() != target.size() && !target.isEmpty())
        picture = picture.scaled(target.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);

    QImage canvas(width, height, QImage::Format_RGB32);
    canvas.fill(back.isValid() ? back : QColor(Qt::white));
    QPainter p(&canvas);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    p.drawImage(target.topLeft(), picture);
    p.end();
    return canvas;
}

} // namespace mGDIPlusResize
