#include "core/settings.h"
#include "jinglerig.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace jinglemedia;
using namespace playbackmedia;

// The jingle bank on its own engine beside the karaoke player, both real.
class TestJingleBank : public QObject, private RigSession {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_wrapper;

    QString media(const char* name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    void assign(int index, const QString& path) { settings::writeText(keys::Jingle[size_t(index)], path); }
    bool jinglePlays(const QString& path) {
        return QTest::qWaitFor([&] { return m_rig->jinglePath() == path && m_rig->jinglePos() > 0.2; },
                               kPlayerSlack);
    }

private slots:
    void initTestCase() {
        QVERIFY(m_dir.isValid());
        m_wrapper = writePlayerWrapper(m_dir.path());
        QVERIFY(makeMp3(media("Applause.mp3"), 8.0));
        QVERIFY(makeMp3(media("Song.mp3"), 30.0));
        QVERIFY(makeTone(media("Fanfare.wav"), 8.0, "wav", "pcm_s16le"));
        QVERIFY(makeTone(media("Drumroll.wma"), 8.0, "asf", "wmav2"));
        QVERIFY(writeFile(media("Broken.mp3"), QByteArray(64 * 1024, '\x5a')));
    }
    void init() { openSession(m_wrapper); }
    void cleanup() { closeSession(); }

    // The captions the buttons get from the settings. Bad values in a key
    // (a path far too long for the system, bytes that are not UTF-8) cost
    // that button only.
    void captions_data() {
        QTest::addColumn<QString>(
            "file"); // made in the media folder when not empty; "@" prefix: left missing
        QTest::addColumn<QByteArray>("raw"); // written into settings.ini as key 7's value instead
        QTest::addColumn<QString>("caption");
        QTest::newRow("unassigned") << "" << QByteArray() << " Not Assigned";
        QTest::newRow("mp3") << "Applause.mp3" << QByteArray() << "Applause";
        QTest::newRow("five-letter extension loses four") << "Intro.flacx" << QByteArray() << "Intro.f";
        QTest::newRow("no extension loses four") << "Drumroll" << QByteArray() << "Drum";
        QTest::newRow("ampersand and spaces")
            << "Rock & Roll Intro.wav" << QByteArray() << "Rock & Roll Intro";
        QTest::newRow("file gone") << "@Gone.mp3" << QByteArray() << "Not Assigned";
        QTest::newRow("10,000-character path") << ""
                                               << "/" + QByteArray(10000, 'x') + ".mp3"
                                               << "Not Assigned";
        QTest::newRow("invalid UTF-8")
            << "" << QByteArray("/music/\xff\xfe\xc3(bad\x80.mp3") << "Not Assigned";
    }
    void captions() {
        QFETCH(QString, file);
        QFETCH(QByteArray, raw);
        QFETCH(QString, caption);
        assign(2, media("Applause.mp3"));
        QString path;
        if (!file.isEmpty()) {
            path = m_dir.filePath(file.startsWith('@') ? file.mid(1) : file);
            if (!file.startsWith('@') && !QFileInfo::exists(path))
                QVERIFY(writeFile(path, "x"));
            assign(7, path);
        } else if (!raw.isEmpty()) {
            QFile ini(m_ws->settingsFile());
            QVERIFY(ini.open(QIODevice::Append));
            // [Jingles] is the template's last section.
            ini.write("\n7=" + raw + "\n");
        }
        m_rig->bank.InitialiseJingles();
        QCOMPARE(m_rig->bank.button(7).caption, caption);
        if (!path.isEmpty())
            QCOMPARE(m_rig->bank.button(7).tag, path);
        // The other buttons are built all the same.
        QCOMPARE(m_rig->bank.button(2).caption, QStringLiteral("Applause"));
        QCOMPARE(m_rig->bank.button(15).caption, QStringLiteral(" Not Assigned"));
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
        QVERIFY(m_prompts->calls.isEmpty());
    }

    // The program starts the engine's process and goes on with its own start,
    // buttons included; the engine is set up once it answers, or by the first
    // thing asked of it, whichever comes first.
    void engineStartedAheadIsReadyWhenAsked_data() {
        QTest::addColumn<bool>("leftToItself");
        QTest::newRow("set up once it answers") << true;
        QTest::newRow("set up by the first load") << false;
    }
    void engineStartedAheadIsReadyWhenAsked() {
        QFETCH(bool, leftToItself);
        assign(0, media("Applause.mp3"));
        m_rig->bank.InitBacking(m_wrapper);
        QVERIFY(m_rig->jingles.isRunning());
        m_rig->bank.InitialiseJingles();
        QVERIFY(m_rig->jingles.isInitPending());
        if (leftToItself) {
            QTRY_VERIFY_WITH_TIMEOUT(!m_rig->jingles.isInitPending(), 10000);
            m_rig->bank.cmdJingle_Click(0);
        } else {
            m_rig->jingles.PlayerLoad(media("Applause.mp3"));
            QVERIFY(!m_rig->jingles.isInitPending());
            m_rig->jingles.PlayerPlay();
        }
        QVERIFY(jinglePlays(media("Applause.mp3")));
    }

    // One voice: a click stops what sounds and starts its own file from the
    // beginning, the same button included. A missing file and a file that
    // cannot be decoded are tried, quietly, stop what sounded, and leave the
    // bank as usable as before. Between them the rows play each kind of file
    // the options page offers (mp3, wav, wma).
    void clicks_data() {
        QTest::addColumn<QString>("second"); // the button clicked while button 0 plays
        QTest::addColumn<bool>("sounds");    // the second click is heard
        QTest::newRow("same button restarts") << "Applause.mp3" << true;
        QTest::newRow("another button") << "Fanfare.wav" << true;
        QTest::newRow("file gone") << "Gone.mp3" << false;
        QTest::newRow("cannot be decoded") << "Broken.mp3" << false;
        QTest::newRow("unassigned") << "" << false;
    }
    void clicks() {
        QFETCH(QString, second);
        QFETCH(bool, sounds);
        QVERIFY(m_rig->jingles.PlayerInit(m_wrapper, 0));
        QCOMPARE(m_rig->jingles.PlayerState(), 0); // nothing loaded yet
        const QString secondPath = second.isEmpty() ? QString() : m_dir.filePath(second);
        assign(0, media("Applause.mp3"));
        assign(1, secondPath);
        assign(2, media("Drumroll.wma"));
        m_rig->bank.InitialiseJingles();
        m_rig->bank.cmdJingle_Click(0);
        QVERIFY(jinglePlays(media("Applause.mp3")));
        QVERIFY(QTest::qWaitFor([&] { return m_rig->jinglePos() > 1.5; }, kPlayerSlack));

        m_rig->bank.cmdJingle_Click(second == "Applause.mp3" ? 0 : 1);
        if (sounds) {
            QVERIFY(jinglePlays(secondPath));
            QVERIFY2(m_rig->jinglePos() < 1.5, "the jingle starts from its beginning");
            QCOMPARE(m_rig->jingles.PlayerState(), 1);
        } else {
            // Tried (the engine was handed the path) and stopped what sounded.
            QCOMPARE(m_rig->jingleProp("playlist").toArray().first().toObject().value("filename").toString(),
                     secondPath);
            QTRY_COMPARE_WITH_TIMEOUT(m_rig->jingles.PlayerState(), 3, kPlayerSlack);
            QVERIFY(m_rig->jinglePos() < 0);
        }
        // The bank is as usable as before.
        m_rig->bank.cmdJingle_Click(2);
        QVERIFY(jinglePlays(media("Drumroll.wma")));
        QVERIFY(m_prompts->calls.isEmpty());
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // A jingle clicked while the karaoke track plays: with the setting on the
    // jingle starts and only then the track fades out and stops; with it off,
    // or with the track paused, the track is left as it is.
    void jingleOverAKaraokeTrack_data() {
        QTest::addColumn<bool>("setting");
        QTest::addColumn<bool>("paused");
        QTest::addColumn<QString>("after");
        QTest::newRow("setting on, playing: fades and stops") << true << false << "STOPPED";
        QTest::newRow("setting off: both sound") << false << false << "PLAYING";
        QTest::newRow("setting on, paused: stays paused") << true << true << "PAUSED";
    }
    void jingleOverAKaraokeTrack() {
        QFETCH(bool, setting);
        QFETCH(bool, paused);
        QFETCH(QString, after);
        QVERIFY(m_rig->startBoth(m_wrapper));
        Cfg.StopKaraokeTrackOnJinglePlay = setting;
        assign(3, media("Applause.mp3"));
        m_rig->bank.InitialiseJingles();
        QVERIFY(m_rig->playKaraoke(media("Song.mp3")));
        if (paused) {
            m_rig->karaoke.SendCommand(PlayerLink::CmdPause);
            QTRY_COMPARE_WITH_TIMEOUT(m_rig->karaoke.GetStatus(), QStringLiteral("PAUSED"), kPlayerSlack);
        }
        m_rig->bank.cmdJingle_Click(3);
        // The jingle was handed over before the track was touched: the fade
        // has only just begun, and the jingle is already the engine's file.
        QCOMPARE(m_rig->jingleProp("playlist").toArray().first().toObject().value("filename").toString(),
                 media("Applause.mp3"));
        QCOMPARE(m_rig->karaoke.isFading(), setting && !paused);
        if (m_rig->karaoke.isFading())
            QVERIFY(m_rig->karaoke.connection().property("volume").value_or(QJsonValue()).toDouble() > 90);
        QVERIFY(jinglePlays(media("Applause.mp3")));
        QTRY_COMPARE_WITH_TIMEOUT(m_rig->karaoke.GetStatus(), after, kPlayerSlack);
        QTest::qWait(800); // longer than the fade
        QCOMPARE(m_rig->karaoke.GetStatus(), after);
        QCOMPARE(m_rig->jingles.PlayerState(), 1);
        QVERIFY(m_prompts->calls.isEmpty());
    }

    // The outputs are mpv's, by their descriptions, in a stable order. An
    // AudioDevice beyond the list selects nothing; one in it is used.
    void outputs_data() {
        QTest::addColumn<int>("device");
        QTest::addColumn<bool>("selected");
        QTest::newRow("second") << 1 << true;
        QTest::newRow("beyond the list") << 99 << false;
        QTest::newRow("negative") << -1 << false;
    }
    void outputs() {
        QFETCH(int, device);
        QFETCH(bool, selected);
        settings::writeInt(keys::AudioDevice, device);
        m_rig->bank.InitBacking(m_wrapper);
        QCOMPARE(m_rig->bank.audioDevice(), qint16(device));
        JinglePlayer& jp = m_rig->jingles;
        QVERIFY(jp.isRunning());
        const int count = jp.DeviceCount();
        QVERIFY(count >= 2);
        QCOMPARE(jp.DeviceCount(), count);
        QCOMPARE(jp.DeviceName(0), QStringLiteral("Autoselect device"));
        const QJsonArray list = jp.instance().property("audio-device-list").value_or(QJsonValue()).toArray();
        QCOMPARE(jp.DeviceName(1), list.at(1).toObject().value("description").toString());
        QCOMPARE(jp.DeviceName(count), QString());
        const QString inUse = jp.instance().property("audio-device").value_or(QJsonValue()).toString();
        QCOMPARE(inUse,
                 selected ? list.at(device).toObject().value("name").toString() : QStringLiteral("auto"));
        QCOMPARE(jp.deviceInUse().isEmpty(), !selected);
        QVERIFY(m_prompts->calls.isEmpty());
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // The jingles' sound card goes away during the show: the loss is logged
    // once however often the host clicks, the karaoke track plays on, and
    // choosing an output again makes the next loss worth a record.
    void lostOutput() {
        QVERIFY(m_rig->startBoth(m_wrapper));
        Cfg.StopKaraokeTrackOnJinglePlay = false;
        assign(0, media("Applause.mp3"));
        m_rig->bank.InitialiseJingles();
        QVERIFY(m_rig->playKaraoke(media("Song.mp3")));
        m_rig->bank.cmdJingle_Click(0);
        QVERIFY(jinglePlays(media("Applause.mp3")));
        // The card is pulled: from now on the engine cannot open its output.
        MpvInstance& engine = m_rig->jingles.instance();
        QVERIFY(engine.setProperty("ao", QStringLiteral("alsa")));
        QVERIFY(engine.setProperty("audio-device", QStringLiteral("alsa/kv-pulled-out")));
        for (int click = 0; click < 3; ++click) {
            m_rig->bank.cmdJingle_Click(0);
            QTRY_COMPARE_WITH_TIMEOUT(m_rig->jingles.PlayerState(), 3, kPlayerSlack);
        }
        QTRY_COMPARE_WITH_TIMEOUT(TestWorkspace::errorLogRecords(), 1, kPlayerSlack);
        QVERIFY(TestWorkspace::errorLog().contains("jingle output"));
        const double at = m_rig->karaokePos();
        QTRY_VERIFY_WITH_TIMEOUT(m_rig->karaokePos() > at + 1.0, kPlayerSlack);
        QCOMPARE(m_rig->karaoke.GetStatus(), QStringLiteral("PLAYING"));
        QVERIFY(m_prompts->calls.isEmpty());

        m_rig->jingles.PlayerSetDevice(1);
        QVERIFY(engine.setProperty("audio-device", QStringLiteral("alsa/kv-pulled-out")));
        m_rig->bank.cmdJingle_Click(0);
        QTRY_COMPARE_WITH_TIMEOUT(TestWorkspace::errorLogRecords(), 2, kPlayerSlack);
    }

    // The jingles come in and go out with the fades InitBacking asks for.
    void fades() {
        m_rig->bank.InitBacking(m_wrapper);
        assign(0, media("Applause.mp3"));
        m_rig->bank.InitialiseJingles();
        m_rig->bank.cmdJingle_Click(0);
        QVERIFY(jinglePlays(media("Applause.mp3")));
        QVERIFY(QJsonDocument(m_rig->jingleProp("af").toArray()).toJson().contains("afade=t=in:d=3.000"));
        QCOMPARE(m_rig->jingleProp("volume").toDouble(), 100.0);
        // Towards the end of the eight seconds the volume goes down.
        QTRY_VERIFY_WITH_TIMEOUT(m_rig->jingleProp("volume").toDouble() < 60.0, kPlayerSlack);
        QVERIFY(m_rig->jinglePos() > 5.0);
    }
};

KV_TEST_CLASS(TestJingleBank)
#include "tst_jinglebank.moc"
