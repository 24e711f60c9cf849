#include "core/errorlog.h"
#include "core/globals.h"
#include "core/kverror.h"
#include "core/version.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QTest>

class TestErrorLog : public QObject {
    Q_OBJECT

private slots:
    void recordLayout_data() {
        QTest::addColumn<bool>("longForm");
        QTest::addColumn<QStringList>("details");
        QTest::newRow("common") << false << QStringList{"Disk full", "KvApp.frmMain.FilterIt", "0"};
        QTest::newRow("long") << true << QStringList{"Disk full", "-2147203822", "Main FormLoad", "12"};
    }
    void recordLayout() {
        QFETCH(bool, longForm);
        QFETCH(QStringList, details);
        TestWorkspace ws(false);
        ScriptedPrompts p;
        QVERIFY(TestWorkspace::errorLog().isEmpty());
        if (longForm)
            LogErrorEx("Main FormLoad", qint32(0x80044512), "Disk full", 12);
        else
            LogError("Disk full", "KvApp.frmMain.FilterIt", 0);
        const QStringList lines = TestWorkspace::errorLog().split('\n');
        const QString rule(62, '-');
        // rule, version, date, details, rule, an empty line; the last piece follows the final newline
        QCOMPARE(lines.size(), details.size() + 6);
        QCOMPARE(lines[0], rule);
        QCOMPARE(lines[1], kv::versionText());
        QVERIFY(!lines[2].isEmpty());
        QCOMPARE(lines.mid(3, details.size()), details);
        QCOMPARE(lines[3 + details.size()], rule);
        QCOMPARE(lines[4 + details.size()], QString());
        // The box after the record.
        QCOMPARE(p.calls.size(), 1);
        QCOMPARE(p.calls[0].title, QStringLiteral("Korvane Error"));
        QVERIFY(p.calls[0].text.startsWith("An Error has occured, please send the KVError.log from the " +
                                           WorkingFolder + " folder to "));
    }

    void appendsAndGuardedStepsGoOn() {
        TestWorkspace ws(false);
        ScriptedPrompts p;
        int ran = 0;
        QVERIFY(!Guarded("KvApp.frmMain.RestoreQueue", 1, [] { throw KvError(5, "first"); }));
        QVERIFY(Guarded("KvApp.frmMain.RestoreQueue", 2, [&] { ++ran; }));
        QVERIFY(!Guarded("KvApp.frmMain.RestoreQueue", 3, [] { throw std::runtime_error("second"); }));
        QCOMPARE(ran, 1);
        QCOMPARE(TestWorkspace::errorLogRecords(), 2);
        const QString log = TestWorkspace::errorLog();
        QVERIFY(log.indexOf("first") < log.indexOf("second"));
        QCOMPARE(p.countTitle("Korvane Error"), 2);
    }

    void olderPatternWritesNoLog() {
        TestWorkspace ws(false);
        ScriptedPrompts p;
        ShowApplicationError("Path not found", "in KvApp.frmOptions.SearchForFiles ", 7);
        QCOMPARE(p.calls.size(), 1);
        QCOMPARE(p.calls[0].title, QStringLiteral("Application Error"));
        QCOMPARE(p.calls[0].text, QStringLiteral("Path not found\nin KvApp.frmOptions.SearchForFiles at line 7"));
        QVERIFY(TestWorkspace::errorLog().isEmpty());
    }

    void unwritableLogFallsToCaller() {
        TestWorkspace ws(false);
        ScriptedPrompts p;
        QDir().mkpath(WorkingFolder + "KVError.log"); // a folder where the log should be
        QVERIFY_THROWS_EXCEPTION(KvError, LogError("x", "y", 1));
        QCOMPARE(p.calls.size(), 0);
    }
};

KV_TEST_CLASS(TestErrorLog)
#include "tst_errorlog.moc"
