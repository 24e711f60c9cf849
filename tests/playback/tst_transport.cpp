#include "core/appsettings.h"
#include "fakeplayback.h"
#include "playback/cdgnormaliser.h"
#include "playback/keycontrol.h"
#include "playback/modpacemaker.h"
#include "playback/songstarter.h"
#include "playback/transport.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace fakeplayback;
using State = Transport::State;

// The play panel, the clock and the auto-play machine, tick by tick against a
// fake player; no test here waits for a timer.
class TestTransport : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<PlaybackRig> m_rig;
    std::unique_ptr<Transport> m_transport;
    QTemporaryDir m_songs;

    QString songFile(const QString& name) {
        const QString p = m_songs.filePath(name);
        playbackmedia::writeFile(p, "ID3 not really");
        return p;
    }
    void fillQueue(int n) {
        for (int i = 0; i < n; ++i)
            m_rig->queue.rows.append(
                song(QStringLiteral("Singer %1").arg(i), songFile(QStringLiteral("s%1.mp3").arg(i))));
    }
    int plays() const { return int(m_rig->journal.count("SendCommand:40045")); }

private slots:
    void init() {
        m_ws = std::make_unique<TestWorkspace>(true);
        m_prompts = std::make_unique<ScriptedPrompts>();
        Cfg = AppSettings();
        m_rig = std::make_unique<PlaybackRig>();
        m_rig->journal.clear();
        m_transport = std::make_unique<Transport>(m_rig->player, m_rig->starter, m_rig->queue, m_rig->view);
    }
    void cleanup() {
        m_transport.reset();
        m_rig.reset();
        m_prompts.reset();
        m_ws.reset();
    }

    void formatTime_data() {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("minus one") << -1.0 << "00:00";
        QTest::newRow("zero") << 0.0 << "0:00";
        QTest::newRow("nine") << 9.0 << "0:09";
        QTest::newRow("fraction") << 59.9 << "0:59";
        QTest::newRow("ten minutes") << 600.0 << "10:00";
        QTest::newRow("an hour, unpadded") << 3661.0 << "61:01";
    }
    void formatTime() {
        QFETCH(double, seconds);
        QTEST(FormatTime(seconds), "text");
    }

    void clockCountsDown_data() {
        QTest::addColumn<int>("raw");
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("total");
        QTest::addColumn<QString>("remaining");
        const auto row = [](const char* name, int raw, int position, int length, const char* total,
                            const char* remaining) {
            QTest::newRow(name) << raw << position << length << QString(total) << QString(remaining);
        };
        row("stopped", 0, 50, 180, "0:00", "0:00");
        row("playing", 1, 65, 180, "3:00", "1:55");
        row("under a second reads 0", 1, 0, 180, "3:00", "3:00");
        row("nothing loaded yet", 1, -1, -1, "00:00", "00:00");
        row("length 0, position 0", 1, 0, 0, "0:00", "0:00");
        row("paused counts as running", 3, 10, 70, "1:10", "1:00");
    }
    void clockCountsDown() {
        QFETCH(int, raw);
        QFETCH(int, position);
        QFETCH(int, length);
        m_rig->player.raw = raw;
        m_rig->player.position = position;
        m_rig->player.length = length;
        m_transport->tmrUpdateClock_Timer();
        QTEST(m_rig->view.total, "total");
        QTEST(m_rig->view.remaining, "remaining");
    }

    void playButtonTakesTheFirstOrTheSelectedRow_data() {
        QTest::addColumn<bool>("fromFirst");
        QTest::addColumn<int>("selected");
        QTest::addColumn<QString>("played");
        QTest::newRow("from position 1") << true << 2 << "Singer 0";
        QTest::newRow("selected row") << false << 2 << "Singer 2";
    }
    void playButtonTakesTheFirstOrTheSelectedRow() {
        QFETCH(bool, fromFirst);
        QFETCH(int, selected);
        Cfg.PlayFromPosition1 = fromFirst;
        fillQueue(3);
        m_rig->queue.selected = selected;
        m_transport->btnPlayTrack_Click();
        QTEST(m_rig->view.performer, "played");
        QCOMPARE(m_transport->state(), State::Idle); // auto-play is off
    }

    void playAndRestartOnAnEmptyQueueDoNothing() {
        m_transport->btnPlayTrack_Click();
        m_transport->btnRestart_Click();
        QVERIFY(m_rig->journal.isEmpty());
    }

    void doubleClickPlaysOnlyWhenAllowed_data() {
        QTest::addColumn<bool>("allowed");
        QTest::newRow("allowed") << true;
        QTest::newRow("not allowed") << false;
    }
    void doubleClickPlaysOnlyWhenAllowed() {
        QFETCH(bool, allowed);
        Cfg.AllowDoubleClicks = allowed;
        fillQueue(3);
        m_transport->queueRow_DblClick(1);
        QCOMPARE(m_rig->view.performer, allowed ? QStringLiteral("Singer 1") : QString());
        QCOMPARE(m_rig->queue.rowCount(), allowed ? 2 : 3);
    }

    void pauseButton_data() {
        QTest::addColumn<int>("raw");
        QTest::addColumn<QString>("sent");
        QTest::newRow("paused resumes") << 3 << "SendCommand:40045";
        QTest::newRow("playing pauses") << 1 << "SendCommand:40046";
        QTest::newRow("stopped sends pause, not play") << 0 << "SendCommand:40046";
    }
    void pauseButton() {
        QFETCH(int, raw);
        m_rig->player.raw = raw;
        m_transport->btnPause_Click();
        QTEST(m_rig->journal.join(';'), "sent");
    }

    void autoPlayWalksTheQueueWithoutDelay() {
        fillQueue(3);
        m_transport->chkAutoPlay_Click(true);
        QCOMPARE(m_transport->state(), State::Idle); // nothing plays yet
        m_transport->btnPlayTrack_Click();
        QCOMPARE(m_transport->state(), State::Watching);
        QCOMPARE(m_rig->view.performer, QStringLiteral("Singer 0"));
        m_transport->tmrAutoplay_Timer(); // still playing
        QCOMPARE(plays(), 1);
        m_rig->player.raw = PlayerLink::RawPaused;
        m_transport->tmrAutoplay_Timer(); // paused is not the end
        QCOMPARE(plays(), 1);
        m_rig->player.raw = PlayerLink::RawStopped; // the song ends
        m_transport->tmrAutoplay_Timer();
        QCOMPARE(plays(), 2);
        QCOMPARE(m_rig->view.performer, QStringLiteral("Singer 1"));
        QCOMPARE(m_transport->state(), State::Watching);
        m_rig->player.raw = PlayerLink::RawStopped;
        m_transport->tmrAutoplay_Timer();
        QCOMPARE(m_rig->view.performer, QStringLiteral("Singer 2"));
        QCOMPARE(m_rig->queue.rowCount(), 0);
        // The queue is empty: the next tick goes Idle and sends nothing.
        const int before = int(m_rig->journal.size());
        m_transport->tmrAutoplay_Timer();
        QCOMPARE(m_transport->state(), State::Idle);
        QCOMPARE(m_rig->journal.size(), before);
    }

    void autoPlayWaitsWithDelay() {
        Cfg.AutoPlayDelay = 7;
        m_transport->setAutoPlayDelay(Cfg.AutoPlayDelay);
        QCOMPARE(m_transport->tmrDelay.interval(), 7000);
        fillQueue(2);
        m_transport->chkAutoPlay_Click(true);
        m_transport->chkDelay_Click(true);
        m_transport->btnPlayTrack_Click();
        m_rig->player.raw = PlayerLink::RawStopped;
        m_transport->tmrAutoplay_Timer();
        QCOMPARE(m_transport->state(), State::Waiting);
        QCOMPARE(plays(), 1);
        m_transport->tmrDelay_Timer();
        QCOMPARE(plays(), 2);
        QCOMPARE(m_rig->view.performer, QStringLiteral("Singer 1"));
        QCOMPARE(m_transport->state(), State::Watching);
    }

    void stopDuringWaitingLeavesTheDelayRunning() {
        fillQueue(2);
        m_transport->chkAutoPlay_Click(true);
        m_transport->chkDelay_Click(true);
        m_transport->btnPlayTrack_Click();
        m_rig->player.raw = PlayerLink::RawStopped;
        m_transport->tmrAutoplay_Timer();
        QCOMPARE(m_transport->state(), State::Waiting);
        m_transport->btnStop_Click();
        QCOMPARE(m_transport->state(), State::Waiting);
        m_transport->tmrDelay_Timer();
        QCOMPARE(m_rig->view.performer, QStringLiteral("Singer 1"));
    }

    void stopDuringWatchingGoesIdle() {
        fillQueue(2);
        m_transport->chkAutoPlay_Click(true);
        m_transport->btnPlayTrack_Click();
        m_transport->btnStop_Click();
        QCOMPARE(m_transport->state(), State::Idle);
        QCOMPARE(m_rig->view.performer, QString());
        QCOMPARE(m_rig->view.key, QStringLiteral("0"));
    }

    void autoPlaySwitch_data() {
        QTest::addColumn<int>("raw");
        QTest::addColumn<bool>("watching");
        QTest::newRow("playing") << 1 << true;
        QTest::newRow("paused") << 3 << false;
        QTest::newRow("stopped") << 0 << false;
    }
    void autoPlaySwitch() {
        QFETCH(int, raw);
        QFETCH(bool, watching);
        m_rig->player.raw = raw;
        m_transport->chkAutoPlay_Click(true);
        QCOMPARE(m_transport->state() == State::Watching, watching);
        m_transport->chkAutoPlay_Click(false);
        QCOMPARE(m_transport->state(), State::Idle);
    }

    void missingFileHaltsTheWalkAtItsRow() {
        fillQueue(1);
        m_rig->queue.rows.prepend(song("Gone", m_songs.filePath("gone.mp3")));
        m_transport->chkAutoPlay_Click(true);
        m_rig->player.raw = PlayerLink::RawPlaying;
        m_transport->chkAutoPlay_Click(true);
        m_rig->player.raw = PlayerLink::RawStopped;
        m_transport->tmrAutoplay_Timer();
        m_transport->tmrAutoplay_Timer();
        QCOMPARE(m_prompts->countTitle("Song Not Found"), 2);
        QCOMPARE(m_rig->queue.rowCount(), 2);
        QCOMPARE(m_transport->state(), State::Watching);
        QCOMPARE(plays(), 0);
    }

    void restart_data() {
        QTest::addColumn<bool>("noFade");
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("without fade") << true << QStringList{"SendCommand:40047", "SendCommand:40045"};
        QTest::newRow("with fade") << false << QStringList{"SendCommand:40147"};
    }
    void restart() {
        QFETCH(bool, noFade);
        QFETCH(QStringList, sent);
        Cfg.NoFadeOnRestart = noFade;
        fillQueue(2);
        m_transport->chkAutoPlay_Click(true);
        m_transport->btnPlayTrack_Click();
        m_rig->view.performer.clear();
        m_rig->journal.clear();
        m_transport->btnRestart_Click();
        QCOMPARE(m_rig->view.performer, QStringLiteral("Singer 0")); // the labels shown again
        QCOMPARE(m_rig->journal.filter("SendCommand"), sent);
        QCOMPARE(m_transport->tmrRestart.isActive(), !noFade);
        if (noFade)
            return;
        m_transport->tmrRestart_Timer(); // still fading
        QCOMPARE(m_rig->journal.filter("SendCommand").size(), 1);
        m_rig->player.raw = PlayerLink::RawStopped;
        m_transport->tmrRestart_Timer();
        QCOMPARE(m_rig->journal.filter("SendCommand").last(), QStringLiteral("SendCommand:40045"));
        QVERIFY(!m_transport->tmrRestart.isActive());
        QCOMPARE(m_transport->state(), State::Watching);
        QCOMPARE(m_rig->queue.rowCount(), 1); // the fade's end did not start the next song
    }
};

