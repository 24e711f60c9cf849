#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "screens/mainlayout.h"
#include "screens/windowplacement.h"
#include "testrunner.h"
#include "workspace.h"

#include <QTest>

class TestMainLayout : public QObject {
    Q_OBJECT

private slots:
    void resizeRules_data() {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("height");
        QTest::addColumn<QString>("control");
        QTest::addColumn<QRect>("expected");
        // The design size leaves everything at its design place.
        QTest::newRow("design search") << 12935 << 10335 << "fraSearch" << QRect(4200, 120, 8535, 4695);
        QTest::newRow("wide search") << 16935 << 10335 << "fraSearch" << QRect(4200, 120, 12535, 4695);
        QTest::newRow("wide list") << 16935 << 10335 << "olvSearchResults" << QRect(120, 600, 12285, 3975);
        QTest::newRow("wide text") << 16935 << 10335 << "txtSearch" << QRect(120, 120, 9305, 375);
        QTest::newRow("wide search button") << 16935 << 10335 << "btnSearch" << QRect(9575, 120, 855, 375);
        QTest::newRow("wide ff") << 16935 << 10335 << "cmdFF" << QRect(11495, 120, 855, 375);
        QTest::newRow("tall queue") << 12960 << 12000 << "fraQueue" << QRect(120, 4920, 7535, 6500);
        QTest::newRow("tall list") << 12960 << 12000 << "OsenXPListBox1" << QRect(120, 120, 7335, 6300);
        QTest::newRow("queue buttons") << 12960 << 12000 << "fraQueueButtons" << QRect(7735, 4920, 615, 6500);
        QTest::newRow("clear queue") << 12960 << 12000 << "btnClearQueue" << QRect(120, 5910, 375, 375);
        QTest::newRow("preview") << 12960 << 12000 << "fraLyrics" << QRect(8435, 8430, 4335, 2895);
        QTest::newRow("options") << 12960 << 12000 << "fraOptions" << QRect(8435, 4920, 4335, 3405);
        // Too narrow: the text box's width would go negative and stays as it
        // was, while the button after it still moves.
        QTest::newRow("narrow text kept") << 5000 << 10335 << "txtSearch" << QRect(120, 120, 5415, 375);
        QTest::newRow("narrow button moves") << 5000 << 10335 << "btnSearch" << QRect(5685, 120, 855, 375);
    }
    void resizeRules() {
        QFETCH(int, width);
        QFETCH(int, height);
        QFETCH(QString, control);
        QFETCH(QRect, expected);
        mainlayout::Geometry g = mainlayout::designGeometry();
        mainlayout::applyResize(g, width, height, 0);
        QCOMPARE(g.value(control), expected);
    }

    void savedPlace_data() {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<bool>("firstStart");
        QTest::addColumn<bool>("maximised");
        QTest::addColumn<bool>("centre");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("normal")
            << "MainLeft=300|MainTop=450|MainWidth=15000|MainHeight=11000|MainState=0" << false << false << false
            << QRect(300, 450, 15000, 11000);
        QTest::newRow("height floor") << "MainLeft=0|MainTop=0|MainWidth=13000|MainHeight=9135|MainState=0" << false
                                      << false << false << QRect(0, 0, 13000, 9210);
        QTest::newRow("width floor") << "MainWidth=100|MainHeight=9300" << false << false << false
                                     << QRect(0, 0, 12945, 9300);
        QTest::newRow("nothing saved") << "" << false << false << false << QRect(0, 0, 12945, 9210);
        QTest::newRow("first start centres") << "MainLeft=300|MainWidth=20000" << true << false << true
                                             << QRect(0, 0, 14000, 9210);
        QTest::newRow("maximised reads no size")
            << "MainLeft=15|MainTop=30|MainWidth=99999|MainState=2" << false << true << false
            << QRect(15, 30, 14000, 10000);
    }
    void savedPlace() {
        QFETCH(QString, keys);
        QFETCH(bool, firstStart);
        QFETCH(bool, maximised);
        QFETCH(bool, centre);
        QFETCH(QRect, expected);
        TestWorkspace ws(false);
        for (const QString& kv : keys.split('|', Qt::SkipEmptyParts)) {
            const QStringList p = kv.split('=');
            oSettings->SaveStringValue("Settings", p[0], p[1]);
        }
        const WindowPlacement got = GetWindowPositions(firstStart, 14000, 10000);
        QCOMPARE(got.maximised, maximised);
        QCOMPARE(got.centre, centre);
        QCOMPARE(QRect(got.left, got.top, got.width, got.height), expected);
    }

    void placeRoundTrip() {
        TestWorkspace ws(false);
        SaveWindowPositions(75, 90, 0, 14400, 10800);
        const WindowPlacement got = GetWindowPositions(false, 0, 0);
        QCOMPARE(QRect(got.left, got.top, got.width, got.height), QRect(75, 90, 14400, 10800));
    }
};

KV_TEST_CLASS(TestMainLayout)
#include "tst_mainlayout.moc"
