#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "playback/cdgnormaliser.h"
#include "playback/modpacemaker.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace playbackmedia;

namespace {

// How long a real player may take to answer on a loaded machine (a test run
// beside a build, say): a waited-for state comes much sooner when all is well.
constexpr int kPlayerSlack = 10000;

QJsonValue prop(WinAMP_Control& link, const char* name) {
    return link.connection().property(QString::fromLatin1(name)).value_or(QJsonValue());
}

bool loopOn(const QJsonValue& v) {
    return v.isString() ? v.toString() != "no" : v.toBool();
}

} // namespace

// The link against a real player, started once for the class.
class TestPlayerLink : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<WinAMP_Control> m_link;
    QTemporaryDir m_media;
    QString m_wrapper;
    QString m_song; // 8 seconds

    QString mediaPath(const QString& name) const { return m_media.filePath(name); }

    void loadAndPlay(const QString& path) {
        m_link->SendCommand(PlayerLink::CmdStop);
        m_link->ClearPlaylist();
        QVERIFY(m_link->PlayFile(path));
        m_link->SendCommand(PlayerLink::CmdPlay);
        QTRY_COMPARE_WITH_TIMEOUT(m_link->GetStatus(), QStringLiteral("PLAYING"), kPlayerSlack);
    }

private slots:
    void initTestCase() {
        m_ws = std::make_unique<TestWorkspace>(false);
        m_prompts = std::make_unique<ScriptedPrompts>();
        QVERIFY(m_media.isValid());
        m_wrapper = writePlayerWrapper(m_media.path());
        m_song = mediaPath(QStringLiteral("song.mp3"));
        QVERIFY(makeMp3(m_song, 8.0));
        m_link = std::make_unique<WinAMP_Control>();
        m_link->setWinampPath(m_wrapper);
        QElapsedTimer t;
        t.start();
        QVERIFY(m_link->StartPlayer());
        // The launcher's one-second wait comes first. A player started cold
        // beside a build may miss the first look and be found at a later one.
        QVERIFY2(t.elapsed() >= 1000 && t.elapsed() < kPlayerSlack, qPrintable(QString::number(t.elapsed())));
        QVERIFY(m_link->isConnected());
        QVERIFY(m_prompts->calls.isEmpty());
    }

    void cleanupTestCase() {
        m_link.reset();
        m_ws.reset();
    }

    void init() { m_prompts->calls.clear(); }

    void idlePlayerReadsStoppedAndUnavailable() {
        m_link->SendCommand(PlayerLink::CmdStop);
        m_link->ClearPlaylist();
        QCOMPARE(m_link->GetStatus(), QStringLiteral("STOPPED"));
        QCOMPARE(m_link->GetPositionSeconds(), -1);
        QCOMPARE(m_link->GetLengthSeconds(), -1);
        QCOMPARE(m_link->GetPlaylistLength(), 0);
        // Play with nothing in the list stays stopped.
        m_link->SendCommand(PlayerLink::CmdPlay);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("STOPPED"));
    }

    void playPauseStopAndPlayAgain() {
        loadAndPlay(m_song);
        QCOMPARE(m_link->LastPlayResult(), 1);
        QCOMPARE(m_link->GetPlaylistLength(), 1);
        // Length and position come once the file has opened; -1 until then.
        QTRY_COMPARE(m_link->GetLengthSeconds(), 8);
        QTRY_VERIFY(m_link->GetPositionSeconds() >= 0);
        m_link->SendCommand(PlayerLink::CmdPause);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PAUSED"));
        QCOMPARE(m_link->rawStatus(), int(PlayerLink::RawPaused));
        m_link->SendCommand(PlayerLink::CmdPlay);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        // Stopped while paused: the next play must not start paused.
        m_link->SendCommand(PlayerLink::CmdPause);
        m_link->SendCommand(PlayerLink::CmdStop);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("STOPPED"));
        QCOMPARE(m_link->GetPlaylistLength(), 1);
        m_link->SendCommand(PlayerLink::CmdPlay);
        QTRY_COMPARE_WITH_TIMEOUT(m_link->GetStatus(), QStringLiteral("PLAYING"), kPlayerSlack);
        QTRY_VERIFY(m_link->GetPositionSeconds() >= 0);
        QVERIFY(m_link->GetPositionSeconds() < 3);
        m_link->SendCommand(PlayerLink::CmdStop);
    }

    void clearPlaylistEmptiesEvenWhilePlaying() {
        loadAndPlay(m_song);
        m_link->ClearPlaylist();
        QCOMPARE(m_link->GetPlaylistLength(), 0);
        QTRY_COMPARE(m_link->GetStatus(), QStringLiteral("STOPPED"));
    }

    void fadeLowersTheVolumeThenStopsAndRestoresIt() {
        loadAndPlay(m_song);
        m_link->connection().setProperty(QStringLiteral("volume"), 80);
        QElapsedTimer t;
        t.start();
        m_link->SendCommand(PlayerLink::CmdFadeStop);
        QTest::qWait(1000);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        QVERIFY(prop(*m_link, "volume").toDouble() < 60);
        QTRY_COMPARE_WITH_TIMEOUT(m_link->GetStatus(), QStringLiteral("STOPPED"), kPlayerSlack);
        QVERIFY2(t.elapsed() >= 1700 && t.elapsed() < kPlayerSlack, qPrintable(QString::number(t.elapsed())));
        QCOMPARE(prop(*m_link, "volume").toDouble(), 80.0);
        m_link->connection().setProperty(QStringLiteral("volume"), 100);
    }

    void playDuringAFadeCancelsIt() {
        loadAndPlay(m_song);
        m_link->SendCommand(PlayerLink::CmdFadeStop);
        QTest::qWait(500);
        m_link->SendCommand(PlayerLink::CmdStop);
        QVERIFY(!m_link->isFading());
        QCOMPARE(prop(*m_link, "volume").toDouble(), 100.0);
        m_link->SendCommand(PlayerLink::CmdPlay);
        QTest::qWait(2500);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        m_link->SendCommand(PlayerLink::CmdStop);
    }

    void awkwardPathsPlay_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("withCdg");
        QTest::newRow("spaces") << "My Song - Take 2.mp3" << false;
        QTest::newRow("commas and colons") << "Artist, The: Song,1.mp3" << false;
        QTest::newRow("quotes") << "It's \"Quoted\" [x].mp3" << false;
        QTest::newRow("non-ASCII") << "Björk – Jóga ßü.mp3" << false;
        QTest::newRow("option syntax") << "a=%5%b;c@d.mp3" << false;
        QTest::newRow("cdg pair, commas") << "Artist, The: Song,1.mp3" << true;
        QTest::newRow("cdg pair, non-ASCII") << "Björk – \"Jóga\".mp3" << true;
    }
    void awkwardPathsPlay() {
        QFETCH(QString, name);
        QFETCH(bool, withCdg);
        const QString dir = mediaPath(QStringLiteral("odd, folder: ü"));
        QDir().mkpath(dir);
        const QString audio = QDir(dir).filePath(name);
        QFile::remove(audio);
        QVERIFY(QFile::copy(m_song, audio));
        const QString cdg = QDir(dir).filePath(QFileInfo(name).completeBaseName() + ".cdg");
        QFile::remove(cdg);
        if (withCdg)
            QVERIFY(writeFile(cdg, cdgStream(8.0)));
        loadAndPlay(audio);
        // For a moment after the play command the player still names the file before.
        if (withCdg) {
            // The graphics are the file; the audio plays beside them, untouched.
            const QString copy = oApplicationPaths->ApplicationSongTempPath() +
                                 QFileInfo(name).completeBaseName() + ".play.cdg";
            QTRY_COMPARE(prop(*m_link, "path").toString(), copy);
            auto externalAudio = [&] {
                for (const QJsonValue& t : prop(*m_link, "track-list").toArray()) {
                    const QJsonObject o = t.toObject();
                    if (o.value("type").toString() == "audio" && o.value("external").toBool())
                        return o.value("external-filename").toString() == audio;
                }
                return false;
            };
            QTRY_VERIFY(externalAudio());
        } else {
            QTRY_COMPARE(prop(*m_link, "path").toString(), audio);
        }
        m_link->SendCommand(PlayerLink::CmdStop);
    }

    void lateGraphicsStillStartTheSongAtZero() {
        const QString audio = mediaPath(QStringLiteral("late.mp3"));
        QFile::remove(audio);
        QVERIFY(QFile::copy(m_song, audio));
        QVERIFY(writeFile(mediaPath(QStringLiteral("late.cdg")), cdgStream(8.0, 2.0)));
        loadAndPlay(audio);
        QTRY_VERIFY(prop(*m_link, "time-pos").isDouble());
        // Without the normalised copy the clock would start at the first command, 2 s in.
        QVERIFY2(prop(*m_link, "time-pos").toDouble() < 1.0,
                 qPrintable(QString::number(prop(*m_link, "time-pos").toDouble())));
        QCOMPARE(m_link->GetLengthSeconds(), 8);
        m_link->SendCommand(PlayerLink::CmdStop);
    }

    void panningSetsABalanceFilter_data() {
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("filterParams"); // empty: no balance filter
        QTest::newRow("left") << -127 << "c0=1.0000*c0|c1=0.0000*c1";
        QTest::newRow("right") << 127 << "c0=0.0000*c0|c1=1.0000*c1";
        QTest::newRow("centre") << 0 << "";
        QTest::newRow("out of range is dropped") << 128 << "KEEP";
    }
    void panningSetsABalanceFilter() {
        QFETCH(int, value);
        QFETCH(QString, filterParams);
        loadAndPlay(m_song);
        m_link->SetPanning(-64);
        auto balance = [this]() -> QString {
            for (const QJsonValue& f : prop(*m_link, "af").toArray())
                if (f.toObject().value("label").toString() == "kvbalance")
                    return QJsonDocument(f.toObject().value("params").toObject())
                        .toJson(QJsonDocument::Compact);
            return {};
        };
        const QString before = balance();
        QVERIFY(!before.isEmpty());
        m_link->SetPanning(value);
        if (filterParams == "KEEP")
            QCOMPARE(balance(), before);
        else if (filterParams.isEmpty())
            QVERIFY(balance().isEmpty());
        else
            QVERIFY2(balance().contains(filterParams), qPrintable(balance()));
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        m_link->SetPanning(0);
        m_link->SendCommand(PlayerLink::CmdStop);
    }

    void repeatAndShuffleAreSwitchedOffOnlyWhenOn_data() {
        QTest::addColumn<QString>("loop");
        QTest::addColumn<bool>("shuffle");
        QTest::newRow("both on") << "inf" << true;
        QTest::newRow("shuffle on, repeat off") << "no" << true;
        QTest::newRow("repeat on, shuffle off") << "inf" << false;
        QTest::newRow("both off") << "no" << false;
    }
    void repeatAndShuffleAreSwitchedOffOnlyWhenOn() {
        QFETCH(QString, loop);
        QFETCH(bool, shuffle);
        m_link->connection().setProperty("loop-playlist", loop);
        m_link->connection().setProperty("shuffle", shuffle);
        m_link->DisableRepeat();
        m_link->DisableShuffle();
        QVERIFY(!loopOn(prop(*m_link, "loop-playlist")));
        QCOMPARE(prop(*m_link, "shuffle").toBool(), false);
        // The toggles of the command table switch them on again.
        m_link->SendCommand(PlayerLink::CmdToggleRepeat);
        m_link->SendCommand(PlayerLink::CmdToggleShuffle);
        QVERIFY(loopOn(prop(*m_link, "loop-playlist")));
        QCOMPARE(prop(*m_link, "shuffle").toBool(), true);
        m_link->DisableRepeat();
        m_link->DisableShuffle();
    }

    void keyFilterIsAppliedAndKeptForTheNextFile_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("scale");
        QTest::newRow("+1") << 1 << "1.059463";
        QTest::newRow("-3") << -3 << "0.840896";
        QTest::newRow("+12") << 12 << "2.000000";
        QTest::newRow("-12") << -12 << "0.500000";
    }
    void keyFilterIsAppliedAndKeptForTheNextFile() {
        QFETCH(int, key);
        QFETCH(QString, scale);
        modPacemaker pm(*m_link);
        QVERIFY(pm.FindPaceMaker());
        auto pitch = [this]() -> QString {
            for (const QJsonValue& f : prop(*m_link, "af").toArray()) {
                const QJsonObject o = f.toObject();
                if (o.value("label").toString() == modPacemaker::kPitchLabel &&
                    o.value("name") == "rubberband")
                    return o.value("params").toObject().value("pitch-scale").toString();
            }
            return {};
        };
        QVERIFY(pitch().isEmpty()); // the probe left nothing behind
        pm.SetPitch(key);
        QCOMPARE(pitch(), scale);
        loadAndPlay(m_song);
        QCOMPARE(pitch(), scale);
        m_link->SendCommand(PlayerLink::CmdStop);
        m_link->SendCommand(PlayerLink::CmdPlay);
        QTRY_COMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        QCOMPARE(pitch(), scale);
        pm.SetVocals(-1);
        QVERIFY(QJsonDocument(prop(*m_link, "af").toArray()).toJson().contains("kvvocals"));
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        pm.SetVocals(0);
        pm.ResetPitch();
        QVERIFY(pitch().isEmpty());
        QVERIFY(prop(*m_link, "af").toArray().isEmpty());
        m_link->SendCommand(PlayerLink::CmdStop);
    }
};

KV_TEST_CLASS(TestPlayerLink)
#include "tst_playerlink.moc"
