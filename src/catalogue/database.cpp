#include "database.h"

#include "backgroundcheckpoint.h"

#include "searchfolding.h"
#include "songindexkeeper.h"
#include "unicodelike.h"

#include "core/capplicationpaths.h"
#include "core/databasefiles.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/kverror.h"
#include "core/pathhelpers.h"
#include "core/prompts.h"

#include "sqlerror.h"
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSqlDriver>

#include <QSqlError>

#include <sqlite3.h>

namespace {

// The fold of the log that ended the last bulk writes, made on its own thread
// while the program goes on; the catalogue waits for it before it closes.
std::unique_ptr<BackgroundCheckpoint> g_lastFold;

const QString kFailedTitle = QStringLiteral("Database connection failed");
const QString kCompactSource = QStringLiteral("KvApp.frmMain.DatabaseCompact");
const QString kOpenSource = QStringLiteral("KvApp.modMain.OpenDatabase");

QString dataFolder() {
    return AddBackslash(oApplicationPaths->ApplicationDataPath());
}

// The new copy a compaction writes, beside the catalogue, until it is whole.
QString compactCopyOf(const QString& catalogue) {
    return catalogue + QStringLiteral(".new");
}

// Reads the first 100 bytes of a would-be catalogue and tells what is wrong
// with it, or an empty text when it looks like a whole SQLite file. The page
// count in the header speaks for the file alone (`checkLength`) once SQLite
// has settled the side files, not while another program is writing it.
QString headerProblem(const QString& path, bool checkLength) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return QStringLiteral("it cannot be read: ") + f.errorString();
    const qint64 size = f.size();
    if (size == 0)
        return QStringLiteral("the file is empty");
    const QByteArray h = f.read(100);
    if (h.size() < 100 || !h.startsWith(QByteArrayLiteral("SQLite format 3\0")))
        return QStringLiteral("it is not a song catalogue of this program");
    auto be32 = [&](int at) {
        return (quint32(quint8(h[at])) << 24) | (quint32(quint8(h[at + 1])) << 16) |
               (quint32(quint8(h[at + 2])) << 8) | quint32(quint8(h[at + 3]));
    };
    quint32 pageSize = (quint32(quint8(h[16])) << 8) | quint8(h[17]);
    if (pageSize == 1)
        pageSize = 65536;
    const quint32 pages = be32(28);
    // The page count in the header is valid when its change counter matches.
    if (checkLength && pages != 0 && be32(24) == be32(92) && qint64(pages) * pageSize > size)
        return QStringLiteral("the file is cut short");
    return {};
}

void tellCannotOpen(const QString& path, const QString& reason) {
    prompts().msgBox(QStringLiteral("The song catalogue cannot be opened: %1\n%2\n\n"
                                    "Korvane will close. The file has been left as it is.")
                         .arg(reason, QDir::toNativeSeparators(path)),
                     Prompts::Exclamation, kFailedTitle);
}

bool schemaHas(QSqlDatabase& db, const QString& type, const QString& name) {
    QSqlQuery q(db);
    q.prepare(QStringLiteral("SELECT 1 FROM sqlite_master WHERE type=? AND name=? COLLATE NOCASE"));
    q.addBindValue(type);
    q.addBindValue(name);
    return q.exec() && q.next();
}

bool tableExists(QSqlDatabase& db, const QString& table) {
    return schemaHas(db, QStringLiteral("table"), table);
}

// The triggers of the install folder's template, by name, with their SQL.
QList<std::pair<QString, QString>> templateTriggers() {
    QList<std::pair<QString, QString>> triggers;
    const QByteArray path =
        QFile::encodeName(cApplicationPaths::installFolder() + QStringLiteral("kvsonglist.mdb"));
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK) {
        sqlite3_stmt* st = nullptr;
        if (sqlite3_prepare_v2(db, "SELECT name, sql FROM sqlite_master WHERE type = 'trigger'", -1, &st,
                               nullptr) == SQLITE_OK)
            while (sqlite3_step(st) == SQLITE_ROW)
                triggers.append(
                    {QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 0))),
                     QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(st, 1)))});
        sqlite3_finalize(st);
    }
    sqlite3_close(db);
    return triggers;
}

// A catalogue made from an older template gets the triggers it lacks (the
// Yes/No meaning of an INSERT came later than that of an UPDATE). A trigger
// that cannot be made is logged; the catalogue works on without it.
void addMissingTriggers(QSqlDatabase& db) {
    for (const auto& [name, sql] : templateTriggers()) {
        if (schemaHas(db, QStringLiteral("trigger"), name))
            continue;
        QSqlQuery q(db);
        if (!q.exec(sql))
            LogErrorQuietly(q.lastError().databaseText(), kOpenSource, 5);
    }
}