// The key, vocal and balance buttons against a fake player.
class TestKeyControl : public QObject {
    Q_OBJECT
    QStringList m_journal;
    std::unique_ptr<FakePlayer> m_player;
    std::unique_ptr<FakeView> m_view;
    std::unique_ptr<modPacemaker> m_pacemaker;
    std::unique_ptr<KeyControl> m_keys;

private slots:
    void init() {
        m_journal.clear();
        m_player = std::make_unique<FakePlayer>(m_journal);
        m_view = std::make_unique<FakeView>(m_journal);
        m_pacemaker = std::make_unique<modPacemaker>(*m_player);
        m_keys = std::make_unique<KeyControl>(*m_pacemaker, *m_player, *m_view);
    }

    void keyStepsStopAtTheEnds_data() {
        QTest::addColumn<QString>("start");
        QTest::addColumn<int>("presses"); // positive up, negative down
        QTest::addColumn<QString>("end");
        QTest::addColumn<int>("filtersSet");
        QTest::newRow("2 up eleven times") << "2" << 11 << "12" << 10;
        QTest::newRow("-10 down five times") << "-10" << -5 << "-12" << 2;
        QTest::newRow("at 12 up does nothing") << "12" << 1 << "12" << 0;
        QTest::newRow("-1 up to 0 takes the shifter out") << "-1" << 1 << "0" << 0;
    }
    void keyStepsStopAtTheEnds() {
        QFETCH(QString, start);
        QFETCH(int, presses);
        m_view->key = start;
        for (int i = 0; i < std::abs(presses); ++i)
            presses > 0 ? m_keys->btnKeyUp_Click() : m_keys->btnKeyDown_Click();
        QTEST(m_view->key, "end");
        QTEST(int(m_journal.filter("setAudioFilter:kvpitch").size()), "filtersSet");
        QCOMPARE(m_keys->currentKey(), m_view->key.toInt());
        if (m_view->key != "0" && m_journal.filter("setAudioFilter").size() > 0)
            QCOMPARE(m_player->filters.value("kvpitch"), modPacemaker::pitchFilter(m_view->key.toInt()));
    }

