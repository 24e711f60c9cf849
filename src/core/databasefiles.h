#pragma once

#include <QString>
#include <QStringList>

// The files of one SQLite database on disk, and how to handle them whole. A
// database is its file together with the side files SQLite keeps beside it
// ("-journal", "-wal", "-shm"), which may hold committed rows the file does
// not have yet: whatever moves, copies or removes a database takes them along
// (or lets SQLite fold them in first), and never leaves one beside another
// database, which SQLite would take for its own.

// The side files of the database at `path`, in the order journal, log, index.
QStringList SideFiles(const QString& path);
// True when any side file of `path` holds something.
bool HasSideFileContent(const QString& path);

// Lets SQLite finish what the side files of `path` hold (roll back an
// unfinished write, fold the write-ahead log into the file) and closes it, so
// that the file alone is the whole database; side files are gone afterwards
// unless another program has the database open. Returns SQLite's result
// code: SQLITE_BUSY or SQLITE_LOCKED when another program holds it.
int SettleDatabaseFile(const QString& path);

// Removes `path` and its side files; false when the file itself was there and
// could not be removed.
bool RemoveDatabaseFile(const QString& path);
// Moves the database at `from`, side files included, to `to`, replacing any
// database there (its side files removed); across file systems by copy and
// removal. Side files move also when the file itself is gone. False when the
// file itself did not move.
bool MoveDatabaseFile(const QString& from, const QString& to);
// Renames the file `from` over `to` in one step (the same file system): at
// any moment `to` is the old file or the new one. False when it failed.
bool ReplaceFile(const QString& from, const QString& to);
// Copies the database at `from` with whatever side files it has to `to`,
// replacing what is there. False when the file itself was not copied.
bool CopyDatabaseFile(const QString& from, const QString& to);

// The name under which a copy of `file` is kept in `folder`: its stem (up to
// the first "."), ".", the present date and time with ":" and "/" turned into
// "-", "." and its extension (after the last "."). With `unique`, a name
// already taken in the folder gets " (2)", " (3)" ... before its extension.
QString StampedName(const QString& file, const QString& folder, bool unique);

// Flushes a file, or a folder's entries (after a rename in it), to the disk.
void SyncToDisk(const QString& path);

// Holds a file open while something else is renamed over it, so that the
// rename returns at once: the file's space is given back at the last close of
// it, which for a large file takes a while, and which happens on a thread of
// its own when this ends. Nothing of it stays on disk under any name.
class RetiringFile {
public:
    explicit RetiringFile(const QString& path);
    ~RetiringFile();
    RetiringFile(const RetiringFile&) = delete;
    RetiringFile& operator=(const RetiringFile&) = delete;

private:
    int m_fd = -1;
};
