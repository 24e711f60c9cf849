#pragma once

#include <QString>

// What the program needs of the karaoke player: the operations of the player
// link, each with the meaning of its values. WinAMP_Control serves them over a
// real player; tests put a fake behind the same interface.
class PlayerLink {
public:
    // Command ids of SendCommand.
    enum Command : int {
        CmdClose = 40001,
        CmdPreferences = 40012,
        CmdToggleRepeat = 40022,
        CmdToggleShuffle = 40023,
        CmdPlay = 40045,
        CmdPause = 40046,
        CmdStop = 40047,
        CmdFadeStop = 40147,
    };
    // Raw status numbers, as the clock reads them. RawNoAnswer is a player that
    // was found but gave no answer in time (stalled, or gone): it says nothing
    // about the song, and above all it is no stop.
    enum RawStatus : int { RawNoAnswer = -1, RawStopped = 0, RawPlaying = 1, RawPaused = 3 };

    virtual ~PlayerLink() = default;

    // WinampWindow != 0: a player has been found (the link does not notice when it goes).
    virtual bool isConnected() const = 0;
    virtual bool FindPlayer() = 0;
    virtual bool StartPlayer() = 0;

    virtual void ClearPlaylist() = 0;
    // "PLAYING", "PAUSED" or "STOPPED"; empty when there is no player or it gave no answer.
    virtual QString GetStatus() = 0;
    // The status number without any check of the link: 1 playing, 3 paused,
    // RawNoAnswer when the player did not answer, anything else stopped.
    virtual int rawStatus() = 0;
    // Whole seconds; -1 when nothing is loaded; 0 when there is no player.
    virtual int GetPositionSeconds() = 0;
    virtual int GetLengthSeconds() = 0;
    // -127 (left) to 127 (right); anything else is dropped.
    virtual void SetPanning(int value) = 0;
    virtual int GetPlaylistLength() = 0;
    virtual void DisableRepeat() = 0;
    virtual void DisableShuffle() = 0;
    virtual void SendCommand(int commandId) = 0;
    // Adds the file to the player's list; false (silently) when there is no player.
    virtual bool PlayFile(const QString& path) = 0;

    // Labelled audio filters of the player, which the key change and the
    // vocal cut are built on.
    virtual bool hasAudioFilter(const QString& filterName) = 0;
    virtual bool setAudioFilter(const QString& label, const QString& filter) = 0;
    virtual void removeAudioFilter(const QString& label) = 0;
};

// The status text of a raw status number: the test is on the number. No answer has no text.
inline QString statusText(int raw) {
    if (raw == PlayerLink::RawNoAnswer)
        return {};
    if (raw == PlayerLink::RawPlaying)
        return QStringLiteral("PLAYING");
    if (raw == PlayerLink::RawPaused)
        return QStringLiteral("PAUSED");
    return QStringLiteral("STOPPED");
}
