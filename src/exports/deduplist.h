#pragma once

#include <QByteArray>
#include <QString>
#include <functional>

// The song list without duplicates: tblDedup, a scratch table in the
// catalogue, keeps the first song of each artist and title (compared without
// regard to case), and is written out as "depexport(dedup).csv".
class DedupList {
public:
    enum class CaseMode { LeaveAlone = 0, Upper = 1, Lower = 2 };
    // Told the count so far and the total; returns false to stop.
    using Progress = std::function<bool(qint64 done, qint64 total)>;

    static inline const QString kFileName = QStringLiteral("depexport(dedup).csv");

    // CreateDedupTable: makes the table and its unique index on artist and title.
    static void CreateDedupTable();
    // Empties the table (making it when it is missing).
    static void clear();
    // BuildDedupTable: fills the table from the catalogue, by artist and
    // title; of the songs alike, the first in the catalogue is kept. A song
    // whose disc or track number holds an apostrophe, and a song the table's
    // rules refuse (no artist or title, a name too long), is left out quietly
    // (the next song alike is then kept). Returns the number of songs kept.
    // `progress` is also told while the songs are being sorted, with the
    // count still at 0.
    static qint64 BuildDedupTable(const Progress& progress = {});
    // ExportDedup: writes the table, by artist, to `path` and empties it.
    // False with `error` set when the file could not be written; the old file
    // is then left as it was.
    static bool ExportDedup(const QString& path, CaseMode mode, const Progress& progress, QString* error);

    // One line of the file. Texts stand in double quotes, left as they are
    // (a quote inside is not doubled); the id stands bare, unless a case mode
    // turns every value into text.
    static QByteArray line(qint64 songId, const QString& artist, const QString& title, const QString& disc,
                           const QString& trackNo, CaseMode mode);
};
