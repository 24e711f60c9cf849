#include "core/appsettings.h"
#include "fakeplayback.h"
#include "playback/cdgnormaliser.h"
#include "playback/keycontrol.h"
#include "playback/modpacemaker.h"
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

// The play panel, the key buttons and the auto-play machine, tick by tick
// against a fake player; no test here waits for a timer.
class TestTransport : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<PlaybackRig> m_rig;
    std::unique_ptr<Transport> m_transport;
    QTemporaryDir m_songs;

    void fillQueue(int n) {
        for (int i = 0; i < n; ++i) {
            const QString p = m_songs.filePath(QStringLiteral("s%1.mp3").arg(i));
            playbackmedia::writeFile(p, "ID3 not really");
            m_rig->queue.rows.append(song(QStringLiteral("Singer %1").arg(i), p));
        }
    }
    int plays() const { return int(m_rig->journal.count("SendCommand:40045")); }
    QString performer() const { return m_rig->view.performer; }
    // The song playing now ends and the auto-play timer looks.
    void songEnds() {
        m_rig->player.raw = PlayerLink::RawStopped;
        m_transport->tmrAutoplay_Timer();
    }

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

    void playButtonTakesTheFirstOrTheSelectedRow_data() {
        QTest::addColumn<bool>("fromFirst");
        QTest::addColumn<QString>("played");
        QTest::newRow("from position 1") << true << "Singer 0";
        QTest::newRow("selected row") << false << "Singer 2";
    }
    void playButtonTakesTheFirstOrTheSelectedRow() {
        QFETCH(bool, fromFirst);
        Cfg.PlayFromPosition1 = fromFirst;
        fillQueue(3);
        m_rig->queue.selected = 2;
        m_transport->btnPlayTrack_Click();
        QTEST(performer(), "played");
        QCOMPARE(m_rig->queue.rowCount(), 2);
    }

    void autoPlayWalksTheQueue() {
        fillQueue(2);
        m_transport->chkAutoPlay_Click(true);
        m_transport->btnPlayTrack_Click();
        QCOMPARE(m_transport->state(), State::Watching);
        m_transport->tmrAutoplay_Timer(); // still playing
        m_rig->player.raw = PlayerLink::RawPaused;
        m_transport->tmrAutoplay_Timer(); // paused is not the end
        QCOMPARE(plays(), 1);
        songEnds();
        QCOMPARE(plays(), 2);
        QCOMPARE(performer(), QStringLiteral("Singer 1"));
        QCOMPARE(m_rig->queue.rowCount(), 0);
        // The queue is empty: the next end goes Idle and sends nothing.
        const int before = int(m_rig->journal.size());
        songEnds();
        QCOMPARE(m_transport->state(), State::Idle);
        QCOMPARE(m_rig->journal.size(), before);
    }

    // With the delay on, the next song waits for the delay timer; a stop ends the walk.
    void autoPlayWaitsWithDelayAndStopEndsIt() {
        fillQueue(3);
        m_transport->chkAutoPlay_Click(true);
        m_transport->chkDelay_Click(true);
        m_transport->btnPlayTrack_Click();
        songEnds();
        QCOMPARE(m_transport->state(), State::Waiting);
        QCOMPARE(plays(), 1);
        m_transport->tmrDelay_Timer();
        QCOMPARE(plays(), 2);
        QCOMPARE(performer(), QStringLiteral("Singer 1"));
        m_transport->btnStop_Click();
        QCOMPARE(m_transport->state(), State::Idle); // no timer left to start the next song
        QCOMPARE(m_rig->queue.rowCount(), 1);
    }

    void missingFileHaltsTheWalkAtItsRow() {
        fillQueue(1);
        m_rig->queue.rows.prepend(song("Gone", m_songs.filePath("gone.mp3")));
        m_rig->player.raw = PlayerLink::RawPlaying;
        m_transport->chkAutoPlay_Click(true);
        songEnds();
        songEnds();
        QCOMPARE(m_prompts->countTitle("Song Not Found"), 2);
        QCOMPARE(m_rig->queue.rowCount(), 2);
        QCOMPARE(plays(), 0);
    }

    // The fade's end is no end of the song: it plays again, and the next waits.
    void restartFadesAndPlaysTheSameSong() {
        Cfg.NoFadeOnRestart = false;
        fillQueue(2);
        m_transport->chkAutoPlay_Click(true);
        m_transport->btnPlayTrack_Click();
        m_rig->journal.clear();
        m_transport->btnRestart_Click();
        QCOMPARE(m_rig->journal.filter("SendCommand"), QStringList{"SendCommand:40147"});
        m_transport->tmrRestart_Timer(); // still fading
        QCOMPARE(plays(), 0);
        m_rig->player.raw = PlayerLink::RawStopped;
        m_transport->tmrRestart_Timer();
        QCOMPARE(plays(), 1);
        QCOMPARE(performer(), QStringLiteral("Singer 0"));
        QCOMPARE(m_transport->state(), State::Watching);
        QCOMPARE(m_rig->queue.rowCount(), 1);
    }

    // The key buttons stop at an octave either way; at 0 the shifter comes out.
    void keyStepsStopAtTheEnds_data() {
        QTest::addColumn<QString>("start");
        QTest::addColumn<int>("presses"); // positive up, negative down
        QTest::addColumn<QString>("end");
        QTest::addColumn<int>("filtersSet");
        QTest::newRow("2 up eleven times") << "2" << 11 << "12" << 10;
        QTest::newRow("-10 down five times") << "-10" << -5 << "-12" << 2;
        QTest::newRow("-1 up to 0 takes the shifter out") << "-1" << 1 << "0" << 0;
    }
    void keyStepsStopAtTheEnds() {
        QFETCH(QString, start);
        QFETCH(int, presses);
        modPacemaker shifter(m_rig->player); // not looked for yet: the first press must find it
        KeyControl keys(shifter, m_rig->player, m_rig->view);
        m_rig->view.key = start;
        for (int i = 0; i < std::abs(presses); ++i)
            presses > 0 ? keys.btnKeyUp_Click() : keys.btnKeyDown_Click();
        QTEST(m_rig->view.key, "end");
        QTEST(int(m_rig->journal.filter("setAudioFilter:kvpitch").size()), "filtersSet");
        QCOMPARE(m_rig->player.filters.value("kvpitch"),
                 m_rig->view.key == "0" ? QString() : modPacemaker::pitchFilter(m_rig->view.key.toInt()));
    }

    // The CD+G copy that starts the clock at the first packet: leading empty
    // packets become do-nothing commands, a broken tail is kept.
    void cdgNormalise_data() {
        QTest::addColumn<QByteArray>("in");
        QTest::addColumn<QList<int>>("neutralised"); // packet indexes
        const QByteArray empty = packet(0), junk = packet(0x13), cmd = packet(0x09, 0x01);
        QTest::newRow("leading empties") << (empty + junk + empty + cmd + empty) << QList<int>{0, 1, 2};
        QTest::newRow("all empty") << (empty + empty) << QList<int>{0, 1};
        QTest::newRow("partial packet at the end kept") << (cmd + QByteArray(10, '\0')) << QList<int>{};
        // Packets 1 to 85 lie in the first 2 KB; from 86 on every 30th empty one counts.
        QTest::newRow("every 30th empty after 2 KB")
            << (cmd + empty.repeated(200)) << QList<int>{115, 145, 175};
    }
    void cdgNormalise() {
        QFETCH(QByteArray, in);
        QFETCH(QList<int>, neutralised);
        QByteArray expected = in;
        for (int i : neutralised)
            expected.replace(i * 24, 24, packet(0x09));
        QCOMPARE(CdgNormaliser::normalise(in), expected);
        // Fed in pieces that cut packets anywhere, the stream comes out the same.
        for (int piece : {1, 7, 25, 50}) {
            CdgNormaliser stream;
            QByteArray out;
            for (qsizetype at = 0; at < in.size(); at += piece)
                out += stream.feed(QByteArrayView(in).sliced(at, std::min<qsizetype>(piece, in.size() - at)));
            out += stream.finish();
            QCOMPARE(out, expected);
        }
    }

private:
    static QByteArray packet(char command, char instruction = 0) {
        QByteArray p(24, '\0');
        p[0] = command;
        p[1] = instruction;
        return p;
    }
};

KV_TEST_CLASS(TestTransport)
#include "tst_transport.moc"
