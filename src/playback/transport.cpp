#include "transport.h"

#include "core/appsettings.h"
#include "core/errorlog.h"
#include "playback/playbackseams.h"
#include "playback/playerlink.h"
#include "playback/songstarter.h"

#include <cmath>

QString FormatTime(double seconds) {
    if (seconds == -1)
        return QStringLiteral("00:00");
    const qint64 minutes = qint64(std::trunc(seconds / 60));
    const qint64 rest = qint64(seconds - 60.0 * double(minutes));
    return QString::number(minutes) + QLatin1Char(':') + (rest < 10 ? QStringLiteral("0") : QString()) +
           QString::number(rest);
}

Transport::Transport(PlayerLink& player, SongStarter& starter, QueueAccess& queue, NowPlayingView& view,
                     QObject* parent)
    : QObject(parent), m_player(player), m_starter(starter), m_queue(queue), m_view(view) {
    tmrUpdateClock.setObjectName(QStringLiteral("tmrUpdateClock"));
    tmrAutoplay.setObjectName(QStringLiteral("tmrAutoplay"));
    tmrDelay.setObjectName(QStringLiteral("tmrDelay"));
    tmrRestart.setObjectName(QStringLiteral("tmrRestart"));
    tmrUpdateClock.setInterval(1000);
    tmrAutoplay.setInterval(1000);
    tmrDelay.setInterval(5000);
    tmrRestart.setInterval(500);
    connect(&tmrUpdateClock, &QTimer::timeout, this, &Transport::tmrUpdateClock_Timer);
    connect(&tmrAutoplay, &QTimer::timeout, this, &Transport::tmrAutoplay_Timer);
    connect(&tmrDelay, &QTimer::timeout, this, &Transport::tmrDelay_Timer);
    connect(&tmrRestart, &QTimer::timeout, this, &Transport::tmrRestart_Timer);
}

template <class F> void Transport::quietly(F&& f) {
    try {
        f();
    } catch (...) {
    }
}

Transport::State Transport::state() const {
    const bool a = tmrAutoplay.isActive();
    const bool d = tmrDelay.isActive();
    if (a && d)
        return State::Both;
    if (a)
        return State::Watching;
    return d ? State::Waiting : State::Idle;
}

void Transport::setAutoPlayDelay(int seconds) {
    tmrDelay.setInterval(seconds * 1000);
}

void Transport::standDown() {
    for (QTimer* t : {&tmrUpdateClock, &tmrAutoplay, &tmrDelay, &tmrRestart})
        t->stop();
}

void Transport::PlayKaraoke(int row) {
    // A song taken up in the middle of a restart's fade ends the restart: the
    // restart must not start the old song again once this one has stopped.
    if (row >= 0 && row < m_queue.rowCount())
        tmrRestart.stop();
    if (!m_starter.PlayKaraoke(row))
        return;
    if (m_autoPlay)
        tmrAutoplay.start();
    else
        tmrAutoplay.stop();
}

void Transport::btnPlayTrack_Click() {
    Guarded(QStringLiteral("KvApp.frmMain.btnPlayTrack_Click"), 1, [this] {
        if (m_queue.rowCount() < 1)
            return;
        PlayKaraoke(Cfg.PlayFromPosition1 ? 0 : m_queue.selectedRow());
    });
}

void Transport::btnStop_Click() {
    // Stop wins over a restart that is still waiting for its fade to end.
    tmrRestart.stop();
    // In Waiting tmrAutoplay is already off, so the delay is left to run out and
    // start the next song.
    if (tmrAutoplay.isActive()) {
        tmrAutoplay.stop();
        tmrDelay.stop();
    }
    m_starter.StopSong();
}

void Transport::btnPause_Click() {
    if (m_player.GetStatus() == QLatin1String("PAUSED"))
        m_player.SendCommand(PlayerLink::CmdPlay);
    else
        m_player.SendCommand(PlayerLink::CmdPause);
}

void Transport::RestartSong() {
    if (m_player.GetPlaylistLength() < 1)
        return;
    m_starter.showCurrentSong();
    if (Cfg.NoFadeOnRestart) {
        m_player.SendCommand(PlayerLink::CmdStop);
        m_player.SendCommand(PlayerLink::CmdPlay);
    } else {
        // The stop at the end of the fade belongs to the restart: auto-play
        // stays out of it until tmrRestart has started the song again.
        tmrAutoplay.stop();
        tmrRestart.start();
        m_player.SendCommand(PlayerLink::CmdFadeStop);
    }
}

void Transport::chkAutoPlay_Click(bool checked) {
    m_autoPlay = checked;
    if (!checked) {
        tmrAutoplay.stop();
        return;
    }
    if (m_player.GetStatus() == QLatin1String("PLAYING"))
        tmrAutoplay.start();
}

void Transport::chkDelay_Click(bool checked) {
    m_useDelay = checked;
}

void Transport::queueRow_DblClick(int row) {
    if (Cfg.AllowDoubleClicks && m_queue.rowCount() > 0)
        PlayKaraoke(row);
}

void Transport::tmrUpdateClock_Timer() {
    quietly([this] {
        const int raw = m_player.rawStatus();
        // A player that gives no answer leaves the clock as it was.
        if (raw == PlayerLink::RawNoAnswer)
            return;
        if (raw == PlayerLink::RawStopped) {
            m_view.showClock(FormatTime(0), FormatTime(0));
            return;
        }
        int position = m_player.GetPositionSeconds();
        const int length = m_player.GetLengthSeconds();
        if (position < 1)
            position = 0;
        m_view.showClock(FormatTime(length), FormatTime(length - position));
    });
}

void Transport::tmrAutoplay_Timer() {
    quietly([this] {
        if (m_queue.rowCount() < 1) {
            tmrAutoplay.stop();
            return;
        }
        // A restart in progress owns the player's stop.
        if (tmrRestart.isActive())
            return;
        // Only a stop the player reports ends the song: playing, paused and no
        // answer at all (a player stalled for a moment) all leave it on.
        if (m_player.GetStatus() != QLatin1String("STOPPED"))
            return;
        if (m_useDelay) {
            tmrDelay.start();
            tmrAutoplay.stop();
        } else {
            PlayKaraoke(0);
        }
    });
}

void Transport::tmrDelay_Timer() {
    quietly([this] {
        PlayKaraoke(0);
        tmrDelay.stop();
    });
}

void Transport::tmrRestart_Timer() {
    quietly([this] {
        if (m_player.GetStatus() != QLatin1String("STOPPED"))
            return;
        // The end of the fade is no end of the song.
        if (m_autoPlay)
            tmrAutoplay.stop();
        m_player.SendCommand(PlayerLink::CmdPlay);
        if (m_autoPlay)
            tmrAutoplay.start();
        tmrRestart.stop();
    });
}