// The shared connection's way of working: a write-ahead log, so that a
// commit costs one flush of the log (a saved queue lands in a few
// milliseconds, and a program killed after it finds it there), and a page
// cache that holds a catalogue of a hundred thousand songs whole, so that a
// typed search does not read the file again. A reader changes nothing in the
// file: the journal mode is the writer's to set.
QString applyConnectionSettings(QSqlDatabase& db, CatalogueUse use) {
    QStringList pragmas = {QStringLiteral("PRAGMA cache_size = -32768")};
    if (use == CatalogueUse::Write)
        pragmas = QStringList{QStringLiteral("PRAGMA journal_mode = WAL"),
                              QStringLiteral("PRAGMA synchronous = FULL")} +
                  pragmas;
    for (const QString& pragma : pragmas) {
        QSqlQuery q(db);
        if (!q.exec(pragma))
            return q.lastError().databaseText();
    }
    if (!InstallUnicodeLike(NativeHandle(db)))
        return QStringLiteral("the search operator could not be set up");
    return {};
}

// Reads the schema of a freshly opened catalogue and sets the connection up;
// an empty text when the catalogue is fit for use, else what is wrong.
QString checkCatalogue(QSqlDatabase& db, CatalogueUse use) {
    {
        QSqlQuery probe(db);
        if (!probe.exec(QStringLiteral("SELECT count(*) FROM sqlite_master")))
            return probe.lastError().databaseText();
    } // no read may stay open while the journal mode changes
    if (tableExists(db, QStringLiteral("tblKaraokeTracks"))) {
        const QString problem = applyConnectionSettings(db, use);
        if (problem.isEmpty() && use == CatalogueUse::Write)
            addMissingTriggers(db);
        return problem;
    }
    // A catalogue of the old layout is opened as it is, to be refused by its
    // own check without a byte of it changed.
    if (tableExists(db, QStringLiteral("tblImport")))
        return {};
    return QStringLiteral("it is not a song catalogue of this program");
}

// Settings of the SQLite library itself, which hold only when made before
// its first use in the process (later calls are refused and change nothing).
// The library's count of its own memory use takes a lock on every allocation,
// and parsing a statement allocates dozens of times: nothing here reads the
// count, and an import of a large library parses a statement per song.
void configureSqliteLibrary() {
    static const bool done = [] {
        sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
        return true;
    }();
    (void)done;
}

} // namespace

namespace {
quint64 g_generation = 0;
}

QSqlDatabase dbConnection() {
    return QSqlDatabase::database(kConnectionName, false);
}

quint64 ConnectionGeneration() {
    return g_generation;
}

sqlite3* NativeHandle(const QSqlDatabase& db) {
    if (!db.isOpen())
        return nullptr;
    const QVariant handle = db.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

void SetTriggersOn(sqlite3* db, bool on) {
    sqlite3_db_config(db, SQLITE_DBCONFIG_ENABLE_TRIGGER, on ? 1 : 0, nullptr);
}

bool IsDatabaseOpen() {
    return QSqlDatabase::contains(kConnectionName) && dbConnection().isOpen();
}

void CloseDatabase() {
    // A compaction needs the file to itself: the last fold's connection ends first.
    g_lastFold.reset();
    if (!QSqlDatabase::contains(kConnectionName))
        return;
    ++g_generation;
    SongIndexKeeper::instance().detach();
    {
        QSqlDatabase db = dbConnection();
        db.close();
    }
    QSqlDatabase::removeDatabase(kConnectionName);
}

bool OpenDatabase(CatalogueUse use) {
    const QString path = dataFolder() + QStringLiteral("kvsonglist.mdb");
    if (use == CatalogueUse::Write) {
        // A compaction cut short leaves its unfinished copy; the catalogue
        // itself was never touched.
        RemoveDatabaseFile(compactCopyOf(path));
        if (IsRegularFile(oApplicationPaths->CompactedDatabase()))
            RecoverInterruptedCompaction(false);
    }

    if (!FileExists(path)) {
        prompts().msgBox(
            QStringLiteral("This application is not installed correctly, database does not exist"),
            Prompts::Exclamation, kFailedTitle);
        return false;
    }
    // A pipe or a device in its place would hold the program at the first read.
    if (!IsRegularFile(path)) {
        tellCannotOpen(path, QStringLiteral("it is not a regular file"));
        return false;
    }
    // Side files left by a crash are finished by SQLite first, so that the
    // check below sees the whole file; only while another program writes
    // (and a reader sees it as it is) can the file's length not be judged.
    bool checkLength = !HasSideFileContent(path);
    if (!checkLength && use == CatalogueUse::Write) {
        const int settled = SettleDatabaseFile(path);
        checkLength = settled != SQLITE_BUSY && settled != SQLITE_LOCKED;
    }
    if (const QString problem = headerProblem(path, checkLength); !problem.isEmpty()) {
        tellCannotOpen(path, problem);
        return false;
    }
    if (use == CatalogueUse::Write && !QFileInfo(path).isWritable()) {
        tellCannotOpen(path, QStringLiteral("the file is read-only"));
        return false;
    }

    CloseDatabase();
    configureSqliteLibrary();
    ++g_generation;
    QString failure;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), kConnectionName);
        db.setDatabaseName(path);
        db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=2000"));
        if (!db.open())
            failure = db.lastError().text();
        else
            failure = checkCatalogue(db, use);
    }
    if (!failure.isEmpty()) {
        CloseDatabase();
        tellCannotOpen(path, failure);
        return false;
    }
    FollowAccentBlindSetting();
    SongIndexKeeper::instance().attach(NativeHandle(dbConnection()), path);
    return true;
}

