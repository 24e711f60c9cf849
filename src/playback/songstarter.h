#pragma once

#include "playback/playbackseams.h"
#include "playback/songunpacker.h"

#include <QString>

class PlayerLink;
class modPacemaker;

// Brings one queue row to the stage (PlayKaraoke): stops what plays, empties
// the Temp folder, unpacks an archive into one audio file with its graphics
// beside it, makes the graphics ready to play, writes the history row, sets the key, hands the file to the
// player, takes the row off the queue and saves it, calls the next singer,
// silences the fill music and starts the song. StopSong takes it off again.
class SongStarter {
public:
    static inline const QString kSource = QStringLiteral("KvApp.frmMain.PlayKaraoke");

    SongStarter(PlayerLink& player, modPacemaker& pacemaker, QueueAccess& queue, NowPlayingView& view)
        : m_player(player), m_pacemaker(pacemaker), m_queue(queue), m_view(view) {}

    void setAnnouncements(AnnouncementSink* sink) { m_announcements = sink; }
    void setJingles(JingleAccess* jingles) { m_jingles = jingles; }
    // Stands in for the disk's free space when songs are unpacked (by default the disk's own figure).
    void setFreeSpaceProbe(SongUnpacker::FreeSpaceProbe probe) { m_freeSpace = std::move(probe); }

    // Plays queue row `row` (from 0). True when the song was started, that is
    // when the play command went out; false when it stopped on the way (empty
    // queue, no such row, missing file, a bad archive).
    bool PlayKaraoke(int row);
    void StopSong();
    // Unpacks the archive of `song` into the Temp folder; on success PlayFile()
    // is the audio file to play. Tells the host what is wrong otherwise.
    bool UnpackSong(const SelectedSong& song);
    // Writes the normalised copy of the graphics beside PlayFile() into Temp,
    // when there are graphics. Tells the host and returns false when they are
    // far too large or cannot be written: such a song is not started.
    bool PrepareGraphics();
    // Shows the song on stage in the three labels again.
    void showCurrentSong();

    QString PlayFile() const { return m_playFile; }
    QString CurrentPerformer() const { return m_currentPerformer; }
    QString CurrentArtist() const { return m_currentArtist; }
    QString CurrentTitle() const { return m_currentTitle; }

    static QString unpackFolder();
    // Deletes everything the Temp folder holds (and makes it when missing).
    static void emptyTempFolder();

private:
    PlayerLink& m_player;
    modPacemaker& m_pacemaker;
    QueueAccess& m_queue;
    NowPlayingView& m_view;
    AnnouncementSink* m_announcements = nullptr;
    JingleAccess* m_jingles = nullptr;
    SongUnpacker::FreeSpaceProbe m_freeSpace;
    QString m_playFile;
    QString m_currentPerformer;
    QString m_currentArtist;
    QString m_currentTitle;
};
