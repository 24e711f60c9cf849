#include "catalogue/database.h"
#include "childprocess.h"
#include "core/workingfolderlock.h"
#include "mainwindowstart.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

// One process writes to a working folder at a time: Korvane for its whole
// run, an import of the tool while it imports; a search may read meanwhile,
// and a holder that was killed does not keep the folder.
class TestWorkingFolderLock : public QObject {
    Q_OBJECT

    static QStringList importArgs() {
        return {"import", QDir::tempPath() + "/kv-no-songs", "--convention", "1"};
    }

private slots:
    void init() {
        kvtest::seedMainWorkspace();
        QDir().mkpath(QDir::tempPath() + "/kv-no-songs");
    }
    void cleanup() { TestWorkspace::wipe(); }

    // A second start refuses, says so, and asks the first window to come forward.
    void secondStartBringsTheFirstForward() {
        ScriptedPrompts p;
        frmMain first;
        QVERIFY(kvtest::startMainWindow(first));
        QSignalSpy forward(first.findChild<WorkingFolderLock*>(), &WorkingFolderLock::raiseRequested);
        frmMain second;
        second.setSplashMinimumMs(0);
        QCOMPARE(second.Form_Load({}), false);
        QCOMPARE(p.boxTitles(), QStringList{"Working Folder In Use"});
        QVERIFY2(p.calls[0].text.contains("brought to the front"), qPrintable(p.calls[0].text));
        QTRY_COMPARE(forward.size(), 1);
        first.close();
    }

    // While another process holds the folder: Korvane and an import are
    // refused, a search reads. Once the holder is killed, both may start.
    void holderKeepsWritersOutUntilItIsKilled() {
        TestWorkspace ws;
        ws.addSongs({"Abba - Waterloo"});
        CloseDatabase();
        TestWorkspace::seedWithQuietPlayer();
        kvtest::MarkedChild holder(kvtest::builtProgram("kv_killpoints"), {"hold-lock"});
        QVERIFY(holder.waitForMarker("KILL-POINT locked"));

        ScriptedPrompts p;
        {
            frmMain refused;
            refused.setSplashMinimumMs(0);
            QCOMPARE(refused.Form_Load({}), false);
        }
        QCOMPARE(p.boxTitles(), QStringList{"Working Folder In Use"});
        QVERIFY2(p.calls[0].text.contains("kv_killpoints"), qPrintable(p.calls[0].text));
        const kvtest::ChildResult import = kvtest::runTool(importArgs());
        QVERIFY(import.exitCode > 0);
        QVERIFY2(import.err.contains("in use by kv_killpoints"), import.err.constData());
        const kvtest::ChildResult search = kvtest::runTool({"search", "waterloo"});
        QCOMPARE(search.exitCode, 0);
        QVERIFY2(search.out.contains("Waterloo"), search.out.constData());

        holder.kill();
        QCOMPARE(kvtest::runTool(importArgs()).exitCode, 0);
        frmMain w;
        QVERIFY(kvtest::startMainWindow(w));
        w.close();
    }
};

KV_TEST_CLASS(TestWorkingFolderLock)
#include "tst_workingfolderlock.moc"
