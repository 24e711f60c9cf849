#include "core/appsettings.h"
#include "fakeplayback.h"
#include "playback/transport.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QElapsedTimer>
#include <QJsonValue>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>

using namespace fakeplayback;
using namespace playbackmedia;

namespace {

// Restarts are repeated this often: the timers they raced against gave the
// fault in about one try in three.
constexpr int kRestartTries = 30;
// A short fade keeps the repetitions quick; the path is the same as with the long one.
constexpr int kFadeMs = 200;

// The play panel wired to a real player (silent and blind), with the queue and
// the labels faked: the transport's timers run for real, as during a show.
struct LiveRig {
    QStringList journal;
    WinAMP_Control link;
    modPacemaker pacemaker{link};
    FakeQueue queue{journal};
    FakeView view{journal};
    SongStarter starter{link, pacemaker, queue, view};
    Transport transport{link, starter, queue, view};

    QJsonValue prop(const char* name) {
        return link.connection().property(QString::fromLatin1(name)).value_or(QJsonValue());
    }
    QString playing() { return prop("path").toString(); }
    double position() { return prop("time-pos").toDouble(-1); }
    // How many times a queue row was taken up to be played.
    int starts() const { return int(journal.filter(QStringLiteral("GetDetailsFromRow:")).size()); }
};

} // namespace

// The transport against a real player, the way a host meets it in front of a
// room: pausing, a player that stalls, restarts and stops in quick succession.
class TestLiveShow : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<LiveRig> m_rig;
    QTemporaryDir m_media;
    QString m_wrapper;
    QStringList m_songs; // one file per singer, 30 seconds each

    // Queues the first `n` songs and starts the first with the play button.
    bool startShow(int n) {
        for (int i = 0; i < n; ++i)
            m_rig->queue.rows.append(song(QStringLiteral("Singer %1").arg(i), m_songs[i]));
        m_rig->transport.btnPlayTrack_Click();
        return QTest::qWaitFor([this] { return m_rig->position() >= 1.0; }, kPlayerSlack) &&
               m_rig->playing() == m_songs[0];
    }

