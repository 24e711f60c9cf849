#include "audience/mgdiplusresize.h"
#include "audience/mmonitors.h"
#include "core/kverror.h"
#include "testrunner.h"

#include <QImageReader>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QTest>

// Picture loading and fitting, and the placing of a window back on the desktop.
class TestPicture : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    // A picture of `size`: left half red, right half blue.
    QString makePicture(const QString& name, QSize size) {
        QImage img(size, QImage::Format_RGB32);
        img.fill(Qt::red);
        for (int y = 0; y < size.height(); ++y)
            for (int x = size.width() / 2; x < size.width(); ++x)
                img.setPixel(x, y, qRgb(0, 0, 255));
        const QString path = m_dir.filePath(name);
        img.save(path);
        return path;
    }

private slots:
    // Where the picture lands on a canvas of the back colour (green): over
    // the whole canvas, or keeping its ratio at the top left; -1 asks for
    // the picture's own size, which both sizes then report.
    void fitted_data() {
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QSize>("asked");
        QTest::addColumn<bool>("keepRatio");
        QTest::addColumn<QSize>("canvas");
        QTest::addColumn<QRect>("drawn");
        QTest::newRow("stretched over the whole canvas")
            << QSize(400, 100) << QSize(300, 300) << false << QSize(300, 300) << QRect(0, 0, 300, 300);
        QTest::newRow("wide, keeping its ratio: the lower part stays back colour")
            << QSize(400, 100) << QSize(300, 300) << true << QSize(300, 300) << QRect(0, 0, 300, 75);
        QTest::newRow("tall, keeping its ratio: the right part stays back colour")
            << QSize(100, 400) << QSize(300, 300) << true << QSize(300, 300) << QRect(0, 0, 75, 300);
        QTest::newRow("keeping its ratio, rounded to whole pixels")
            << QSize(3, 2) << QSize(100, 100) << true << QSize(100, 100) << QRect(0, 0, 100, 67);
        QTest::newRow("a width of 800 is lost when the height is -1")
            << QSize(64, 48) << QSize(800, -1) << true << QSize(64, 48) << QRect(0, 0, 64, 48);
        QTest::newRow("height given, width -1")
            << QSize(64, 48) << QSize(-1, 50) << false << QSize(64, 48) << QRect(0, 0, 64, 48);
    }
    void fitted() {
        QFETCH(QSize, picture);
        QFETCH(QSize, asked);
        QFETCH(bool, keepRatio);
        QFETCH(QSize, canvas);
        QFETCH(QRect, drawn);
        int w = asked.width(), h = asked.height();
        const QImage img =
            mGDIPlusResize::LoadPictureGDIPlus(makePicture("p.png", picture), w, h, Qt::green, keepRatio);
        QCOMPARE(img.size(), canvas);
        QCOMPARE(QSize(w, h), canvas);
        QCOMPARE(QColor(img.pixel(drawn.topLeft())), QColor(Qt::red));
        QCOMPARE(QColor(img.pixel(drawn.bottomRight())), QColor(Qt::blue));
        if (drawn.width() < canvas.width())
            QCOMPARE(QColor(img.pixel(drawn.right() + 1, 0)), QColor(Qt::green));
        if (drawn.height() < canvas.height())
            QCOMPARE(QColor(img.pixel(0, drawn.bottom() + 1)), QColor(Qt::green));
    }

    void aFileThatIsNoPictureRaises999_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("missing") << "missing.jpg" << QByteArray();
        QTest::newRow("damaged JPEG") << "damaged.jpg" << QByteArray("\xFF\xD8\xFF\xE0 not really", 16);
        QTest::newRow("text named .png") << "text.png" << QByteArray("hello");
        QTest::newRow("empty file") << "empty.jpg" << QByteArray("");
    }
    void aFileThatIsNoPictureRaises999() {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        const QString path = m_dir.filePath(name);
        if (name != "missing.jpg") {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(bytes);
        }
        int w = 100, h = 100;
        try {
            mGDIPlusResize::LoadPictureGDIPlus(path, w, h, Qt::white, false);
            QFAIL("no error raised");
        } catch (const KvError& e) {
            QCOMPARE(e.number(), 999);
            QCOMPARE(e.description(), "Error loading picture " + path);
            QCOMPARE(e.source(), QString("GDI+ Module"));
        }
    }

    // 12000 x 9000 pixels would take 432 MB decoded; read at the window's size
    // it must fit under an allocation limit of 100 MB.
    void aHugeJpegIsReadAtTheSizeWanted() {
        const QString path = m_dir.filePath("huge.jpg");
        {
            QImage mono(12000, 9000, QImage::Format_Mono);
            mono.fill(1);
            for (int y = 0; y < 9000; y += 2)
                std::memset(mono.scanLine(y), 0, size_t(mono.bytesPerLine() / 2));
            QImageWriter writer(path, "jpeg");
            writer.setQuality(30);
            QVERIFY2(writer.write(mono), qPrintable(writer.errorString()));
        }
        const int limit = QImageReader::allocationLimit();
        QImageReader::setAllocationLimit(100);
        auto restore = qScopeGuard([limit] { QImageReader::setAllocationLimit(limit); });
        int w = 1920, h = 1080;
        const QImage img = mGDIPlusResize::LoadPictureGDIPlus(path, w, h, Qt::white, false);
        QCOMPARE(img.size(), QSize(1920, 1080));
        // The limit does bite: the picture at its own size is refused.
        int nw = -1, nh = -1;
        QVERIFY_THROWS_EXCEPTION(KvError, mGDIPlusResize::LoadPictureGDIPlus(path, nw, nh, Qt::white, false));
    }

    void windowBackOnTheDesktop_data() {
        QTest::addColumn<QList<QRect>>("screens");
        QTest::addColumn<QRect>("window");
        QTest::addColumn<bool>("corrected");
        QTest::addColumn<QRect>("placed");
        const QRect primary(0, 0, 1920, 1080);
        const QList<QRect> sideBySide{primary, QRect(1920, 0, 1920, 1080)};
        const QList<QRect> leftOfPrimary{primary, QRect(-1280, 0, 1280, 1024)};
        const QList<QRect> above{primary, QRect(0, -1080, 1920, 1080)};
        const QList<QRect> lShape{primary, QRect(1920, 0, 1280, 720), QRect(0, 1080, 800, 600)};
        QTest::newRow("side by side: on the second monitor, stays")
            << sideBySide << QRect(2500, 100, 692, 475) << false << QRect(2500, 100, 692, 475);
        QTest::newRow("second monitor unplugged: back to the right edge, not to the origin")
            << QList<QRect>{primary} << QRect(2500, 100, 692, 475) << true << QRect(1228, 100, 692, 475);
        QTest::newRow("on a monitor left of the primary, negative coordinates, stays")
            << leftOfPrimary << QRect(-1000, 200, 692, 475) << false << QRect(-1000, 200, 692, 475);
        QTest::newRow("that monitor unplugged: pulled right onto the primary")
            << QList<QRect>{primary} << QRect(-1000, 200, 692, 475) << true << QRect(0, 200, 692, 475);
        QTest::newRow("one above another: on the upper one, stays")
            << above << QRect(300, -900, 692, 475) << false << QRect(300, -900, 692, 475);
        QTest::newRow("the upper one unplugged: pulled down")
            << QList<QRect>{primary} << QRect(300, -900, 692, 475) << true << QRect(300, 0, 692, 475);
        QTest::newRow("maximised on the right monitor, unplugged")
            << QList<QRect>{primary} << QRect(1920, 0, 1920, 1080) << true << QRect(0, 0, 1920, 1080);
        QTest::newRow("partly off at the bottom right: moved in whole")
            << sideBySide << QRect(3500, 900, 692, 475) << true << QRect(3148, 605, 692, 475);
        QTest::newRow("larger than the desktop: at its top left, sticking out right and down")
            << QList<QRect>{primary} << QRect(500, 300, 4000, 3000) << true << QRect(0, 0, 4000, 3000);
        QTest::newRow("in the gap of an L-shaped layout: counts as on the desktop")
            << lShape << QRect(2000, 900, 600, 400) << false << QRect(2000, 900, 600, 400);
        QTest::newRow("exactly the desktop") << QList<QRect>{primary} << primary << false << primary;
    }
    void windowBackOnTheDesktop() {
        QFETCH(QList<QRect>, screens);
        QFETCH(QRect, window);
        QFETCH(bool, corrected);
        QFETCH(QRect, placed);
        const auto p = MMonitors::EnsureWindowOnDesktop(window, MMonitors::desktopOf(screens));
        QCOMPARE(p.corrected, corrected);
        QCOMPARE(p.rect, placed);
    }

    // Allowed to stay partly visible, a window that overlaps the desktop
    // stays; one just past its edge is still brought back whole.
    void partlyVisibleWhenAllowed() {
        const QRect desktop(0, 0, 1920, 1080);
        QCOMPARE(MMonitors::EnsureWindowOnDesktop(QRect(1800, 100, 400, 300), desktop, true).corrected,
                 false);
        const auto p = MMonitors::EnsureWindowOnDesktop(QRect(1920, 100, 400, 300), desktop, true);
        QVERIFY(p.corrected);
        QCOMPARE(p.rect, QRect(1520, 100, 400, 300));
    }
};

KV_TEST_CLASS(TestPicture)
#include "tst_picture.moc"
