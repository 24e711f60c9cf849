#include "audience/audienceplacement.h"
#include "audience/ui/audiencescreen.h"
#include "audience/ui/backgroundpicture.h"
#include "audience/ui/frmaudience.h"
#include "audience/ui/vbwscroller.h"
#include "audience/vbcolor.h"
#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/settings.h"
#include "core/twips.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QTest>

namespace {
void seed(const QString& pairs) {
    for (const QString& kv : pairs.split('|', Qt::SkipEmptyParts))
        oSettings->SaveStringValue("Settings", kv.section('=', 0, 0), kv.section('=', 1));
}
} // namespace

class TestFrmAudience : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;

    QString picture(const QString& name, QColor colour) {
        QImage img(320, 200, QImage::Format_RGB32);
        img.fill(colour);
        const QString path = m_ws->dataFolder() + name;
        img.save(path);
        return path;
    }

private slots:
    void init() {
        Cfg = AppSettings{};
        IsFirstStart = false;
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>(false);
    }
    void cleanup() {
        m_ws.reset();
        m_prompts.reset();
    }

    // Saved place in twips (15 to the pixel) on a desktop of two 1920 x 1080 screens side by side.
    void placement_data() {
        QTest::addColumn<QList<int>>("saved"); // left, top, state, width, height
        QTest::addColumn<bool>("firstStart");
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<bool>("maximised");
        QTest::newRow("normal, on the second screen")
            << QList<int>{30000, 1500, 0, 15000, 9000} << false << QRect(2000, 100, 1000, 600) << false;
        QTest::newRow("maximised, on the second screen")
            << QList<int>{28800, 0, 2, 28800, 16200} << false << QRect(1920, 0, 1920, 1080) << true;
        QTest::newRow("first start: design size centred on the primary")
            << QList<int>{30000, 1500, 0, 15000, 9000} << true << QRect(614, 302, 692, 475) << false;
        QTest::newRow("negative size: the design size")
            << QList<int>{1500, 1500, 0, -200, 9000} << false << QRect(100, 100, 692, 475) << false;
        QTest::newRow("state 7 reads as normal")
            << QList<int>{1500, 1500, 7, 15000, 9000} << false << QRect(100, 100, 1000, 600) << false;
    }
    void placement() {
        QFETCH(QList<int>, saved);
        QFETCH(bool, firstStart);
        QFETCH(QRect, rect);
        QFETCH(bool, maximised);
        const audienceplacement::Saved s{saved[0], saved[1], saved[2], saved[3], saved[4]};
        const auto p =
            audienceplacement::place(s, firstStart, QRect(0, 0, 1920, 1080), QRect(0, 0, 3840, 1080), 15, 15);
        QCOMPARE(p.rect, rect);
        QCOMPARE(p.maximised, maximised);
    }

    void takesItsLookFromTheSettings() {
        seed("FontSize=20|FontBold=1|ScrollerSpeed=40|AudienceScrollerColor=255|"
             "AudienceScrollerFontColor=16776960|ScrollerStartupText=Hello room|Font=NoSuchFontAnywhere");
        frmAudience w;
        ScrollerModel& m = w.scroller->model();
        QCOMPARE(m.Interval(), 40);
        QCOMPARE(m.BackColor(), 255u);
        QCOMPARE(m.ForeColor(), 16776960u);
        QVERIFY(m.boxFont().bold());
        // The measuring font caught up with the size: Font.Name came last.
        QCOMPARE(m.measuringFont().pointSize(), 20);
        QVERIFY(m.measuringFont().family() != "NoSuchFontAnywhere");
        QCOMPARE(m.text(), QString("Hello room"));
        QCOMPARE(m.ScrollType(), 3);
        QCOMPARE(w.scroller->txtCredits()->focusPolicy(), Qt::NoFocus);
    }

    // Colours as the settings keep them: 0x00BBGGRR.
    void textInTheStripsOwnColourIsDrawnReadable_data() {
        QTest::addColumn<uint>("fore");
        QTest::addColumn<uint>("back");
        QTest::addColumn<QColor>("drawn");
        QTest::newRow("both black, as the defaults are: white") << 0u << 0u << QColor(Qt::white);
        QTest::newRow("both white: black") << 0xFFFFFFu << 0xFFFFFFu << QColor(Qt::black);
        QTest::newRow("different: as chosen") << 0x00FFFFu << 0u << QColor(Qt::yellow);
    }
    void textInTheStripsOwnColourIsDrawnReadable() {
        QFETCH(uint, fore);
        QFETCH(uint, back);
        QFETCH(QColor, drawn);
        seed(QString("AudienceScrollerFontColor=%1|AudienceScrollerColor=%2").arg(fore).arg(back));
        frmAudience w;
        QCOMPARE(w.scroller->txtCredits()->palette().color(QPalette::WindowText), drawn);
    }

    void thePlaceRoundTrips() {
        seed("SecLeft=1500|SecTop=750|SecWidth=6000|SecHeight=4500|SecState=0");
        {
            frmAudience w;
            w.move(200, 100);
            w.savePlace();
        }
        QCOMPARE(settings::readText(keys::SecLeft), QString::number(200 * twips::perPixelX()));
        QCOMPARE(settings::readText(keys::SecTop), QString::number(100 * twips::perPixelY()));
        frmAudience again;
        QCOMPARE(again.geometry().topLeft(), QPoint(200, 100));
        QCOMPARE(again.size(), QSize(6000 / twips::perPixelX(), 4500 / twips::perPixelY()));
    }

    // The right button offers Full Screen or Restore as the state allows;
    // each is kept in SecState, and Restore goes back to the design size.
    void fullScreenAndRestore() {
        seed("SecLeft=1500|SecTop=750|SecWidth=6000|SecHeight=4500|SecState=0");
        frmAudience w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        const auto offered = [&w] {
            QTest::mouseClick(&w, Qt::RightButton, {}, QPoint(w.width() / 2, w.height() / 2));
            QTest::qWaitFor([&w] { return w.mnuPopup->isVisible(); });
            const QString items =
                QStringLiteral("%1|%2").arg(w.mnuPopupFullScreen->isVisible() ? "full screen" : "",
                                            w.mnuPopupRestore->isVisible() ? "restore" : "");
            w.mnuPopup->hide();
            return items;
        };
        QCOMPARE(offered(), QString("full screen|"));
        w.mnuPopupFullScreen->trigger();
        QTRY_VERIFY(w.isFullScreenState());
        QTRY_COMPARE(w.geometry(), w.standingScreen()->geometry());
        w.savePlace();
        QCOMPARE(settings::readInt(keys::SecState), 2);
        QCOMPARE(offered(), QString("|restore"));
        w.mnuPopupRestore->trigger();
        QTRY_VERIFY(!w.isFullScreenState());
        QTRY_COMPARE(w.size(), QSize(audienceplacement::kDesignWidth / twips::perPixelX(),
                                     audienceplacement::kDesignHeight / twips::perPixelY()));
        w.savePlace();
        QCOMPARE(settings::readInt(keys::SecState), 0);
    }

    void scrollerPosition_data() {
        QTest::addColumn<int>("pos");
        QTest::addColumn<bool>("visible");
        QTest::addColumn<bool>("atBottom");
        QTest::newRow("top") << 0 << true << false;
        QTest::newRow("bottom: window height less the strip and 100 twips") << 1 << true << true;
        QTest::newRow("none") << 2 << false << false;
    }
    void scrollerPosition() {
        QFETCH(int, pos);
        QFETCH(bool, visible);
        QFETCH(bool, atBottom);
        seed("SecWidth=9000|SecHeight=6000");
        frmAudience w;
        w.SetScrollerPosition(pos);
        QCOMPARE(w.scroller->isVisibleTo(&w), visible);
        const int bottomTop = twips::toPixelsY(6000 - twips::fromPixelsY(w.scroller->height()) - 100);
        QCOMPARE(w.scroller->y(), atBottom ? bottomTop : 0);
        const QPoint before = w.scroller->pos();
        w.SetScrollerPosition(5);
        QCOMPARE(w.scroller->pos(), before);
        QCOMPARE(w.scroller->isVisibleTo(&w), visible);
    }

    void thePendingTextIsTakenOverWhenAPassCompletes() {
        frmAudience w;
        ScrollerModel& m = w.scroller->model();
        m.setAmount(100000);
        m.Reset();
        w.setScrollerText("Next: Jo");
        QVERIFY(m.text() != "Next: Jo");
        for (int i = 0; i < 3 && m.text() != "Next: Jo"; ++i)
            m.tick();
        QCOMPARE(m.text(), QString("Next: Jo"));
        // It starts its pass from the right edge.
        QCOMPARE(m.boxLeft(), float(m.controlWidth()));
    }

    // The picture fills the window; a missing or damaged one leaves a plain
    // white window (the damaged one logged), without a box.
    void backgroundPicture_data() {
        QTest::addColumn<QByteArray>("bytes"); // "red": a good picture
        QTest::addColumn<QColor>("corner");
        QTest::addColumn<int>("records");
        QTest::newRow("good") << QByteArray("red") << QColor(Qt::red) << 0;
        QTest::newRow("missing") << QByteArray() << QColor(Qt::white) << 0;
        QTest::newRow("damaged") << QByteArray("\x89PNG\r\n\x1a\n broken") << QColor(Qt::white) << 1;
    }
    void backgroundPicture() {
        QFETCH(QByteArray, bytes);
        QFETCH(QColor, corner);
        QFETCH(int, records);
        QString path = m_ws->dataFolder() + "picture.png";
        if (bytes == "red") {
            path = picture("red.png", Qt::red);
        } else if (!bytes.isEmpty()) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(bytes);
        }
        settings::writeText(keys::MainImage, path);
        seed("SecWidth=6000|SecHeight=4500");
        frmAudience w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QCOMPARE(w.fraLyrics->failed(), corner == QColor(Qt::white));
        w.resize(w.width() + 40, w.height() + 20);
        QTRY_COMPARE(w.fraLyrics->size(), w.size());
        QTest::qWait(250);
        const QImage shot = w.grab().toImage();
        QCOMPARE(QColor(shot.pixel(shot.width() - 5, shot.height() - 5)), corner);
        QCOMPARE(TestWorkspace::errorLogRecords(), records);
        QVERIFY(m_prompts->calls.isEmpty());
    }

    void aTickRepaintsTheStripNotThePicture() {
        settings::writeText(keys::MainImage, picture("blue.png", Qt::blue));
        frmAudience w;
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        w.scroller->model().setScrolling(false);
        w.scroller->setText("Welcome to the show, a long line that runs across");
        QTest::qWait(50);
        const int before = w.fraLyrics->paintCount();
        const QPoint start = w.scroller->txtCredits()->pos();
        for (int i = 0; i < 10; ++i) {
            w.scroller->model().tick();
            QCoreApplication::processEvents();
        }
        QVERIFY(w.scroller->txtCredits()->pos() != start);
        QCOMPARE(w.fraLyrics->paintCount(), before);
    }

    void theHolderFollowsAPictureChangeAndLoadsOnTouch() {
        AudienceScreen screen;
        QVERIFY(!screen.loaded());
        QVERIFY(!screen.isShown());
        screen.setPendingText("x"); // a touch loads it, hidden
        QVERIFY(screen.loaded());
        QVERIFY(!screen.isShown());
        const QString green = picture("green.png", Qt::green);
        settings::writeText(keys::MainImage, green);
        QCOMPARE(screen.loaded()->fraLyrics->file(), green);
        screen.unload();
        QVERIFY(!screen.loaded());
        QVERIFY(settings::readText(keys::SecWidth) != "0");
    }

    void theVideoGoesToTheWindowsMonitorAndIsRemembered() {
        AudienceScreen screen;
        QList<std::pair<bool, QScreen*>> calls;
        screen.setVideoPlacer([&](bool on, QScreen* s) { calls.append({on, s}); });
        Cfg.ShowSecondScreen = true;
        screen.showIfWanted();
        QVERIFY(calls.isEmpty());
        screen.window().mnuPopupLyricsHere->trigger();
        QCOMPARE(calls.size(), 1);
        QCOMPARE(calls[0].first, true);
        QCOMPARE(calls[0].second, screen.window().standingScreen());
        QVERIFY(settings::readBool(keys::LyricsOnAudienceScreen));
        screen.unload();
        // The next window puts the video there again when shown.
        screen.show();
        QCOMPARE(calls.size(), 2);
        QVERIFY(screen.window().mnuPopupLyricsHere->isChecked());
        screen.window().mnuPopupLyricsHere->trigger();
        QCOMPARE(calls.last().first, false);
        QVERIFY(!settings::readBool(keys::LyricsOnAudienceScreen));
    }
};

KV_TEST_CLASS(TestFrmAudience)
#include "tst_frmaudience.moc"
