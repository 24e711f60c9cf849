#include "core/errorlog.h"
#include "core/globals.h"
#include "core/kverror.h"
#include "core/version.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QScopeGuard>
#include <QTemporaryFile>
#include <QTest>

#include <cstdio>
#include <unistd.h>

class TestErrorLog : public QObject {
    Q_OBJECT

private slots:
    void recordLayout() {
        TestWorkspace ws(false);
        ScriptedPrompts p;
        LogError("Disk full", "KvApp.frmMain.FilterIt", 0);
        const QStringList lines = TestWorkspace::errorLog().split('\n');
        const QString rule(62, '-');
        // rule, version, date, three details, rule, an empty line; the last piece follows the final newline
        QCOMPARE(lines.size(), 9);
        QCOMPARE(lines[0], rule);
        QCOMPARE(lines[1], kv::versionText());
        QCOMPARE(lines.mid(3, 3), QStringList({"Disk full", "KvApp.frmMain.FilterIt", "0"}));
        QCOMPARE(lines[6], rule);
        // The box after the record tells the host where the log is.
        QCOMPARE(p.boxTitles(), QStringList{QStringLiteral("Korvane Error")});
        QVERIFY(p.calls[0].text.contains(WorkingFolder));
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

    // A log that cannot be written (here a folder holds its name) is said on
    // standard error with the record, and the box tells the error itself
    // instead of asking for a log that does not hold it.
    void unwritableLogIsToldOnStandardError() {
        TestWorkspace ws(false);
        ScriptedPrompts p;
        QVERIFY(QDir().mkpath(errorLogPath()));
        QTemporaryFile captured;
        QVERIFY(captured.open());
        std::fflush(stderr);
        const int saved = ::dup(2);
        ::dup2(captured.handle(), 2);
        {
            const auto restore = qScopeGuard([saved] {
                std::fflush(stderr);
                ::dup2(saved, 2);
                ::close(saved);
            });
            LogError("Disk full", "KvApp.frmMain.FilterIt", 3);
        }
        captured.seek(0);
        const QByteArray err = captured.readAll();
        QVERIFY2(err.contains("KVError.log cannot be written") && err.contains("Disk full") &&
                     err.contains("KvApp.frmMain.FilterIt"),
                 err.constData());
        QCOMPARE(p.boxTitles(), QStringList{QStringLiteral("Korvane Error")});
        QVERIFY(p.calls[0].text.contains("Disk full"));
        QVERIFY(!p.calls[0].text.contains("please send"));
    }
};

KV_TEST_CLASS(TestErrorLog)
#include "tst_errorlog.moc"
