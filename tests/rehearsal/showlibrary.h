#pragma once

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>

// One song file of the evening's library, named as a disc collection names it.
struct LibrarySong {
    enum Kind { Zip, LockedZip, Pair, Tagged, Video };
    Kind kind = Zip;
    QString folder; // the song folder, below the library's root
    QString file;   // the file name the import sees
    QString artist; // what the catalogue should make of the name
    QString title;
    QString disc;
    QString trackNo;
    QColor picture; // the background of its CD+G picture
    double seconds = 0;
};

// One folder of the library and how the host imports it.
struct LibraryFolder {
    QString name;
    QString convention; // the entry of "File names" that fits its names
    bool kamikaze = false;
};

// The song library of the rehearsal, made at run time in a few seconds: two
// hundred songs in three folders, each named by another convention. The songs
// are zipped mp3+CD+G pairs (one zip with a password), bare mp3+CD+G pairs, an
// mp3 with an ID3 tag and, when the player can encode one, a short video. One
// mp3 is encoded and copied; every CD+G file paints a bright picture at once,
// so that a pixel check tells a playing song from a black or idle window.
class ShowLibrary {
public:
    // The songs the singers of the evening ask for, and the tagged mp3.
    static const LibrarySong& neonHarbour();   // a zip with a password
    static const LibrarySong& paperLanterns(); // a bare mp3+CD+G pair
    static const LibrarySong& copperRain();    // a plain zip
    static const LibrarySong& cafeLights();    // a name with accents: "Renée Fontaine - Café Lights"
    static const LibrarySong& taggedTake();    // an mp3 with an ID3v1 tag, no graphics
    static QString taggedArtist() { return QStringLiteral("Rosa Lind"); }
    static QString taggedTitle() { return QStringLiteral("Midnight Ferry"); }
    static QString archivePassword() { return QStringLiteral("stage-door"); }

    // Writes the library below `root`. False (with `error` set) when a file
    // could not be made.
    bool make(const QString& root, QString* error);

    QString root() const { return m_root; }
    QString folderPath(const QString& folder) const { return m_root + folder + QLatin1Char('/'); }
    QString path(const LibrarySong& song) const { return folderPath(song.folder) + song.file; }
    const QList<LibraryFolder>& folders() const { return m_folders; }
    const QList<LibrarySong>& songs() const { return m_songs; }
    int songsIn(const QString& folder) const;
    // The songs whose file name holds every one of `words`, as a typed search finds them.
    QList<LibrarySong> matching(const QStringList& words) const;
    // The songs of the folder imported for kamikaze picks.
    QList<LibrarySong> kamikazeSongs() const;

private:
    void plan();
    bool writeSong(const LibrarySong& song, const QByteArray& video, QString* error);

    QString m_root;
    QList<LibraryFolder> m_folders;
    QList<LibrarySong> m_songs;
    QByteArray m_audio;
};

// A CD+G stream of `seconds` that paints at once a screen of `background`
// with a band of tiles across it, and then holds the picture.
QByteArray cdgPicture(double seconds, const QColor& background);
// `mp3` with an ID3v1 tag of `artist` and `title` behind it.
QByteArray withId3v1(const QByteArray& mp3, const QString& artist, const QString& title);