    void keyButtonsLookForTheShifterFirst() {
        QVERIFY(!m_pacemaker->isFound());
        m_keys->btnKeyUp_Click();
        QVERIFY(m_pacemaker->isFound());
        QCOMPARE(m_player->filters.value("kvpitch"), QStringLiteral("rubberband=pitch-scale=1.059463"));
    }

    void resetWithoutAPlayerStillShowsZero() {
        m_player->connected = false;
        m_view->key = "4";
        m_keys->btnKeyReset_Click();
        QCOMPARE(m_view->key, QStringLiteral("0"));
        QVERIFY(m_journal.filter("Filter").isEmpty());
        m_keys->btnKeyUp_Click(); // a key change with nothing to talk to: the caption moves, nothing fails
        QCOMPARE(m_view->key, QStringLiteral("1"));
    }

    void vocalsAndBalance() {
        m_pacemaker->FindPaceMaker();
        m_keys->OseChkVocals_Click(true);
        QCOMPARE(m_player->filters.value("kvvocals"), modPacemaker::vocalCutFilter());
        m_keys->OseChkVocals_Click(false);
        QVERIFY(!m_player->filters.contains("kvvocals"));
        for (int i : {0, 1, 2, 3, -1})
            m_keys->btnBalance_Click(i);
        QCOMPARE(m_journal.filter("SetPanning"),
                 (QStringList{"SetPanning:-127", "SetPanning:0", "SetPanning:127"}));
    }
};

