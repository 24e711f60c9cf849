#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "fakeplayback.h"
#include "playback/cencryptex.h"
#include "playback/modpacemaker.h"
#include "playback/playerprocess.h"
#include "playback/playerstartup.h"
#include "playback/songstarter.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
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
// run: it starts a player the way the program does, prints the player's
// process id and waits to be killed. It runs before main() and touches none
// of the program's globals.
struct PlayerHelperMode {
    PlayerHelperMode() {
        const QByteArray player = qgetenv("KV_PLAYER_HELPER");
        if (player.isEmpty())
            return;
        int argc = 1;
        char name[] = "player-helper";
        char* argv[] = {name, nullptr};
        QCoreApplication app(argc, argv);
        PlayerProcess process;
        if (process.start(QString::fromLocal8Bit(player), {QStringLiteral("--idle=yes")}) < 0)
            ::_exit(3);
        std::printf("%lld\n", static_cast<long long>(process.processId()));
        std::fflush(stdout);
        for (;;)
            ::pause();
    }
} playerHelperMode;

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

    void operationsWithoutAPlayer_data() {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<int>("boxes");
        QTest::addColumn<QString>("result");
        for (const char* op : {"GetStatus", "GetPositionSeconds", "GetLengthSeconds", "GetPlaylistLength",
                               "ClearPlaylist", "SendCommand", "SetPanning(0)"})
            QTest::newRow(op) << op << 1 << "";
        QTest::newRow("SetPanning(128) is dropped first") << "SetPanning(128)" << 0 << "";
        QTest::newRow("PlayFile is silent") << "PlayFile" << 0 << "false";
        QTest::newRow("DisableRepeat is unchecked") << "DisableRepeat" << 0 << "";
        QTest::newRow("DisableShuffle is unchecked") << "DisableShuffle" << 0 << "";
        QTest::newRow("raw status reads stopped") << "rawStatus" << 0 << "0";
    }
    void operationsWithoutAPlayer() {
        QFETCH(QString, operation);
        QFETCH(QString, result);
        WinAMP_Control link;
        QString got;
        if (operation == "GetStatus")
            got = link.GetStatus();
        else if (operation == "GetPositionSeconds")
            QCOMPARE(link.GetPositionSeconds(), 0);
        else if (operation == "GetLengthSeconds")
            QCOMPARE(link.GetLengthSeconds(), 0);
        else if (operation == "GetPlaylistLength")
            QCOMPARE(link.GetPlaylistLength(), 0);
        else if (operation == "ClearPlaylist")
            link.ClearPlaylist();
        else if (operation == "SendCommand")
            link.SendCommand(PlayerLink::CmdPlay);
        else if (operation == "SetPanning(0)")
            link.SetPanning(0);
        else if (operation == "SetPanning(128)")
            link.SetPanning(128);
        else if (operation == "PlayFile")
            got = link.PlayFile(m_dir.filePath("song.mp3")) ? "true" : "false";
        else if (operation == "DisableRepeat")
            link.DisableRepeat();
        else if (operation == "DisableShuffle")
            link.DisableShuffle();
        else if (operation == "rawStatus")
            got = QString::number(link.rawStatus());
        QCOMPARE(got, result);
        QTEST(m_prompts->countTitle(kNotFound), "boxes");
        for (const auto& c : m_prompts->calls) {
            QCOMPARE(c.style, 16);
            QCOMPARE(c.text, QStringLiteral(
                                 "This application has not been configured properly or the winamp window has "
                                 "been closed!"));
        }
    }

    void missingExecutableIsToldAndStartsNothing() {
        WinAMP_Control link;
        link.setWinampPath(m_dir.filePath("no such player"));
        QVERIFY(!link.StartPlayer());
        QCOMPARE(m_prompts->boxTitles(), QStringList{"Application Installation Error"});
        QCOMPARE(m_prompts->calls[0].style, 48);
        QVERIFY(m_prompts->calls[0].text.startsWith("Sorry but Winamp 2.7x and above (Not 3.x)"));
        QVERIFY(!link.isConnected());
    }

    void somethingThatIsNotAPlayerIsGivenUpAndEnded_data() {
        QTest::addColumn<QByteArray>("script");
        QTest::newRow("exits at once") << QByteArray("exit 0");
        QTest::newRow("hangs") << QByteArray("exec sleep 60");
        QTest::newRow("prints rubbish")
            << QByteArray("while true; do echo '{\"nonsense\":1}'; sleep 0.05; done");
    }
    void somethingThatIsNotAPlayerIsGivenUpAndEnded() {
        QFETCH(QByteArray, script);
        WinAMP_Control link;
        link.setWinampPath(writeScript(m_dir.filePath("notaplayer.sh"), script));
        QList<int> waits;
        link.setWaiter([&waits](int ms) { waits << ms; });
        QVERIFY(!link.StartPlayer());
        // One second first, then one after each of the eleven looks.
        QCOMPARE(waits, QList<int>(12, 1000));
        QVERIFY(m_prompts->calls.isEmpty());
        QVERIFY(!link.isConnected());
        QVERIFY(processGone(link.playerProcessId()));
    }

    void playerKilledDuringASong() {
        WinAMP_Control link;
        link.setWinampPath(m_wrapper);
        QVERIFY(link.StartPlayer());
        link.ClearPlaylist();
        QVERIFY(link.PlayFile(m_dir.filePath("song.mp3")));
        link.SendCommand(PlayerLink::CmdPlay);
        QTRY_COMPARE(link.GetStatus(), QStringLiteral("PLAYING"));
        const qint64 pid = link.playerProcessId();
        QVERIFY(::kill(pid_t(pid), SIGKILL) == 0);
        QTRY_VERIFY(processGone(pid));
        // The link does not notice: replies read as a stopped player, nothing is shown.
        QCOMPARE(link.GetStatus(), QStringLiteral("STOPPED"));
        QCOMPARE(link.GetPositionSeconds(), -1);
        link.SendCommand(PlayerLink::CmdStop);
        QVERIFY(!link.PlayFile(m_dir.filePath("song.mp3")));
        QVERIFY(m_prompts->calls.isEmpty());
        // Looking for it again finds nothing; from then on the host is told.
        QVERIFY(!link.FindPlayer());
        QCOMPARE(link.GetStatus(), QString());
        QCOMPARE(m_prompts->countTitle(kNotFound), 1);
    }

    void playerDiesWithTheProgram() {
        QProcess helper;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("KV_PLAYER_HELPER", m_wrapper);
        helper.setProcessEnvironment(env);
        helper.start(QCoreApplication::applicationFilePath(), {});
        QVERIFY(helper.waitForStarted());
        QVERIFY(helper.waitForReadyRead(10000));
        const qint64 player = helper.readLine().trimmed().toLongLong();
        QVERIFY(player > 0);
        QVERIFY(!processGone(player));
        ::kill(pid_t(helper.processId()), SIGKILL);
        QVERIFY(helper.waitForFinished(5000));
        QTRY_VERIFY_WITH_TIMEOUT(processGone(player), 10000);
    }

    void startupAndShutdown() {
        QStringList progress;
        bool restored = false;
        auto say = [&progress](const QString& s) { progress << s; };
        {
            // An empty path: no player and no message.
            WinAMP_Control link;
            Cfg.WinAmpPath.clear();
            QVERIFY(!StartPlayerAtStartup(link, say, [&] { restored = true; }));
            QVERIFY(restored);
            QCOMPARE(progress, (QStringList{"Restoring Queue", "Starting Winamp Instance"}));
            QVERIFY(m_prompts->calls.isEmpty());
        }
        progress.clear();
        WinAMP_Control link;
        Cfg.WinAmpPath = m_wrapper;
        oSettings->SaveStringValue("Settings", "mus", CEncryptEx::encipher("pw"));
        QVERIFY(StartPlayerAtStartup(link, say, {}));
        QCOMPARE(progress, (QStringList{"Restoring Queue", "Starting Winamp Instance"}));
        QCOMPARE(link.connection().property("loop-playlist")->toVariant().toString(),
                 QStringLiteral("false"));
        modPacemaker pm(link);
        PreparePlaybackAtStartup(pm);
        QVERIFY(pm.isFound());
        QCOMPARE(ArchivePassword, QStringLiteral("pw"));
        const qint64 pid = link.playerProcessId();
        QVERIFY(!processGone(pid));
        ClosePlayerAtShutdown(link);
        QTRY_VERIFY_WITH_TIMEOUT(processGone(pid), 10000);
        // With the player gone, a second shutdown finds nothing and says nothing.
        ClosePlayerAtShutdown(link);
        QVERIFY(m_prompts->calls.isEmpty());
    }

    void realSongsThroughPlayKaraoke_data() {
        QTest::addColumn<QString>("kind");
        QTest::newRow("zipped pair") << "zip";
        QTest::newRow("password-protected zip") << "locked";
        QTest::newRow("loose pair") << "loose";
        QTest::newRow("loose audio") << "audio";
    }
    void realSongsThroughPlayKaraoke() {
        QFETCH(QString, kind);
        QStringList journal;
        WinAMP_Control link;
        link.setWinampPath(m_wrapper);
        QVERIFY(link.StartPlayer());
        FakeQueue queue(journal);
        FakeView view(journal);
        modPacemaker pm(link);
        QVERIFY(pm.FindPaceMaker());
        SongStarter starter(link, pm, queue, view);
        const QByteArray mp3 = readFile(m_dir.filePath("song.mp3"));
        const QByteArray cdg = cdgStream(6.0, 1.0);
        const QString folder = m_dir.filePath("Songs, \"Ünï\": " + kind);
        QString path;
        if (kind == "zip" || kind == "locked") {
            const bool locked = kind == "locked";
            path = folder + "/Artist - Title's.zip";
            QVERIFY(makeZip(path, {{"inner.cdg", cdg, locked}, {"inner.mp3", mp3, locked}}, "k4raoke"));
            oSettings->SaveStringValue("Settings", "mus", CEncryptEx::encipher("k4raoke"));
            BuildArchivePassword();
        } else {
            path = folder + "/Artist - Loose.mp3";
            QVERIFY(writeFile(path, mp3));
            if (kind == "loose")
                QVERIFY(writeFile(folder + "/Artist - Loose.cdg", cdg));
        }
        queue.rows = {song("Ann", path, 2)};
        QVERIFY(starter.PlayKaraoke(0));
        QTRY_COMPARE(link.GetStatus(), QStringLiteral("PLAYING"));
        QTRY_COMPARE(link.GetLengthSeconds(), 6);
        QVERIFY(link.GetPositionSeconds() < 2);
        const QString loaded = link.connection().property("path")->toString();
        QCOMPARE(loaded.endsWith(".play.cdg"), kind != "audio");
        QVERIFY(QJsonDocument(link.connection().property("af")->toArray()).toJson().contains("1.122462"));
        QCOMPARE(view.key, QStringLiteral("2"));
        QVERIFY(m_prompts->calls.isEmpty());
        starter.StopSong();
        QCOMPARE(link.GetStatus(), QStringLiteral("STOPPED"));
        QVERIFY(link.connection().property("af")->toArray().isEmpty());
    }
};

KV_TEST_CLASS(TestPlayerFailures)
#include "tst_playerfailures.moc"
