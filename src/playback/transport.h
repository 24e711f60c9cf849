#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

class PlayerLink;
class QueueAccess;
class NowPlayingView;
class SongStarter;

// "m:ss" with unpadded minutes; exactly -1 gives "00:00".
QString FormatTime(double seconds);

// The play panel and the auto-play machine: btnPlayTrack, btnStop, btnPause,
// btnRestart, chkAutoPlay, chkDelay, the clock, and the timers that poll the
// player. The machine's state lies wholly in which timers run:
//   Idle      tmrAutoplay off, tmrDelay off
//   Watching  tmrAutoplay on,  tmrDelay off (the end of the song is looked for)
//   Waiting   tmrAutoplay off, tmrDelay on  (the pause between two songs)
// The timers are real QTimers on the main thread; each tick is also a public
// function, so that the machine can be driven tick by tick.
class Transport : public QObject {
    Q_OBJECT
public:
    enum class State { Idle, Watching, Waiting, Both };

    Transport(PlayerLink& player, SongStarter& starter, QueueAccess& queue, NowPlayingView& view,
              QObject* parent = nullptr);

    QTimer tmrUpdateClock;
    QTimer tmrAutoplay;
    QTimer tmrDelay;
    QTimer tmrRestart;

    State state() const;
    bool autoPlayChecked() const { return m_autoPlay; }
    bool UseDelay() const { return m_useDelay; }
    // AutoPlayDelay: the interval of tmrDelay, in seconds.
    void setAutoPlayDelay(int seconds);

    // Plays a queue row and then arms or disarms tmrAutoplay by chkAutoPlay.
    void PlayKaraoke(int row);

    void btnPlayTrack_Click();
    void btnStop_Click();
    void btnPause_Click();
    void btnRestart_Click() { RestartSong(); }
    void RestartSong();
    void chkAutoPlay_Click(bool checked);
    void chkDelay_Click(bool checked);
    // A double click on a queue row: plays it when AllowDoubleClicks is on.
    void queueRow_DblClick(int row);

    // The console is closing: every timer stops, so that nothing asks the
    // player anything, or starts a song, while the program and the player go.
    void standDown();

    void tmrUpdateClock_Timer();
    void tmrAutoplay_Timer();
    void tmrDelay_Timer();
    void tmrRestart_Timer();

private:
    // Timer events swallow their errors, without a log.
    template <class F> void quietly(F&& f);

    PlayerLink& m_player;
    SongStarter& m_starter;
    QueueAccess& m_queue;
    NowPlayingView& m_view;
    bool m_autoPlay = false;
    bool m_useDelay = false;
};