// The CD+G copy that starts the clock at the first packet.
class TestCdgNormaliser : public QObject {
    Q_OBJECT
    static QByteArray packet(char command, char instruction = 0) {
        QByteArray p(24, '\0');
        p[0] = command;
        p[1] = instruction;
        return p;
    }

private slots:
    void normalise_data() {
        QTest::addColumn<QByteArray>("in");
        QTest::addColumn<QList<int>>("neutralised"); // packet indexes that become do-nothing commands
        const QByteArray empty = packet(0), junk = packet(0x13), cmd = packet(0x09, 0x01);
        QTest::newRow("starts with a command") << (cmd + empty + empty) << QList<int>{};
        QTest::newRow("leading empties") << (empty + junk + empty + cmd + empty) << QList<int>{0, 1, 2};
        QByteArray longer = cmd; // 100 packets: 85 past the first 2 KB
        for (int i = 1; i < 100; ++i)
            longer += empty;
        QList<int> every30;
        // Empty packets past 2048 bytes start at index 86 (86*24 = 2064); each 30th of them is replaced.
        for (int i = 86, n = 0; i < 100; ++i)
            if (++n % 30 == 0)
                every30 << i;
        QTest::newRow("short tail: none past 2 KB reach 30") << longer << every30;
        QByteArray big = cmd;
        for (int i = 1; i < 200; ++i)
            big += (i == 120 ? cmd : empty);
        QList<int> big30;
        for (int i = 86, n = 0; i < 200; ++i)
            if (i != 120 && ++n % 30 == 0)
                big30 << i;
        QTest::newRow("every 30th empty after 2 KB, commands not counted") << big << big30;
        QTest::newRow("all empty") << (empty + empty) << QList<int>{0, 1};
        QTest::newRow("partial packet at the end kept") << (cmd + QByteArray(10, '\0')) << QList<int>{};
    }
    void normalise() {
        QFETCH(QByteArray, in);
        QFETCH(QList<int>, neutralised);
        const QByteArray out = CdgNormaliser::normalise(in);
        QCOMPARE(out.size(), in.size());
        for (qsizetype i = 0; i < in.size() / 24; ++i) {
            const QByteArray o = out.mid(i * 24, 24);
            if (neutralised.contains(int(i)))
                QCOMPARE(o, packet(0x09));
            else
                QCOMPARE(o, in.mid(i * 24, 24));
        }
        QCOMPARE(out.mid(out.size() / 24 * 24), in.mid(in.size() / 24 * 24));
    }
};

KV_TEST_CLASS(TestTransport)
KV_TEST_CLASS(TestKeyControl)
KV_TEST_CLASS(TestCdgNormaliser)
#include "tst_transport.moc"
