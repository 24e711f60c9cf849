#pragma once

#include <QString>

// What playback needs of the rest of the main window. frmMain implements these
// by forwarding to its queue list, its labels and buttons, the next-performer
// announcement and the jingle bank; tests implement them with fakes.

// The selected-song record: one queue row as playback reads it.
struct SelectedSong {
    QString PerformerName;
    QString TrackPath;
    QString ArtistName;
    QString TrackName;
    qint32 Key = 0;
};

// The singer queue (the list control and its saved snapshot).
class QueueAccess {
public:
    virtual ~QueueAccess() = default;
    virtual int rowCount() const = 0;
    // GetDetailsFromRow.
    virtual SelectedSong detailsFromRow(int row) const = 0;
    // The list's selected row, -1 for none.
    virtual int selectedRow() const = 0;
    virtual void removeRow(int row) = 0;
    // SaveQueue.
    virtual void saveQueue() = 0;
};

// The song-on-stage display: lblCurrentPerformer, lblCurrentArtist,
// lblCurrentSong, the clock labels lblTotalTime and lblPosition, and the
// caption of btnKeyReset, which is where the current key lives.
class NowPlayingView {
public:
    virtual ~NowPlayingView() = default;
    virtual void showCurrentSong(const QString& performer, const QString& artist, const QString& title) = 0;
    virtual void showClock(const QString& totalTime, const QString& position) = 0;
    virtual QString keyCaption() const = 0;
    virtual void setKeyCaption(const QString& caption) = 0;
};

// The next-performer announcement on the audience strip.
class AnnouncementSink {
public:
    virtual ~AnnouncementSink() = default;
    // `row`: the queue row of the song just started.
    virtual void UpdateNextPerformer(int row) = 0;
    virtual void ClearNextPerformer() = 0;
};

// The fill-music player, as far as a song start concerns it.
class JingleAccess {
public:
    virtual ~JingleAccess() = default;
    // 0 nothing loaded, 1 playing, 3 stopped.
    virtual int playerState() = 0;
    virtual void stop() = 0;
};
