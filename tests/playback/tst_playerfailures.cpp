#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "fakeplayback.h"
#include "jingles/jingleplayer.h"
#include "playback/cdgnormaliser.h"
#include "playback/cencryptex.h"
#include "playback/mpvinstance.h"
#include "playback/playerstartup.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QCoreApplication>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <cstdio>
#include <memory>
#include <unistd.h>

using namespace playbackmedia;
using namespace fakeplayback;

namespace {

bool processGone(qint64 pid) {
    if (pid <= 0 || ::kill(pid_t(pid), 0) != 0)
        return true;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    return stat.open(QIODevice::ReadOnly) && stat.readAll().contains(") Z ");
}

// When this executable is started with KV_PLAYER_HELPER set, it is not a test
// run: it starts the karaoke player and the jingle engine the way the program
// does, prints their process ids and waits to be killed. It runs before main()
// and touches none of the program's globals.
struct PlayerHelperMode {
    PlayerHelperMode() {
        const QByteArray player = qgetenv("KV_PLAYER_HELPER");
        if (player.isEmpty())
            return;
        int argc = 1;
        char name[] = "player-helper";
        char* argv[] = {name, nullptr};
        QCoreApplication app(argc, argv);
        MpvInstance process;
        if (!process.start(QString::fromLocal8Bit(player), {QStringLiteral("--idle=yes")}))
            ::_exit(3);
        JinglePlayer jingles;
        if (!jingles.PlayerInit(QString::fromLocal8Bit(player), 0))
            ::_exit(4);
        std::printf("%lld %lld\n", static_cast<long long>(process.processId()),
                    static_cast<long long>(jingles.processId()));
        std::fflush(stdout);
        for (;;)
            ::pause();
    }
} playerHelperMode;

// The resident memory of this process, and its peak since the last reset, in kB.
qint64 memoryLine(const char* key) {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith(key))
            return line.mid(int(qstrlen(key))).trimmed().split(' ').value(0).toLongLong();
    return -1;
}
bool resetMemoryPeak() {
    QFile clear(QStringLiteral("/proc/self/clear_refs"));
    return clear.open(QIODevice::WriteOnly) && clear.write("5") == 1;
}

// A real player (silent and blind) with the song start on fakes of the queue and labels.
struct StarterRig {
    QStringList journal;
    WinAMP_Control link;
    FakeQueue queue{journal};
    FakeView view{journal};
    modPacemaker pm{link};
    SongStarter starter{link, pm, queue, view};
    explicit StarterRig(const QString& player) { link.setWinampPath(player); }
    QString playing() { return link.connection().property("path").value_or(QJsonValue()).toString(); }
};

} // namespace

// The player link when things go wrong: no player, a wrong program, a player
// that dies, a program that dies.
class TestPlayerFailures : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    QTemporaryDir m_dir;
    QString m_wrapper;

    const QString kNotFound = QStringLiteral("WinAMP Not Found");

