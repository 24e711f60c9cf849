#include "catalogue/database.h"
#include "childprocess.h"
#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

// A compaction killed at any moment (SIGKILL of a real process, with the
// catalogue's newest rows still in its write-ahead log) costs nothing: every
// later start finds the whole catalogue, and nothing is left beside it.
class TestCrashes : public QObject {
    Q_OBJECT

    static constexpr int kSongs = 3000;

    static int songCount() {
        QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks"));
        return q.next() ? q.value(0).toInt() : -1;
    }
    static QString integrity() {
        QSqlQuery q = ExecuteSql(QStringLiteral("PRAGMA integrity_check"));
        return q.next() ? q.value(0).toString() : QString();
    }

private slots:
    void init() { TestWorkspace::wipe(); }
    void cleanup() { TestWorkspace::wipe(); }

    void compactionKilledAtAnyPointLosesNothing_data() {
        QTest::addColumn<QString>("point");
        QTest::newRow("first page of the copy") << "write:1";
        QTest::newRow("half-way through the copy") << "write:8";
        QTest::newRow("copy complete") << "copy-closed";
        QTest::newRow("catalogue about to be opened again") << "reopen";
    }
    void compactionKilledAtAnyPointLosesNothing() {
        QFETCH(QString, point);
        TestWorkspace ws(false);
        {
            kvtest::MarkedChild program(kvtest::builtProgram("kv_killpoints"),
                                        {"compact", QString::number(kSongs), point});
            QVERIFY2(program.waitForMarker("KILL-POINT " + point.toUtf8()), program.output().constData());
            program.kill();
        }
        // Two starts after the crash: each opens the whole catalogue, silently.
        for (int start = 0; start < 2; ++start) {
            ScriptedPrompts p;
            QVERIFY(OpenDatabase());
            QCOMPARE(p.boxTitles(), QStringList());
            QCOMPARE(songCount(), kSongs);
            QCOMPARE(integrity(), "ok");
            CloseDatabase();
        }
        // Beside the catalogue lies nothing of the compaction (the saved
        // song index is the catalogue's own).
        QStringList left =
            QDir(ws.dataFolder()).entryList({"kvsonglist*", "kvSongListTemp*"}, QDir::Files | QDir::Hidden);
        left.removeAll(QStringLiteral("kvsonglist.songindex"));
        QCOMPARE(left, QStringList{"kvsonglist.mdb"});
    }
};

KV_TEST_CLASS(TestCrashes)
#include "tst_crashes.moc"
