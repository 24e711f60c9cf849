// A test helper that does the catalogue work of Korvane as the program does
// it, and stops at a chosen point so that a test can kill it there (SIGKILL)
// and look at what a crash at that point leaves behind. At the point it prints
// "KILL-POINT <name>" on a line of its own and waits to be killed.
//
//   kv_killpoints hold-lock
//       takes the working folder's lock file and waits.
//   kv_killpoints import FOLDER
//       imports FOLDER and waits once the first batch of rows is committed
//       ("committed").
//   kv_killpoints compact N POINT
//       commits N songs, then compacts the catalogue and stops at POINT:
//       "write:K" (the K-th page write into the new copy), "copy-closed" (the
//       copy is complete) or "reopen" (the catalogue is about to be opened
//       again). Prints "compacted" and ends when the point never came.
#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/consoleprompts.h"
#include "core/globals.h"
#include "core/workingfolder.h"
#include "import/importrun.h"
#include "import/trackimporter.h"

#include <QCoreApplication>
#include <QLockFile>
#include <QSqlQuery>

#include <sqlite3.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

[[noreturn]] void stopHere(const char* point) {
    std::printf("KILL-POINT %s\n", point);
    std::fflush(stdout);
    for (;;)
        ::pause();
}

// ---------------------------------------------------------------- a VFS that stops

// Wraps the default SQLite VFS of the process (the one every connection,
// Qt's included, uses) and watches a database file that did not exist when
// it was opened: the new copy a compaction writes. That file alone gets
// methods of its own, which count its writes and see it closed before the
// real methods do the work.
std::string g_point;
int g_writes = 0;
bool g_copyClosed = false;
sqlite3_vfs* g_real = nullptr;
sqlite3_vfs g_vfs;
const sqlite3_io_methods* g_realMethods = nullptr;
sqlite3_io_methods g_copyMethods;

int copyClose(sqlite3_file* f) {
    if (g_point == "copy-closed")
        stopHere("copy-closed");
    g_copyClosed = true;
    return g_realMethods->xClose(f);
}
int copyWrite(sqlite3_file* f, const void* b, int n, sqlite3_int64 at) {
    if (g_point == "write:" + std::to_string(++g_writes))
        stopHere(g_point.c_str());
    return g_realMethods->xWrite(f, b, n, at);
}

int vOpen(sqlite3_vfs*, const char* name, sqlite3_file* f, int flags, int* outFlags) {
    const bool mainDb = (flags & SQLITE_OPEN_MAIN_DB) != 0 && name;
    if (mainDb && g_copyClosed && g_point == "reopen" && std::strstr(name, "/kvsonglist.mdb"))
        stopHere("reopen");
    const bool copy = mainDb && !g_point.empty() && ::access(name, F_OK) != 0;
    const int rc = g_real->xOpen(g_real, name, f, flags, outFlags);
    if (rc == SQLITE_OK && copy && f->pMethods) {
        g_realMethods = f->pMethods;
        g_copyMethods = *f->pMethods;
        g_copyMethods.xClose = copyClose;
        g_copyMethods.xWrite = copyWrite;
        f->pMethods = &g_copyMethods;
    }
    return rc;
}

void installStoppingVfs() {
    g_real = sqlite3_vfs_find(nullptr);
    g_vfs = *g_real;
    g_vfs.zName = "kv-killpoints";
    g_vfs.xOpen = vOpen;
    sqlite3_vfs_register(&g_vfs, 1);
}

// ---------------------------------------------------------------- the program's steps

QLockFile* g_lock = nullptr;

// Makes the shared objects and opens the catalogue as the program's start-up
// does, holding the working folder as the program does.
bool openAsTheProgram() {
    static ConsolePrompts console;
    setPrompts(&console);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    g_lock = new QLockFile(WorkingFolder + QStringLiteral("korvane.lock"));
    g_lock->setStaleLockTime(0);
    if (!g_lock->tryLock(0))
        return false;
    oSettings = std::make_unique<CIniFile>();
    return OpenDatabase();
}

// Commits `n` songs in batches of 100, with the log never folded into the
// file: a crash now finds them in the write-ahead log only.
void commitSongs(int n) {
    ExecuteSql(QStringLiteral("PRAGMA wal_autocheckpoint = 0"));
    for (int i = 0; i < n; ++i) {
        if (i % 100 == 0)
            ExecuteSql(QStringLiteral("BEGIN"));
        ExecuteSql(QStringLiteral("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, TrackPath) "
                                  "VALUES ('Artist %1', 'Title %1', '/songs/%1.zip')")
                       .arg(i));
        if (i % 100 == 99 || i == n - 1)
            ExecuteSql(QStringLiteral("COMMIT"));
    }
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    const QString scenario = args.value(0);
    if (scenario == QLatin1String("compact"))
        installStoppingVfs();
    if (scenario == QLatin1String("hold-lock")) {
        oApplicationPaths = std::make_unique<cApplicationPaths>();
        CheckWorkingFolder();
        QLockFile lock(WorkingFolder + QStringLiteral("korvane.lock"));
        lock.setStaleLockTime(0);
        if (!lock.tryLock(0))
            return 1;
        stopHere("locked");
    }
    if (!openAsTheProgram())
        return 1;
    if (scenario == QLatin1String("import")) {
        ImportRun run;
        run.setSettlePause(0);
        run.setEventPump([&run] {
            if (run.processedCount() > TrackImporter::kCommitEvery)
                stopHere("committed");
        });
        run.GetTracks(args.value(1), 1);
        return 1; // the folder held too few songs to commit a batch
    }
    if (scenario == QLatin1String("compact")) {
        commitSongs(args.value(1).toInt());
        g_point = args.value(2).toStdString();
        DatabaseCompact();
        std::printf("compacted\n");
        return 0;
    }
    return 2;
}