private slots:
    void initTestCase() {
        QVERIFY(m_media.isValid());
        m_wrapper = writePlayerWrapper(m_media.path());
        const QString first = m_media.filePath(QStringLiteral("Singer 0.mp3"));
        QVERIFY(makeMp3(first, 30.0));
        m_songs = {first};
        for (int i = 1; i < 3; ++i) {
            m_songs.append(m_media.filePath(QStringLiteral("Singer %1.mp3").arg(i)));
            QVERIFY(QFile::copy(first, m_songs.last()));
        }
    }
    void init() {
        m_ws = std::make_unique<TestWorkspace>(true);
        m_prompts = std::make_unique<ScriptedPrompts>();
        Cfg = AppSettings();
        Cfg.PlayFromPosition1 = true;
        m_rig = std::make_unique<LiveRig>();
        m_rig->link.setWinampPath(m_wrapper);
        QVERIFY(m_rig->link.StartPlayer());
    }
    void cleanup() {
        m_rig.reset();
        m_prompts.reset();
        m_ws.reset();
    }

    // A player frozen for three seconds in the middle of a song, Auto Play on:
    // afterwards the same song goes on and the queue has not moved. Meanwhile
    // the window is never held for long, the clock keeps what it showed, and
    // the stall is logged once.
    void stalledPlayerIsNoEndOfTheSong() {
        m_rig->transport.chkAutoPlay_Click(true);
        m_rig->transport.tmrUpdateClock.start();
        QVERIFY(startShow(3));
        QCOMPARE(m_rig->transport.state(), Transport::State::Watching);
        const int logged = TestWorkspace::errorLogRecords();
        const pid_t pid = pid_t(m_rig->link.playerProcessId());
        const double frozenAt = m_rig->position();
        m_rig->view.clock.clear();

        QElapsedTimer sinceBeat;
        qint64 longestHold = 0;
        QTimer beat;
        beat.setInterval(20);
        connect(&beat, &QTimer::timeout, this,
                [&] { longestHold = std::max(longestHold, sinceBeat.restart()); });
        sinceBeat.start();
        beat.start();
        QVERIFY(::kill(pid, SIGSTOP) == 0);
        auto thaw = qScopeGuard([pid] { ::kill(pid, SIGCONT); });
        QTest::qWait(3000);
        thaw.dismiss();
        QVERIFY(::kill(pid, SIGCONT) == 0);
        beat.stop();

        QVERIFY(QTest::qWaitFor([&] { return m_rig->position() > frozenAt + 1.0; }, kPlayerSlack));
        // Let auto-play look at the player twice more now that it answers.
        QSignalSpy looks(&m_rig->transport.tmrAutoplay, &QTimer::timeout);
        QTest::qWaitFor([&] { return looks.size() >= 2 || !m_rig->transport.tmrAutoplay.isActive(); },
                        kPlayerSlack);
        QCOMPARE(m_rig->queue.rowCount(), 2);
        QCOMPARE(m_rig->playing(), m_songs[0]);
        QCOMPARE(m_rig->link.GetStatus(), QStringLiteral("PLAYING"));
        QCOMPARE(m_rig->starts(), 1);
        QVERIFY2(longestHold < 2500, qPrintable(QString::number(longestHold)));
        QVERIFY2(!m_rig->view.clock.contains(QStringLiteral("0:00|0:00")),
                 qPrintable(m_rig->view.clock.join(", ")));
        QCOMPARE(TestWorkspace::errorLogRecords(), logged + 1);
        QVERIFY(TestWorkspace::errorLog().contains(QStringLiteral("The player gave no answer")));
        QVERIFY(m_prompts->calls.isEmpty());
    }

    // Restart with a fade while Auto Play is on, again and again: each time
    // the same song starts again from its beginning and the queue stays.
    void restartAlwaysRestartsTheSameSong() {
        Cfg.NoFadeOnRestart = false;
        m_rig->link.setFadeMs(kFadeMs);
        m_rig->transport.chkAutoPlay_Click(true);
        QVERIFY(startShow(2));
        const QTimer& poll = m_rig->transport.tmrAutoplay;
        for (int i = 0; i < kRestartTries; ++i) {
            const QByteArray attempt = "attempt " + QByteArray::number(i);
            // A host presses Restart at any moment of auto-play's poll: the tries
            // sweep that moment across the poll's whole interval.
            const int due = i * poll.interval() / kRestartTries;
            double before = 0;
            QVERIFY2(QTest::qWaitFor(
                         [&] {
                             const int left = poll.remainingTime();
                             return (before = m_rig->position()) >= 0.2 && left >= due && left < due + 100;
                         },
                         kPlayerSlack),
                     attempt);
            m_rig->transport.btnRestart_Click();
            QTest::qWaitFor(
                [&] { return !m_rig->transport.tmrRestart.isActive() || m_rig->queue.rowCount() != 1; },
                kPlayerSlack);
            QVERIFY2(m_rig->queue.rowCount() == 1 && m_rig->starts() == 1, attempt);
            QVERIFY2(!m_rig->transport.tmrRestart.isActive(), attempt);
            QVERIFY2(QTest::qWaitFor(
                         [&] {
                             const double at = m_rig->position();
                             return at >= 0 && at < before;
                         },
                         kPlayerSlack),
                     attempt);
            QVERIFY2(m_rig->playing() == m_songs[0], attempt);
            QVERIFY2(m_rig->transport.state() == Transport::State::Watching, attempt);
        }
        QVERIFY(m_prompts->calls.isEmpty());
    }

    // Stop pressed at any moment of a restart's fade, or just after it, wins:
    // the song stays stopped.
    void stopWinsOverAPendingRestart() {
        Cfg.NoFadeOnRestart = false;
        m_rig->link.setFadeMs(kFadeMs);
        m_rig->transport.chkAutoPlay_Click(true);
        QVERIFY(startShow(2));
        for (int i = 0; i < kRestartTries; ++i) {
            const QByteArray attempt = "attempt " + QByteArray::number(i);
            if (i > 0) {
                m_rig->link.SendCommand(PlayerLink::CmdPlay);
                QVERIFY2(QTest::qWaitFor([&] { return m_rig->link.GetStatus() == "PLAYING"; }, kPlayerSlack),
                         attempt);
                m_rig->transport.chkAutoPlay_Click(true);
            }
            QElapsedTimer sinceRestart;
            sinceRestart.start();
            m_rig->transport.btnRestart_Click();
            QTest::qWait(i * (kFadeMs + 100) / kRestartTries);
            m_rig->transport.btnStop_Click();
            // A restart still pending would come within one tick of its timer.
            QTest::qWait(int(
                std::max<qint64>(0, m_rig->transport.tmrRestart.interval() + 150 - sinceRestart.elapsed())));
            QVERIFY2(m_rig->link.GetStatus() == "STOPPED", attempt);
            QVERIFY2(m_rig->transport.state() == Transport::State::Idle, attempt);
        }
        QCOMPARE(m_rig->queue.rowCount(), 1);
        QCOMPARE(m_rig->starts(), 1);
    }
};

KV_TEST_CLASS(TestLiveShow)
#include "tst_liveshow.moc"
