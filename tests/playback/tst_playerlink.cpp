#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "playback/cdgnormaliser.h"
#include "playback/modpacemaker.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace playbackmedia;

namespace {

QJsonValue prop(WinAMP_Control& link, const char* name) {
    return link.connection().property(QString::fromLatin1(name)).value_or(QJsonValue());
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
        QVERIFY(m_link->StartPlayer());
        QVERIFY(m_link->isConnected());
        QVERIFY(m_prompts->calls.isEmpty());
    }

    void cleanupTestCase() {
        m_link.reset();
        m_ws.reset();
    }

    void init() { m_prompts->calls.clear(); }

    void playPauseStopAndPlayAgain() {
        m_link->SendCommand(PlayerLink::CmdStop);
        m_link->ClearPlaylist();
        QCOMPARE(m_link->GetLengthSeconds(), -1);
        m_link->SendCommand(PlayerLink::CmdPlay); // nothing in the list: stays stopped
        QCOMPARE(m_link->GetStatus(), QStringLiteral("STOPPED"));
        loadAndPlay(m_song);
        QTRY_COMPARE_WITH_TIMEOUT(m_link->GetLengthSeconds(), 8, kPlayerSlack);
        m_link->SendCommand(PlayerLink::CmdPause);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PAUSED"));
        // Stopped while paused: the next play must not start paused.
        m_link->SendCommand(PlayerLink::CmdStop);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("STOPPED"));
        QCOMPARE(m_link->GetPlaylistLength(), 1);
        m_link->SendCommand(PlayerLink::CmdPlay);
        QTRY_COMPARE_WITH_TIMEOUT(m_link->GetStatus(), QStringLiteral("PLAYING"), kPlayerSlack);
        QTRY_VERIFY_WITH_TIMEOUT(m_link->GetPositionSeconds() >= 0, kPlayerSlack);
        QVERIFY(m_link->GetPositionSeconds() < 3);
        m_link->ClearPlaylist(); // even while playing
        QCOMPARE(m_link->GetPlaylistLength(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(m_link->GetStatus(), QStringLiteral("STOPPED"), kPlayerSlack);
    }

    // A fade ends stopped at the volume it began with; a stop during a fade
    // ends it, so the next play is not faded out.
    void fadeStopsAndRestoresTheVolume() {
        loadAndPlay(m_song);
        m_link->connection().setProperty(QStringLiteral("volume"), 80);
        m_link->SendCommand(PlayerLink::CmdFadeStop);
        QTest::qWait(1000);
        QVERIFY(prop(*m_link, "volume").toDouble() < 60);
        QTRY_COMPARE_WITH_TIMEOUT(m_link->GetStatus(), QStringLiteral("STOPPED"), kPlayerSlack);
        QCOMPARE(prop(*m_link, "volume").toDouble(), 80.0);
        m_link->SendCommand(PlayerLink::CmdPlay);
        m_link->SendCommand(PlayerLink::CmdFadeStop);
        QTest::qWait(500);
        m_link->SendCommand(PlayerLink::CmdStop);
        QCOMPARE(prop(*m_link, "volume").toDouble(), 80.0);
        m_link->SendCommand(PlayerLink::CmdPlay);
        QTest::qWait(2500);
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        m_link->SendCommand(PlayerLink::CmdStop);
        m_link->connection().setProperty(QStringLiteral("volume"), 100);
    }

    // Names that IPC quoting could break play; graphics play from their
    // normalised copy, which starts the clock at the song's start even when
    // the graphics begin late, with the audio beside them untouched.
    void awkwardPathsPlay_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("withCdg");
        QTest::newRow("quotes, option syntax") << "It's \"Quoted\" a=%5%b;c@d, [x].mp3" << false;
        QTest::newRow("late cdg pair, non-ASCII") << "Björk – Jóga, ß.mp3" << true;
    }
    void awkwardPathsPlay() {
        QFETCH(QString, name);
        QFETCH(bool, withCdg);
        const QString dir = mediaPath(QStringLiteral("odd, folder: ü"));
        QDir().mkpath(dir);
        const QString audio = QDir(dir).filePath(name);
        QVERIFY(QFile::copy(m_song, audio));
        if (withCdg) {
            const QString cdg = QDir(dir).filePath(QFileInfo(name).completeBaseName() + ".cdg");
            QVERIFY(writeFile(cdg, cdgStream(8.0, 2.0)));
            QVERIFY(!CdgNormaliser::writeNormalisedCopy(cdg, oApplicationPaths->ApplicationSongTempPath())
                         .path.isEmpty());
        }
        loadAndPlay(audio);
        if (withCdg) {
            const QString copy = oApplicationPaths->ApplicationSongTempPath() +
                                 QFileInfo(name).completeBaseName() + ".play.cdg";
            QTRY_COMPARE_WITH_TIMEOUT(prop(*m_link, "path").toString(), copy, kPlayerSlack);
            QTRY_VERIFY_WITH_TIMEOUT(
                QJsonDocument(prop(*m_link, "track-list").toArray()).toJson().contains(audio.toUtf8()),
                kPlayerSlack);
            // Without the normalised copy the clock would start at the first command, 2 s in.
            QTRY_VERIFY_WITH_TIMEOUT(prop(*m_link, "time-pos").isDouble(), kPlayerSlack);
            QVERIFY2(prop(*m_link, "time-pos").toDouble() < 1.0,
                     qPrintable(QString::number(prop(*m_link, "time-pos").toDouble())));
            QCOMPARE(m_link->GetLengthSeconds(), 8);
        } else {
            QTRY_COMPARE_WITH_TIMEOUT(prop(*m_link, "path").toString(), audio, kPlayerSlack);
        }
        m_link->SendCommand(PlayerLink::CmdStop);
    }

    // The video window full screen on a monitor named by its output, and back.
    void videoGoesFullScreenOnTheNamedMonitor() {
        QVERIFY(m_link->setVideoFullScreen(true, QStringLiteral("HDMI-2")));
        QCOMPARE(prop(*m_link, "fullscreen").toBool(), true);
        QCOMPARE(prop(*m_link, "fs-screen-name").toString(), QStringLiteral("HDMI-2"));
        QVERIFY(m_link->setVideoFullScreen(false, QString()));
        QCOMPARE(prop(*m_link, "fullscreen").toBool(), false);
    }

    // A key set before the song loads holds for it, and a reset leaves no filter.
    void keyFilterReachesThePlayer() {
        modPacemaker pm(*m_link);
        QVERIFY(pm.FindPaceMaker());
        const auto pitch = [this]() -> QString {
            for (const QJsonValue& f : prop(*m_link, "af").toArray())
                if (f.toObject().value("label").toString() == modPacemaker::kPitchLabel)
                    return f.toObject().value("params").toObject().value("pitch-scale").toString();
            return {};
        };
        QVERIFY(pitch().isEmpty()); // the probe left nothing behind
        pm.SetPitch(-3);
        loadAndPlay(m_song);
        QCOMPARE(pitch(), QStringLiteral("0.840896"));
        pm.ResetPitch();
        QVERIFY(prop(*m_link, "af").toArray().isEmpty());
        QCOMPARE(m_link->GetStatus(), QStringLiteral("PLAYING"));
        m_link->SendCommand(PlayerLink::CmdStop);
    }
};

KV_TEST_CLASS(TestPlayerLink)
#include "tst_playerlink.moc"
