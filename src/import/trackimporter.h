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

    // What runs once per inserted row to keep the screen alive; the pending
    // events of the application unless replaced.
    void setEventPump(std::function<void()> pump) { m_pump = std::move(pump); }

    // Lets go of the prepared insert (a prepared statement keeps the
    // connection from closing); the run calls it when its walk ends.
    void releaseStatement();

    static constexpr int kCommitEvery = 3000;

    TrackImporter(TrackImporter&&) noexcept;
    TrackImporter& operator=(TrackImporter&&) noexcept;
    ~TrackImporter();

private:
    class Insert;
    void tellMissingPieces(const NameCut& cut);

    std::function<void()> m_pump;
    std::unique_ptr<Insert> m_insert;
};
