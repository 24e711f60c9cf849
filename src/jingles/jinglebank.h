#pragma once

#include <QObject>
#include <QString>
#include <array>

class JinglePlayer;
class PlayerLink;

// The bank of sixteen fill buttons, without its widgets: what each button
// holds and shows, what a click does, and the engine's start. A button keeps
// the path of its file (its tag) and a caption: the file's name without its
// folder and its last four characters; " Not Assigned" (with the leading
// blank) when no file is set; "Not Assigned" when the file is no longer there,
// in which case the button keeps the path and still tries to play it.
class JingleBank : public QObject {
    Q_OBJECT
public:
    static constexpr int kButtons = 16;
    static inline const QString kUnassigned = QStringLiteral(" Not Assigned");
    static inline const QString kMissing = QStringLiteral("Not Assigned");

    struct Button {
        QString tag;
        QString caption;
    };

    JingleBank(JinglePlayer& player, PlayerLink& karaoke, QObject* parent = nullptr);

    // The caption of a button that holds `path`.
    static QString captionFor(const QString& path);

    // The engine's executable: the karaoke player's (WinAmpPath) when that file
    // exists, else mpv in the player's install folder.
    static QString engineProgram();
    // Opens the engine on the output AudioDevice, with its fades; `program` is
    // the player's executable. Errors are logged and the start goes on.
    void InitBacking(const QString& program);
    // Builds the sixteen buttons from section "Jingles", in order. An error
    // is logged and ends the run; the buttons built so far stay.
    void InitialiseJingles();

    const Button& button(int index) const { return m_buttons.at(size_t(index)); }
    // The output number the main screen keeps while it runs (16 bits, as read).
    qint16 audioDevice() const { return m_audioDevice; }

    // A click on button `index`: whatever jingle sounds stops and this one
    // starts from its beginning; then, when StopKaraokeTrackOnJinglePlay is on
    // and the karaoke track is playing, the track fades out.
    void cmdJingle_Click(int index);

signals:
    // The captions and tags were built again.
    void buttonsChanged();

private:
    JinglePlayer& m_player;
    PlayerLink& m_karaoke;
    std::array<Button, kButtons> m_buttons;
    qint16 m_audioDevice = 0;
};
