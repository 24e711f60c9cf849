#pragma once

#include <QString>
#include <optional>

// The repairs a host makes on one catalogue song without leaving the main
// screen: an artist written last name first, and a file renamed after the
// song's row. The widgets that offer them are elsewhere; what is here runs
// and is tested without a screen.
namespace maintenance {

// The artist written first name first: "Last, First" becomes "First Last",
// and "Last, First & Other" becomes "First Last & Other". Only the first
// comma splits; blanks are trimmed only at the ends of the parts. Nothing
// (no value) when the name has no comma: then nothing is to change.
std::optional<QString> RemoveExtrasFromArtist(const QString& artist);

// The name a song's file gets from its row, in the folder of `oldPath`:
// disc-track number - artist - title.zip, whatever the file's own extension.
QString renamedPath(const QString& oldPath, const QString& artist, const QString& track, const QString& disc,
                    const QString& trackNo);

struct RenameOutcome {
    bool renamed = false; // the file has its new name and the row says so
    QString newPath;
    QString error; // why nothing changed, for the host
};

// Renames the file of song `id` after its row and records the new path.
// Either both change or neither: a name that would replace another file,
// leave the folder or not fit the disk, a file that is missing or on
// read-only media, and a row that cannot take the new path, all leave the
// disk and the row as they were.
RenameOutcome renameSongFile(qint64 id, const QString& artist, const QString& track, const QString& disc,
                             const QString& trackNo);

// The menu's form: renames, and tells the host in a box when it could not.
// True only when the file has its new name.
bool RenameSongFile(qint64 id, const QString& artist, const QString& track, const QString& disc,
                    const QString& trackNo);

} // namespace maintenance
