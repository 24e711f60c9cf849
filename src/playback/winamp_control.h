#pragma once

#include "playback/firstanswerwatch.h"
#include "playback/mpvinstance.h"
#include "playback/playerlink.h"

#include <QObject>
#include <QTimer>
#include <functional>
#include <vector>

// The link to the private player instance: an mpv process started by the
// program and driven over its JSON IPC channel (the MpvInstance; an open
// connection means WinampWindow is set), and one small operation for each
// thing the program asks of the player.
class WinAMP_Control : public QObject, public PlayerLink {
    Q_OBJECT
public:
    // The private instance's name: its window class and the name of its socket.
    static inline const QString kPlayerClass = QStringLiteral("KVPLAY");
    static constexpr int kRequestTimeoutMs = 1000;
    static constexpr int kStartProbeTimeoutMs = 250;
    static constexpr int kStopSettleMs = 500;
    // A start probes the player this many times, a second apart.
    static constexpr int kStartAttempts = 11;
    // A start in the background gives the player as long.
    static constexpr int kBackgroundStartMs = 1000 * kStartAttempts;
    // The stop with fade-out lowers the volume in kFadeSteps over the fade time.
    static constexpr int kFadeMs = 2000;
    static constexpr int kFadeSteps = 20;

    explicit WinAMP_Control(QObject* parent = nullptr);
    ~WinAMP_Control() override;

    // The player's executable (the setting WinAmpPath).
    QString WinampPath() const { return m_winampPath; }
    void setWinampPath(const QString& path) { m_winampPath = path; }
    // The reply to the last PlayFile.
    int LastPlayResult() const { return m_lastPlayResult; }
    // How StartPlayer waits; by default it keeps the event loop turning.
    void setWaiter(std::function<void(int ms)> wait) { m_wait = std::move(wait); }
    // Where the private instance listens, so that another copy of the program
    // finds it: a socket in a folder of this user's own (empty when there is none).
    static QString playerSocketPath();
    // The player's private configuration folder (below the working folder).
    static QString playerConfigFolder();
    qint64 playerProcessId() const { return m_conn.processId(); }
    // The player instance itself, for figures and for tests that read the player's properties.
    MpvInstance& connection() { return m_conn; }

    // A player whose start is still being answered for counts as there: the
    // first thing asked of it waits for it.
    bool isConnected() const override { return m_connected || m_startPending || m_finishing; }
    bool FindPlayer() override;
    bool StartPlayer() override;
    // StartPlayer for the program's start: returns once the process runs,
    // without waiting for it to answer. The player is made ready (and
    // `whenReady` run) as soon as it first answers, which the event loop looks
    // for every few milliseconds, or by the first thing asked of it before
    // then. False when no process could be started.
    bool StartPlayerInBackground(std::function<void()> whenReady);
    bool isStarting() const { return m_startPending; }
    // Runs `work` once a start in the background has made the player ready,
    // or at once when no start is under way.
    void whenReady(std::function<void()> work);
    void ClearPlaylist() override;
    QString GetStatus() override;
    int rawStatus() override;
    int GetPositionSeconds() override;
    int GetLengthSeconds() override;
    void SetPanning(int value) override;
    int GetPlaylistLength() override;
    void DisableRepeat() override;
    void DisableShuffle() override;
    void SendCommand(int commandId) override;
    bool PlayFile(const QString& path) override;

    bool hasAudioFilter(const QString& filterName) override;
    bool setAudioFilter(const QString& label, const QString& filter) override;
    void removeAudioFilter(const QString& label) override;

    // The video window full screen on the monitor of that output name (as the
    // window system names it), or back in its own window. False without a player.
    bool setVideoFullScreen(bool on, const QString& screenName);

    bool isFading() const { return m_fadeTimer.isActive(); }
    // How long the stop with fade-out takes (kFadeMs unless changed).
    void setFadeMs(int ms) { m_fadeTimer.setInterval(std::max(1, ms / kFadeSteps)); }

private:
    // The check that all but a few operations make: tells the host when there is no player.
    bool requirePlayer();
    // The same check, in silence.
    bool ready();
    // Checks the player's name before starting it, then starts it. False,
    // with the host told why, when it cannot.
    bool launchPlayer();
    // Asks the started process until it answers as a player, for at most
    // `attempts` probes with the waiter's pause between them; a process that
    // never does is ended.
    bool awaitPlayer(int attempts);
    // Ends a start in the background: waits for the player's answer, up to
    // the start's own deadline. True when a player is there.
    bool finishStart();
    bool findPlayer();
    // Writes one record to the error log when the player stops answering.
    void logStall(const QString& reason);
    QStringList playerArguments() const;
    void prepareConfigFolder() const;
    int secondsOf(const QString& property);
    void toggleRepeat();
    void toggleShuffle();
    void play();
    void stop();
    void startFade();
    void fadeStep();
    void cancelFade();

    MpvInstance m_conn;
    QString m_winampPath;
    bool m_startPending = false;
    bool m_finishing = false; // waiting for the answer of a start in the background
    FirstAnswerWatch m_startWatch;
    std::vector<std::function<void()>> m_whenStarted;
    bool m_connected = false;
    int m_lastPlayResult = 0;
    std::function<void(int)> m_wait;
    QTimer m_fadeTimer;
    int m_fadeStep = 0;
    double m_fadeVolume = 100.0;
};
