#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "screens/windowplacement.h"
#include "testrunner.h"
#include "workspace.h"

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
};

KV_TEST_CLASS(TestMainLayout)
#include "tst_mainlayout.moc"