void Archive(const QString& file, const QString& folder) {
    // The copy is of the whole database: what its side files hold is folded
    // in first, and any side file that stays goes along.
    if (!IsRegularFile(file))
        throw KvError(0, QStringLiteral("File copy failed"), QStringLiteral("KvApp.modMain.Archive"));
    SettleDatabaseFile(file);
    QDir().mkpath(folder);
    if (!CopyDatabaseFile(file, AddBackslash(folder) + StampedName(file, folder, false)))
        throw KvError(0, QStringLiteral("File copy failed"), QStringLiteral("KvApp.modMain.Archive"));
}

void RecoverInterruptedCompaction(bool deleteOnly) {
    const QString main = oApplicationPaths->ApplicationDatabaseFile();
    const QString temp = oApplicationPaths->CompactedDatabase();
    if (!IsRegularFile(temp)) {
        prompts().msgBox(QStringLiteral("No fix is required"), Prompts::Information,
                         QStringLiteral("Korvane"));
        return;
    }
    const QString docs = oApplicationPaths->ApplicationDocuments();
    // The main file goes with its side files: left behind, they would be
    // taken for the side files of the file that takes its place.
    if (!deleteOnly) {
        Guarded(kOpenSource, 1, [&] { Archive(main, docs); });
        Guarded(kOpenSource, 2, [&] {
            const bool existed = QFileInfo::exists(main);
            if (!RemoveDatabaseFile(main) || !existed)
                throw KvError(53, QStringLiteral("File not found: ") + main);
        });
    } else {
        RemoveDatabaseFile(main);
    }
    Guarded(kOpenSource, 3, [&] { Archive(temp, docs); });
    Guarded(kOpenSource, 4, [&] {
        if (!MoveDatabaseFile(temp, main))
            throw KvError(75, QStringLiteral("Path/File access error: ") + temp);
        SyncToDisk(dataFolder());
    });
}

bool CompactTheDatabase(const QString& source, const QString& destination) {
    bool ok = false;
    Guarded(QStringLiteral("KvApp.modMain.CompactTheDatabase"), 1, [&] {
        // The compact copy is written by SQLite itself from a private connection.
        sqlite3* db = nullptr;
        if (sqlite3_open_v2(QFile::encodeName(source).constData(), &db, SQLITE_OPEN_READWRITE, nullptr) !=
            SQLITE_OK) {
            const QString why = QString::fromUtf8(sqlite3_errmsg(db));
            sqlite3_close(db);
            throw KvError(0, why);
        }
        const auto closeDb = qScopeGuard([db] { sqlite3_close(db); });
        sqlite3_busy_timeout(db, 2000);
        const auto run = [db](const QByteArray& sql) {
            char* err = nullptr;
            const int rc = sqlite3_exec(db, sql.constData(), nullptr, nullptr, &err);
            const QString why = err ? QString::fromUtf8(err) : QString::fromUtf8(sqlite3_errstr(rc));
            sqlite3_free(err);
            if (rc != SQLITE_OK)
                throw KvError(rc, why);
        };
        // Out of write-ahead mode: the log is folded into the file and removed,
        // which SQLite does only when no other program has the file open. So
        // the file is whole on its own, and no log of it stays behind to be
        // taken for the log of the copy that will replace it.
        sqlite3_stmt* st = nullptr;
        QByteArray mode;
        if (sqlite3_prepare_v2(db, "PRAGMA journal_mode = DELETE", -1, &st, nullptr) == SQLITE_OK &&
            sqlite3_step(st) == SQLITE_ROW)
            mode = reinterpret_cast<const char*>(sqlite3_column_text(st, 0));
        sqlite3_finalize(st);
        if (mode != "delete")
            throw KvError(
                5, QStringLiteral("The song catalogue is open in another program; it was not optimised."));
        // The copy is made in the catalogue's page size, whatever the source's.
        run("PRAGMA page_size = " + QByteArray::number(kCataloguePageSize));
        run("VACUUM INTO '" + QFile::encodeName(destination).replace("'", "''") + "'");
        SyncToDisk(destination);
        ok = true;
    });
    return ok;
}

