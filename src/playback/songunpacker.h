#pragma once

#include <QString>
#include <QStringList>
#include <functional>

// Takes a karaoke archive (.zip or .kma) apart for the player. Of the entries
// whose names match the filter, in any sub-folder, only the song's own are
// written: the last audio entry and its graphics (the graphics entry of the
// same name, else the last one). They go into the unpack folder under the
// archive's own stem with their lower-cased extension, so that graphics and
// audio always end up side by side as one pair. Sizes are judged before
// anything is written, each entry against the disk's free space again just
// before it is written. Nothing is ever written outside the unpack folder, and
// a failed unpack leaves none of its files behind.
class SongUnpacker {
public:
    // Result codes: 0 every entry was handled; 526 some were passed over (by the
    // filter, or being empty); 1000 + a libzip error for an archive that cannot
    // be read (a wrong or missing password among them); and our own:
    enum Result : int {
        Ok = 0,
        SomeSkipped = 526,
        ZipErrorBase = 1000,
        TooLarge = 2001,      // an entry would not fit in the free space of the disk
        Overrun = 2002,       // an entry gave more bytes than it declared
        WriteFailed = 2003,   // the unpack folder could not be written
        EntryTooLarge = 2004, // an entry declares a size that no song file comes near
    };
    // The free space of the disk that holds a folder, in bytes.
    using FreeSpaceProbe = std::function<qint64(const QString& folder)>;
    // An entry above this is no karaoke song, whatever the disk could take.
    static constexpr qint64 kMaxEntryBytes = qint64(1) << 30;

    static inline const QStringList kFilter = {QStringLiteral("*.cdg"), QStringLiteral("*.mp3"),
                                               QStringLiteral("*.wma"), QStringLiteral("*.ogg")};

    // `freeSpace` stands in for the disk's own figure when given.
    SongUnpacker(QString unpackFolder, QString password, FreeSpaceProbe freeSpace = {});

    // Unpacks `archive`; returns the result code.
    int unpack(const QString& archive);
    // What a result code means, in plain words for the host.
    static QString describe(int result);

    // What the last unpack saw.
    bool HasCdgFile = false;
    bool HasAudioFile = false;
    QString AudioFilePath;
    QString ArchiveStem;
    QString UnpackFolder;
    QStringList writtenFiles() const { return m_written; }

    // True when the file's own name ends in ".zip" or ".kma", in any case; the
    // folders above it do not count.
    static bool IsArchive(const QString& path);

private:
    void ResetZipDetails();
    void discardWritten();

    QString m_password;
    FreeSpaceProbe m_freeSpace;
    QStringList m_written;
};
