#pragma once

#include <QList>
#include <QString>
#include <optional>

// The statements on single songs of tblKaraokeTracks and on the table as a
// whole: the lookups of the queue, the counts and the clearing of the import,
// the repairs of the search list's pop-up menu and of the error list on the
// options screen. (The typed search, the import's insert and the exports build
// their own statements, beside the rules that shape them.)
// Each runs on the shared connection and throws a KvError with the driver's
// text when the catalogue refuses it; the callers log it under their own
// source.
//
// Some repairs join a value into their statement without doubling its
// quotes, as they always have, so that a value with an apostrophe makes the
// statement fail. Such a value is refused here before it reaches the
// statement: the repair fails as it always did, and a quote can never end the
// literal early and turn the rest of the value into SQL.
class CatalogueStore {
public:
    struct Song {
        QString artist;
        QString track;
        QString path;
    };
    // The song of that id; nothing when the catalogue has none.
    static std::optional<Song> SongById(qint64 id);
    // The ids of the songs marked for a kamikaze draw.
    static QList<qint64> KamikazeIds();
    // How many songs the catalogue holds.
    static qint64 CountTracks();
    // Empties the catalogue (the saved queue and the history stay).
    static void DeleteAllTracks();

    // Sets the artist of one song; the name is not escaped (see above).
    static void ChangeArtist(const QString& artist, qint64 id);
    // Sets artist and title of one song, both escaped.
    static void SwapArtistTitle(const QString& newArtist, const QString& newTrack, qint64 id);
    // Marks one song as faulty with the host's notes (escaped here).
    static void MarkAsError(qint64 id, const QString& notes);
    // Removes one song; its file on disk stays.
    static void RemoveTrack(qint64 id);
    // The path of one song's file; throws when there is no such song.
    static QString TrackPath(qint64 id);
    static void SetTrackPath(qint64 id, const QString& path);

    // The error list's menu, by the song's path (not escaped, see above).
    static void RemoveErrorMark(const QString& trackPath);
    static void DeleteByPath(const QString& trackPath);
};
