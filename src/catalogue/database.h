#pragma once

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>

#include <memory>

// The one connection to the song catalogue, shared by every part of the
// program, and the compaction of the catalogue file with its recovery.

struct sqlite3;
class BackgroundCheckpoint;

inline const QString kConnectionName = QStringLiteral("dbConnection");

// The shared connection (not valid while closed).
QSqlDatabase dbConnection();
bool IsDatabaseOpen();
// Counts the openings and closings of the shared connection: what was taken
// from the connection under one number stays good while the number holds.
quint64 ConnectionGeneration();
// The SQLite handle under an open connection, or null.
sqlite3* NativeHandle(const QSqlDatabase& db);
// Turns the triggers of a connection off or on. Its statements are made again
// at their next start, so each runs the triggers as they stand then; a writer
// turns them off only while it runs statements whose rows none of them would
// touch, and on again before anything else may write.
void SetTriggersOn(sqlite3* db, bool on);

// How a process uses the catalogue: the one that holds the working folder's
// lock writes (and may recover and set up the file); any other only reads it
// as it finds it, and changes nothing.
enum class CatalogueUse { Write, Read };

// Opens the catalogue of the data folder, first recovering from a compaction
// that was cut short (when writing). Tells the host and returns false when the
// catalogue is missing or cannot be used; the file is then left as it is.
bool OpenDatabase(CatalogueUse use = CatalogueUse::Write);
// Closes and drops the shared connection.
void CloseDatabase();
// A leftover kvSongListTemp.mdb (a compaction of an older version of the
// program moved the catalogue there) may be the only whole catalogue: archive
// both files to the documents folder and put the temporary one in place, each
// with its side files. `deleteOnly` drops the main file without archiving it.
void RecoverInterruptedCompaction(bool deleteOnly);
// Copies the database `file`, whole, into `folder` as
// stem.<date and time>.extension, overwriting.
void Archive(const QString& file, const QString& folder);
// Compacts the catalogue: a compact copy is written beside it, flushed to
// disk and renamed over it; then the catalogue is opened again.
void DatabaseCompact();
// The catalogue's page size. Large pages make an import's writes fewer and
// larger (a page of the log is written with two system calls, whatever its
// size); the empty catalogue of the install folder is made with it, and a
// catalogue of an older page size takes it at its next compaction.
constexpr int kCataloguePageSize = 16384;
// Writes a compact copy of the database `source` to `destination` (which must
// not exist), in pages of kCataloguePageSize; false, logged, when it could
// not (also when another program has the source open).
bool CompactTheDatabase(const QString& source, const QString& destination);
// True when the catalogue is of the old layout (it has tblImport and KaraokeTracks).
bool CheckForOldDatabase();

// While one lives, the shared connection's commits are not flushed to disk
// one by one (the log still is, at each checkpoint): for batch work such as an
// import, whose last batch may be lost in a power cut and is simply run again.
// A process that is killed loses nothing it committed.
class BulkWrites {
public:
    BulkWrites();
    ~BulkWrites();
    BulkWrites(const BulkWrites&) = delete;
    BulkWrites& operator=(const BulkWrites&) = delete;

private:
    std::unique_ptr<BackgroundCheckpoint> m_folding;
    quint64 m_generation = 0;
    // Counted among the nested ones (the catalogue was open).
    bool m_counted = false;
};

// Doubles every single quote of a value that goes into an SQL literal.
QString MakeSafeSql(const QString& text);

// Runs one statement on the shared connection and returns it, positioned before
// its first row. Throws a KvError with the driver's text when it fails. Text
// after the first statement is an error, never a second statement.
QSqlQuery ExecuteSql(const QString& sql);
