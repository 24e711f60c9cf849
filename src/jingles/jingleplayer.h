#pragma once

#include "playback/firstanswerwatch.h"
#include "playback/mpvinstance.h"
#include "playback/playbackseams.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

// The fill-music engine: a second mpv process of the program's own, audio
// only, with its own socket and the same lifetime guard as the karaoke player,
// so that the two sound side by side and the jingles may go to a sound card of
// their own. One voice: a jingle that starts replaces the one that sounds.
//
// The operations keep the names and the meaning of the engine the bank was
// written for (its one player, number 0, is implied):
//   PlayerState  0 nothing loaded yet, 1 playing, 2 paused (busy), 3 stopped
//                or ended; a player that does not answer reads as stopped,
//                so that a click still tries to play.
//   PlayerLoad   names the file for the next PlayerPlay.
//   PlayerPlay   starts the loaded file from its beginning. A file that is
//                missing or cannot be decoded plays nothing, quietly.
//   PlayerFade   mode 1: each jingle comes in with a volume ramp of `ms`;
//                mode 0: each jingle that runs to its end goes out with one.
//                A stop is always at once.
//   DeviceCount, DeviceName  the outputs mpv lists (audio-device-list), by
//                their descriptions, in the order first seen: an index keeps
//                its output for the whole run.
//   PlayerSetDevice  sends the jingles to that output from the next jingle on;
//                an index beyond the list changes nothing.
// An output that can no longer be opened (a USB card pulled out) is written
// to the error log once, until another output is chosen.
class JinglePlayer : public QObject, public JingleAccess {
    Q_OBJECT
public:
    // The name of the engine's socket, beside the karaoke player's.
    static inline const QString kSocketName = QStringLiteral("KVJINGLE");
    static constexpr int kRequestTimeoutMs = 1000;
    static constexpr int kStopSettleMs = 500;
    static constexpr int kFadeTickMs = 100;
    static constexpr int kEventPollMs = 500;
    // How long an engine started ahead is given to answer, from its start.
    static constexpr int kInitTimeoutMs = 10000;

    explicit JinglePlayer(QObject* parent = nullptr);
    ~JinglePlayer() override;

    // Starts the engine from `program` (the player's executable) on output
    // `device`. False when no engine runs; every operation is then quiet.
    bool PlayerInit(const QString& program, int device);
    // The same in two halves, so that the program can start the engine's
    // process and go on with its own start while the engine comes up: the
    // first starts the process, the second waits for its answer and sets it
    // up. The event loop does the second once the engine answers; any
    // operation before then does it first, and waits.
    bool PlayerInitStart(const QString& program, int device);
    bool finishInit();
    void PlayerFade(int mode, int ms, int shape, int reserved);
    int PlayerState();
    void PlayerLoad(const QString& path);
    void PlayerPlay();
    void PlayerStop();
    int DeviceCount();
    QString DeviceName(int index);
    void PlayerSetDevice(int index);

    // JingleAccess, for the song start.
    int playerState() override { return PlayerState(); }
    void stop() override { PlayerStop(); }

    bool isRunning() const { return m_mpv.isOpen(); }
    bool isInitPending() const { return m_initPending; }
    qint64 processId() const { return m_mpv.processId(); }
    // The engine's mpv itself, for figures and for tests that read its properties.
    MpvInstance& instance() { return m_mpv; }
    // The output the jingles go to (mpv's device name; empty: mpv's own choice).
    QString deviceInUse() const { return m_device; }
    // Ends the engine.
    void close();

private:
    struct Device {
        QString name;
        QString description;
    };
    void refreshDevices();
    void onEvent(const QJsonObject& event);
    void fadeTick();

    MpvInstance m_mpv;
    QList<Device> m_devices;
    QString m_device;
    QString m_path;
    bool m_loaded = false;
    bool m_deviceLossLogged = false;
    bool m_initPending = false;
    FirstAnswerWatch m_initWatch;
    int m_initDevice = 0;
    int m_fadeInMs = 0;
    int m_fadeOutMs = 0;
    QTimer m_fadeTimer;  // the fade-out towards a jingle's end
    QTimer m_eventTimer; // takes in what the engine reports
};