void DatabaseCompact() {
    const QString folder = oApplicationPaths->ApplicationDataPath();
    const QString main = folder + QStringLiteral("/kvsonglist.mdb");
    const QString copy = compactCopyOf(main);
    Guarded(kCompactSource, 1, [] { CloseDatabase(); });
    // The compact copy is written beside the catalogue under a name of its
    // own, flushed to disk, and only then renamed over it: a crash at any
    // moment leaves either the old catalogue or the new one, whole, and the
    // unfinished copy is removed at the next opening.
    Guarded(kCompactSource, 2, [&] { RemoveDatabaseFile(copy); });
    bool compacted = CompactTheDatabase(main, copy);
    if (compacted)
        Guarded(kCompactSource, 3, [&] {
            // No connection has the old catalogue open any more.
            const RetiringFile old(main);
            if (!ReplaceFile(copy, main))
                throw KvError(75, QStringLiteral("Path/File access error: ") + copy);
            for (const QString& side : SideFiles(main))
                QFile::remove(side); // none, unless left by a program of old
            SyncToDisk(folder);
        });
    RemoveDatabaseFile(copy);
    Guarded(kCompactSource, 4, [] { OpenDatabase(); });
}

bool CheckForOldDatabase() {
    QSqlDatabase db = dbConnection();
    for (const char* sql : {"Select * from tblImport", "Select * from KaraokeTracks"}) {
        QSqlQuery q(db);
        if (!q.exec(QString::fromLatin1(sql)))
            return false;
    }
    return true;
}

namespace {

// Bulk writes nest (an import started from inside another one): the outermost
// sets the connection up and puts it back.
int g_bulkDepth = 0;

} // namespace

BulkWrites::BulkWrites() {
    if (!IsDatabaseOpen())
        return;
    m_counted = true;
    if (g_bulkDepth++ > 0)
        return;
    m_generation = ConnectionGeneration();
    QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA synchronous = NORMAL"));
    // The log is folded into the file on a thread of its own while the work
    // goes on, rather than every thousand pages by the writer itself.
    QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA wal_autocheckpoint = 0"));
    m_folding = std::make_unique<BackgroundCheckpoint>(NativeHandle(dbConnection()));
}

BulkWrites::~BulkWrites() {
    if (!m_counted)
        return;
    --g_bulkDepth;
    if (!m_folding)
        return;
    const bool sameConnection = IsDatabaseOpen() && ConnectionGeneration() == m_generation;
    // A connection closed meanwhile took its hook with it.
    if (!sameConnection) {
        m_folding->writerClosed();
        m_folding.reset();
        return;
    }
    // The log's last fold runs on the folding thread, and the work that
    // follows (the song index read, the next screen) does not wait for its
    // disk flushes.
    m_folding->lastFoldThenEnd();
    g_lastFold = std::move(m_folding);
    QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA wal_autocheckpoint = 1000"));
    QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA synchronous = FULL"));
}

QString MakeSafeSql(const QString& text) {
    if (text.isEmpty())
        return text;
    QString s = text;
    s.replace(QLatin1Char('\''), QStringLiteral("''"));
    return s;
}

QSqlQuery ExecuteSql(const QString& sql) {
    QSqlDatabase db = dbConnection();
    if (!db.isOpen())
        throw KvError(3704, QStringLiteral("Operation is not allowed when the object is closed."));
    QSqlQuery q(db);
    q.setForwardOnly(true);
    if (!q.exec(sql))
        RaiseSqlError(q.lastError());
    return q;
}
