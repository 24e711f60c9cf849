// One tick of the audience strip: the text moved by the scroller's arithmetic
// and the repaint that the move causes, flushed to the display and waited for.
// The audience window stands at 1920 x 1080 with a picture of that size behind
// the strip. Run it on a real display (xvfb-run -s "-screen 0 1920x1080x24");
// without one it falls back to the offscreen platform, which flushes nowhere.
// Prints the median and the 95th percentile of 2000 ticks, and how often the
// picture behind was repainted meanwhile (it must not be: only the strip is).
#include "benchcommon.h"

#include "audience/ui/backgroundpicture.h"
#include "audience/ui/frmaudience.h"
#include "audience/ui/vbwscroller.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/settings.h"
#include "core/twips.h"
#include "core/workingfolder.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <unistd.h>

namespace {
// A photograph-like picture: gradients and circles, so that it compresses as a real one.
QString makePicture(const QString& folder) {
    QImage img(1920, 1080, QImage::Format_RGB32);
    QPainter p(&img);
    QLinearGradient g(0, 0, 1920, 1080);
    g.setColorAt(0, QColor(20, 30, 90));
    g.setColorAt(1, QColor(180, 60, 120));
    p.fillRect(img.rect(), g);
    for (int i = 0; i < 60; ++i) {
        p.setBrush(QColor::fromHsv((i * 37) % 360, 160, 220, 120));
        p.drawEllipse(QPoint((i * 211) % 1920, (i * 131) % 1080), 40 + i % 90, 40 + i % 70);
    }
    p.end();
    const QString path = folder + QStringLiteral("bench-picture.jpg");
    img.save(path, "jpeg", 90);
    return path;
}

class PaintCounter : public QObject {
public:
    int paints = 0;
    bool eventFilter(QObject*, QEvent* e) override {
        if (e->type() == QEvent::Paint)
            ++paints;
        return false;
    }
};
} // namespace

int main(int argc, char** argv) {
    // Without a display, run again under a virtual one of the size measured.
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") &&
        argc > 0) {
        std::vector<char*> args{const_cast<char*>("xvfb-run"),
                                const_cast<char*>("-a"),
                                const_cast<char*>("-s"),
                                const_cast<char*>("-screen 0 1920x1080x24"),
                                argv[0],
                                nullptr};
        execvp("xvfb-run", args.data());
        // No xvfb-run: on with the offscreen platform.
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") && !qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    bench::privateHome();
    QApplication app(argc, argv);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    IsFirstStart = false;

    const QString picture = makePicture(WorkingFolder);
    settings::writeText(keys::MainImage, picture);
    settings::writeText(keys::SecLeft, QStringLiteral("0"));
    settings::writeText(keys::SecTop, QStringLiteral("0"));
    settings::writeText(keys::SecWidth, QString::number(twips::fromPixelsX(1920)));
    settings::writeText(keys::SecHeight, QString::number(twips::fromPixelsY(1080)));
    settings::writeText(keys::ScrollerStartupText,
                        QStringLiteral("Could Jo singing Dancing Queen please make their way to the stage "
                                       "towards the end of this performance"));

    frmAudience w;
    w.show();
    w.SetScrollerPosition(0);
    // Let the window settle: mapped, exposed and painted whole once.
    QElapsedTimer settle;
    settle.start();
    while (settle.elapsed() < 500) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QGuiApplication::sync();
    }
    const bool onDisplay = QGuiApplication::platformName() == QLatin1String("xcb");
    if (onDisplay && (w.size() != QSize(1920, 1080) || w.fraLyrics->picture().size() != QSize(1920, 1080))) {
        std::fprintf(stderr, "the window is %dx%d with a picture of %dx%d; the screen is too small?\n",
                     w.width(), w.height(), w.fraLyrics->picture().width(), w.fraLyrics->picture().height());
        return 1;
    }
    ScrollerModel& m = w.scroller->model();
    m.setScrolling(false);
    m.Reset();
    PaintCounter textPaints;
    w.scroller->txtCredits()->installEventFilter(&textPaints);
    const int picturePaints = w.fraLyrics->paintCount();

    constexpr int kTicks = 2000;
    std::vector<double> ms;
    ms.reserve(kTicks);
    for (int i = 0; i < kTicks; ++i) {
        QElapsedTimer t;
        t.start();
        m.tick();
        QCoreApplication::processEvents();
        QGuiApplication::sync();
        ms.push_back(double(t.nsecsElapsed()) / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    std::printf("platform %s, window %dx%d, strip %dx%d, %d ticks, text repainted %d times\n",
                qPrintable(QGuiApplication::platformName()), w.width(), w.height(), w.scroller->width(),
                w.scroller->height(), kTicks, textPaints.paints);
    bench::print("scroller tick with its repaint, 1920x1080, median (ms)", ms[ms.size() / 2], "ms", 1);
    bench::print("scroller tick with its repaint, 95th percentile (ms)", ms[ms.size() * 95 / 100], "ms", 1);
    bench::print("picture repaints during the ticks", double(w.fraLyrics->paintCount() - picturePaints), "",
                 1);
    return textPaints.paints > 0 ? 0 : 1;
}
