#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "screens/mainwidgets.h"
#include "screens/windowplacement.h"
#include "testrunner.h"
#include "workspace.h"

#include <QFrame>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QTableView>
#include <QTest>

class TestMainLayout : public QObject {
    Q_OBJECT

private slots:
    // The saved window place, with the floors that keep a window usable.
    void savedPlace_data() {
        QTest::addColumn<QString>("keys");
        QTest::addColumn<bool>("maximised");
        QTest::addColumn<QRect>("expected");
        QTest::newRow("normal") << "MainLeft=300|MainTop=450|MainWidth=15000|MainHeight=11000|MainState=0"
                                << false << QRect(300, 450, 15000, 11000);
        QTest::newRow("width floor") << "MainWidth=100|MainHeight=9300" << false << QRect(0, 0, 12945, 9300);
        QTest::newRow("nothing saved") << "" << false << QRect(0, 0, 12945, 9210);
        QTest::newRow("maximised reads no size")
            << "MainLeft=15|MainTop=30|MainWidth=99999|MainState=2" << true << QRect(15, 30, 14000, 10000);
    }
    void savedPlace() {
        QFETCH(QString, keys);
        QFETCH(QRect, expected);
        TestWorkspace ws(false);
        for (const QString& kv : keys.split('|', Qt::SkipEmptyParts))
            oSettings->SaveStringValue("Settings", kv.section('=', 0, 0), kv.section('=', 1));
        const WindowPlacement got = GetWindowPositions(false, 14000, 10000);
        QTEST(got.maximised, "maximised");
        QCOMPARE(QRect(got.left, got.top, got.width, got.height), expected);
    }

    // At every size from the least the window allows to a 4K screen, the
    // frames stay inside the window and apart (but for the key change and
    // the balance, which take turns in one place), and the search row's
    // controls stay inside their frame, side by side.
    void framesStayApartAtEverySize_data() {
        QTest::addColumn<QSize>("size");
        QTest::newRow("least") << QSize(864, 609);
        QTest::newRow("1280x800") << QSize(1280, 800);
        QTest::newRow("1920x1080") << QSize(1920, 1080);
        QTest::newRow("3840x2160") << QSize(3840, 2160);
        QTest::newRow("wide and low") << QSize(3000, 640);
    }
    void framesStayApartAtEverySize() {
        QFETCH(QSize, size);
        QMainWindow window;
        MainWidgets w;
        buildMainWidgets(w, &window);
        window.resize(size);
        QWidget* client = window.centralWidget();
        client->resize(size);
        layoutMainWidgets(w, client);
        const QList<QFrame*> frames = {w.fraTrackDetails, w.fraPlayControl, w.fraKeyChange, w.fraKami,
                                       w.fraMpx,          w.fraJingles,     w.fraSearch,    w.fraQueue,
                                       w.fraQueueButtons, w.fraOptions,     w.fraLyrics};
        for (QFrame* f : frames) {
            QVERIFY2(client->rect().contains(f->geometry()), qPrintable(f->objectName()));
            for (QFrame* g : frames)
                QVERIFY2(f == g || !f->geometry().intersects(g->geometry()),
                         qPrintable(f->objectName() + " overlaps " + g->objectName()));
        }
        const QList<QWidget*> searchRow = {w.txtSearch, w.btnSearch, w.btnClearSearch, w.cmdFF};
        for (int i = 0; i < searchRow.size(); ++i) {
            QVERIFY2(w.fraSearch->rect().contains(searchRow[i]->geometry()),
                     qPrintable(searchRow[i]->objectName()));
            if (i > 0)
                QVERIFY(searchRow[i - 1]->geometry().right() < searchRow[i]->geometry().left());
        }
        QVERIFY(w.fraSearch->rect().contains(w.olvSearchResults->geometry()));
        QVERIFY(w.fraQueue->rect().contains(w.OsenXPListBox1->geometry()));
        QVERIFY(w.fraQueueButtons->rect().contains(w.btnClearQueue->geometry()));
    }
};

KV_TEST_CLASS(TestMainLayout)
#include "tst_mainlayout.moc"
