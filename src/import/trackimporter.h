#pragma once

#include "namecut.h"

#include <QString>
#include <functional>
#include <memory>

// Turns one song file found on disk into one row of tblKaraokeTracks: the
// file's name is cut into title, artist, disc and track number by the chosen
// file-name convention, and the row is inserted in the import's transaction,
// which is committed and begun anew every 3000 files.
//
// A name that lacks a piece the convention reads is still catalogued, under
// its file name (the host is asked once whether to hear about such names); a
// file the catalogue already has is passed over in silence.
class TrackImporter {
public:
    TrackImporter();

    // The number of the convention of FileConventions() that cuts the names.
    int ConventionNumber = 0;
    // Files handled since the run began; drives the commits and the progress.
    qint32 ProcessedCount = 0;
    // Empty while the catalogue takes the rows. When it refuses one for any
    // reason but a duplicate, or a commit fails: what happened and at which
    // file; the run then stops.
    QString StopReason;

    // `path` is the full path of the file; `kamikaze` marks the row for the
    // random kamikaze pick.
    void AddToImportDatabase(const QString& path, bool kamikaze);
    // The same with the name cut already (on any thread, by any convention).
    void AddToImportDatabase(const QString& path, const NameCut& cut, bool kamikaze);

    // What runs once per inserted row to keep the screen alive, every row in
    // the catalogue by then. Unless replaced: a look at the application's
    // pending events every few milliseconds.
    void setEventPump(std::function<void()> pump);

    // While on, rows are inserted in groups, many to a statement; a row may
    // wait for its group until the next look at the events, question,
    // commit, flushRows() or the grouping's end. Every count but the new
    // tracks' is kept row by row.
    void setGrouping(bool on);
    // Puts in the rows waiting for their group (before the caller shows
    // anything, or lets the screen work).
    void flushRows();

    // Puts in what waits, and lets go of the prepared inserts (a prepared
    // statement keeps the connection from closing); the run calls it when
    // its walk ends.
    void releaseStatement();

    static constexpr int kCommitEvery = 3000;

    TrackImporter(TrackImporter&&) noexcept;
    TrackImporter& operator=(TrackImporter&&) noexcept;
    ~TrackImporter();

private:
    class Insert;
    class Group;
    void tellMissingPieces(const NameCut& cut);
    void afterRow();
    void queueRow(const NameCut& cut, bool kamikaze);
    void groupRan();
    void groupFailed();

    std::function<void()> m_pump;
    bool m_lookNowAndThen = true;
    bool m_grouping = false;
    std::unique_ptr<Insert> m_insert;
    std::unique_ptr<Group> m_group;
};