private slots:
    void initTestCase() {
        m_wrapper = writePlayerWrapper(m_dir.path());
        QVERIFY(makeMp3(m_dir.filePath("song.mp3"), 6.0));
    }
    void init() {
        m_ws = std::make_unique<TestWorkspace>(true);
        m_prompts = std::make_unique<ScriptedPrompts>();
        Cfg = AppSettings();
    }
    void cleanup() {
        m_prompts.reset();
        m_ws.reset();
    }

    // With no player every command tells the host once, in the same words,
    // and nothing fails; loading a file is silent and reports false.
    void operationsWithoutAPlayer() {
        WinAMP_Control link;
        QCOMPARE(link.GetStatus(), QString());
        QCOMPARE(link.GetLengthSeconds(), 0);
        link.ClearPlaylist();
        link.SendCommand(PlayerLink::CmdPlay);
        QVERIFY(!link.PlayFile(m_dir.filePath("song.mp3")));
        QCOMPARE(link.rawStatus(), int(PlayerLink::RawStopped));
        QCOMPARE(m_prompts->countTitle(kNotFound), 4);
        QCOMPARE(m_prompts->calls.size(), 4);
        QVERIFY(m_prompts->calls[0].text.contains("the winamp window has been closed"));
    }

    // A missing player is told; a program that never answers as a player is
    // given up, quietly, and ended: at once by a start in the foreground, and
    // by one in the background once its time is up (logged, and the work
    // waiting for the player never done).
    void badPlayerPath_data() {
        QTest::addColumn<bool>("exists");
        QTest::addColumn<bool>("background");
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("missing") << false << false << QStringList{"Application Installation Error"};
        QTest::newRow("missing, background")
            << false << true << QStringList{"Application Installation Error"};
        QTest::newRow("not a player") << true << false << QStringList{};
        QTest::newRow("not a player, background") << true << true << QStringList{};
    }
    void badPlayerPath() {
        QFETCH(bool, exists);
        QFETCH(bool, background);
        WinAMP_Control link;
        link.setWinampPath(exists ? writeScript(m_dir.filePath("notaplayer.sh"),
                                                "while true; do echo '{\"nonsense\":1}'; sleep 0.05; done")
                                  : m_dir.filePath("no such player"));
        link.setWaiter([](int) {});
        const int logged = TestWorkspace::errorLogRecords();
        bool workDone = false;
        if (background) {
            QCOMPARE(link.StartPlayerInBackground([&] { workDone = true; }), exists);
            QTRY_VERIFY_WITH_TIMEOUT(!link.isStarting(), 20000);
        } else {
            QVERIFY(!link.StartPlayer());
        }
        QTEST(m_prompts->boxTitles(), "boxes");
        QVERIFY(!link.isConnected());
        QVERIFY(!workDone);
        QVERIFY(processGone(link.playerProcessId()));
        QCOMPARE(TestWorkspace::errorLogRecords() - logged, exists && background ? 1 : 0);
    }

    // A player started in the background counts as there at once; it is made
    // ready (the waiting work done, once, before anything else is asked of
    // it) when it first answers, or by the first request before then.
    void playerStartedInBackground_data() {
        QTest::addColumn<bool>("leftToItself");
        QTest::newRow("ready once it answers") << true;
        QTest::newRow("ready by the first request") << false;
    }
    void playerStartedInBackground() {
        QFETCH(bool, leftToItself);
        WinAMP_Control link;
        link.setWinampPath(m_wrapper);
        QStringList done;
        QVERIFY(link.StartPlayerInBackground([&] { done << QStringLiteral("started"); }));
        link.whenReady([&] { done << QStringLiteral("then"); });
        QVERIFY(link.isStarting());
        QVERIFY(link.isConnected());
        if (leftToItself)
            QTRY_VERIFY_WITH_TIMEOUT(!link.isStarting(), kPlayerSlack);
        QCOMPARE(link.GetPlaylistLength(), 0);
        QVERIFY(!link.isStarting());
        QCOMPARE(done, (QStringList{QStringLiteral("started"), QStringLiteral("then")}));
        link.whenReady([&] { done << QStringLiteral("now"); });
        QCOMPARE(done.size(), 3);
        QVERIFY(m_prompts->calls.isEmpty());
    }

    void playerKilledDuringASong() {
        WinAMP_Control link;
        link.setWinampPath(m_wrapper);
        QVERIFY(link.StartPlayer());
        link.ClearPlaylist();
        QVERIFY(link.PlayFile(m_dir.filePath("song.mp3")));
        link.SendCommand(PlayerLink::CmdPlay);
        QTRY_COMPARE_WITH_TIMEOUT(link.GetStatus(), QStringLiteral("PLAYING"), kPlayerSlack);
        const qint64 pid = link.playerProcessId();
        QVERIFY(::kill(pid_t(pid), SIGKILL) == 0);
        QTRY_VERIFY_WITH_TIMEOUT(processGone(pid), kPlayerSlack);
        // A player that has gone gives no answer, which is no stop: nothing is
        // shown, and the loss is logged once however often it is asked.
        const int logged = TestWorkspace::errorLogRecords();
        QCOMPARE(link.GetStatus(), QString());
        QCOMPARE(link.rawStatus(), int(PlayerLink::RawNoAnswer));
        QVERIFY(!link.PlayFile(m_dir.filePath("song.mp3")));
        QVERIFY(m_prompts->calls.isEmpty());
        QCOMPARE(TestWorkspace::errorLogRecords(), logged + 1);
        // Looking for it again finds nothing; from then on the host is told.
        QVERIFY(!link.FindPlayer());
        QCOMPARE(link.GetStatus(), QString());
        QCOMPARE(m_prompts->countTitle(kNotFound), 1);
    }

    // A program that crashes must not leave a player behind, neither the
    // karaoke player nor the jingle engine.
    void playerDiesWithTheProgram() {
        QProcess helper;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("KV_PLAYER_HELPER", m_wrapper);
        helper.setProcessEnvironment(env);
        helper.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(helper.waitForStarted());
        QVERIFY(helper.waitForReadyRead(10000));
        const QList<QByteArray> pids = helper.readLine().trimmed().split(' ');
        QCOMPARE(pids.size(), 2);
        const qint64 player = pids[0].toLongLong();
        const qint64 jingles = pids[1].toLongLong();
        QVERIFY(player > 0 && !processGone(player));
        QVERIFY(jingles > 0 && jingles != player && !processGone(jingles));
        ::kill(pid_t(helper.processId()), SIGKILL);
        QVERIFY(helper.waitForFinished(5000));
        QTRY_VERIFY_WITH_TIMEOUT(processGone(player), 10000);
        QTRY_VERIFY_WITH_TIMEOUT(processGone(jingles), 10000);
    }

    // The queue is restored even when no player is set; the player found at
    // start-up is made ready, and ended at shutdown, once.
    void startupAndShutdown() {
        bool restored = false;
        const auto say = [](const QString&) {};
        {
            WinAMP_Control link;
            Cfg.WinAmpPath.clear();
            QVERIFY(!StartPlayerAtStartup(link, say, [&] { restored = true; }));
            QVERIFY(restored);
            QVERIFY(m_prompts->calls.isEmpty());
        }
        WinAMP_Control link;
        Cfg.WinAmpPath = m_wrapper;
        oSettings->SaveStringValue("Settings", "mus", CEncryptEx::encipher("pw"));
        QVERIFY(StartPlayerAtStartup(link, say, {}));
        modPacemaker pm(link);
        PreparePlaybackAtStartup(pm, link);
        QVERIFY(link.isStarting() && !pm.isFound()); // looked for once the player answers
        QTRY_VERIFY_WITH_TIMEOUT(pm.isFound(), kPlayerSlack);
        QCOMPARE(ArchivePassword, QStringLiteral("pw"));
        const qint64 pid = link.playerProcessId();
        ClosePlayerAtShutdown(link);
        QTRY_VERIFY_WITH_TIMEOUT(processGone(pid), 10000);
        ClosePlayerAtShutdown(link); // a second shutdown finds nothing and says nothing
        QVERIFY(m_prompts->calls.isEmpty());
    }

    // Closing a player that is slow to go (frozen here) is no stall: the quit
    // is not waited for, nothing is logged, and the player ends once it runs.
    void playerSlowToQuitIsNoStall() {
        WinAMP_Control link;
        link.setWinampPath(m_wrapper);
        QVERIFY(link.StartPlayer());
        const qint64 pid = link.playerProcessId();
        const int logged = TestWorkspace::errorLogRecords();
        QVERIFY(::kill(pid_t(pid), SIGSTOP) == 0);
        auto thaw = qScopeGuard([pid] { ::kill(pid_t(pid), SIGCONT); });
        link.SendCommand(PlayerLink::CmdClose);
        QCOMPARE(link.rawStatus(), int(PlayerLink::RawStopped));
        QCOMPARE(TestWorkspace::errorLogRecords(), logged);
        thaw.dismiss();
        QVERIFY(::kill(pid_t(pid), SIGCONT) == 0);
        QTRY_VERIFY_WITH_TIMEOUT(processGone(pid), 10000);
        QCOMPARE(TestWorkspace::errorLogRecords(), logged);
        QVERIFY(m_prompts->calls.isEmpty());
    }

    // Graphics beside a loose mp3 are made ready in the same small memory
    // whatever their size, and a file far larger than any song is refused:
    // the host is told, nothing starts, and the row stays in the queue.
    void largeGraphicsBesideAnMp3_data() {
        QTest::addColumn<qint64>("size");
        QTest::addColumn<bool>("plays");
        QTest::newRow("60 MB plays") << qint64(60) * 1024 * 1024 << true;
        QTest::newRow("2.5 GB refused") << qint64(2560) * 1024 * 1024 << false;
    }
    void largeGraphicsBesideAnMp3() {
        QFETCH(qint64, size);
        QFETCH(bool, plays);
        StarterRig rig(m_wrapper);
        QVERIFY(rig.link.StartPlayer());
        const QString audio = m_dir.filePath("Large.mp3");
        QVERIFY(QFile::copy(m_dir.filePath("song.mp3"), audio));
        QFile cdg(m_dir.filePath("Large.cdg"));
        // Gone only once the player is done with them.
        const auto removeSong = qScopeGuard([&] {
            QFile::remove(cdg.fileName());
            QFile::remove(audio);
        });
        QVERIFY(cdg.open(QIODevice::WriteOnly) && cdg.resize(size)); // sparse: no room taken on the disk
        cdg.close();
        rig.queue.rows = {song("Ann", audio), song("Bob", audio)};

        const qint64 before = memoryLine("VmRSS:");
        const bool measured = resetMemoryPeak();
        QCOMPARE(rig.starter.PlayKaraoke(0), plays);
        const qint64 grown = memoryLine("VmHWM:") - before;
        if (measured)
            QVERIFY2(grown < 32 * 1024, qPrintable(QStringLiteral("%1 kB more").arg(grown)));
        QCOMPARE(rig.queue.rowCount(), plays ? 1 : 2);
        QCOMPARE(m_prompts->boxTitles(), plays ? QStringList{} : QStringList{"CDG File Too Large"});
        if (plays) {
            // The player reads as playing from the play command on; the file it
            // plays is known once it has begun to load it.
            QTRY_COMPARE_WITH_TIMEOUT(rig.playing(),
                                      CdgNormaliser::copyPathFor(cdg.fileName(), SongStarter::unpackFolder()),
                                      kPlayerSlack);
            QCOMPARE(rig.link.GetStatus(), QStringLiteral("PLAYING"));
        } else {
            QVERIFY(m_prompts->calls[0].text.contains(cdg.fileName()));
            QVERIFY(m_prompts->calls[0].text.contains("64 MB"));
            QCOMPARE(rig.link.GetStatus(), QStringLiteral("STOPPED"));
            QCOMPARE(TestWorkspace::errorLogRecords(), 0);
        }
        rig.starter.StopSong();
    }
};

KV_TEST_CLASS(TestPlayerFailures)
#include "tst_playerfailures.moc"
