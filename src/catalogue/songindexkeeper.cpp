#include "songindexkeeper.h"

#include "catalogue/unicodelike.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <sqlite3.h>

#include <cstdio>
#include <cstring>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

SongIndexKeeper& SongIndexKeeper::instance() {
    static SongIndexKeeper keeper;
    return keeper;
}

SongIndexKeeper::~SongIndexKeeper() {
    detach();
}

void SongIndexKeeper::onRowChanged(void* self, int, const char*, const char* table, long long) {
    auto* keeper = static_cast<SongIndexKeeper*>(self);
    keeper->m_hookedChanges.fetch_add(1, std::memory_order_relaxed);
    if (table && sqlite3_stricmp(table, "tblKaraokeTracks") == 0) {
        if (!keeper->m_songsChangedInTransaction) {
            keeper->m_songsChangedInTransaction = true;
            keeper->dropSaved();
        }
        keeper->m_songChanges.fetch_add(1, std::memory_order_relaxed);
    }
}

int SongIndexKeeper::onCommit(void* self) {
    auto* keeper = static_cast<SongIndexKeeper*>(self);
    if (keeper->m_songsChangedInTransaction)
        keeper->dropSaved();
    keeper->m_songsChangedInTransaction = false;
    return 0; // the commit goes ahead
}

void SongIndexKeeper::onRollback(void* self) {
    static_cast<SongIndexKeeper*>(self)->m_songsChangedInTransaction = false;
}

void SongIndexKeeper::dropSaved() {
    if (!m_path.isEmpty())
        QFile::remove(savedPath());
}

QString SongIndexKeeper::savedPath() const {
    const QFileInfo catalogue(m_path);
    return catalogue.path() + QLatin1Char('/') + catalogue.completeBaseName() + QStringLiteral(".songindex");
}

void SongIndexKeeper::attach(sqlite3* db, const QString& path) {
#if defined(__GLIBC__)
    // The index and its read work in blocks of megabytes. By default the C
    // library, once such a block is freed, serves the next ones from its
    // heap, where freed pages stay with the process; a fixed threshold keeps
    // every block of a megabyte or more in pages of its own, given back to
    // the system as soon as it is freed.
    static const bool tuned = mallopt(M_MMAP_THRESHOLD, 1 << 20) == 1;
    (void)tuned;
#endif
    detach();
    m_db = db;
    m_path = path;
    if (!m_db)
        return;
    sqlite3_update_hook(m_db, &SongIndexKeeper::onRowChanged, this);
    sqlite3_commit_hook(m_db, &SongIndexKeeper::onCommit, this);
    sqlite3_rollback_hook(m_db, &SongIndexKeeper::onRollback, this);
    m_songsChangedInTransaction = false;
    if (sqlite3_prepare_v2(m_db, "PRAGMA data_version", -1, &m_dataVersion, nullptr) != SQLITE_OK) {
        sqlite3_finalize(m_dataVersion);
        m_dataVersion = nullptr;
    }
    // What a program killed while saving left.
    QFile::remove(savedPath() + QStringLiteral(".new"));
    m_wantBlind = AccentBlindLike();
    // The first read waits until the window is up: on two cores it would
    // otherwise share them with the start. A search before it runs its
    // statement (and starts the read itself).
    const quint64 serial = m_serial;
    QTimer::singleShot(kFirstReadDelayMs, this, [this, serial] {
        if (serial == m_serial && !m_index && !m_building)
            startBuild(m_wantBlind);
    });
}

void SongIndexKeeper::detach() {
    joinBuilder();
    // A read stopped after its save leaves the file unclaimed.
    if (!m_path.isEmpty())
        QFile::remove(savedPath() + QStringLiteral(".new"));
    ++m_serial; // a result still queued for the main thread is dropped
    m_index.reset();
    if (m_db) {
        sqlite3_update_hook(m_db, nullptr, nullptr);
        sqlite3_commit_hook(m_db, nullptr, nullptr);
        sqlite3_rollback_hook(m_db, nullptr, nullptr);
        sqlite3_finalize(m_dataVersion);
    }
    m_dataVersion = nullptr;
    m_db = nullptr;
    m_path.clear();
}

void SongIndexKeeper::joinBuilder() {
    if (m_builder.joinable()) {
        m_stop = true;
        m_builder.join();
    }
    m_stop = false;
    m_building = false;
}

SongIndexKeeper::Stamp SongIndexKeeper::stampNow() const {
    Stamp s;
    s.songChanges = m_songChanges.load(std::memory_order_relaxed);
    s.hookedChanges = m_hookedChanges.load(std::memory_order_relaxed);
    if (m_db)
        s.totalChanges = sqlite3_total_changes64(m_db);
    if (m_dataVersion) {
        if (sqlite3_step(m_dataVersion) == SQLITE_ROW)
            s.dataVersion = sqlite3_column_int64(m_dataVersion, 0);
        else
            s.dataVersion = -1; // unknown: never equal to a good read
        sqlite3_reset(m_dataVersion);
    }
    return s;
}

bool SongIndexKeeper::songsChanged(const Stamp& then, const Stamp& now) {
    // Rows changed on this connection beyond what the hook reported were
    // changed without it (a delete of the whole table).
    const bool unreported =
        now.totalChanges - then.totalChanges > qint64(now.hookedChanges - then.hookedChanges);
    return now.songChanges != then.songChanges || now.dataVersion != then.dataVersion || unreported;
}

std::shared_ptr<const SongIndex> SongIndexKeeper::current(bool accentBlind) {
    if (!m_db)
        return nullptr;
    m_wantBlind = accentBlind;
    if (m_index && m_index->accentBlind() == accentBlind) {
        const Stamp now = stampNow();
        if (!songsChanged(m_indexStamp, now) && now.dataVersion >= 0) {
            // Changes to other tables move these two: follow them along.
            m_indexStamp.totalChanges = now.totalChanges;
            m_indexStamp.hookedChanges = now.hookedChanges;
            return m_index;
        }
        m_index.reset();
    }
    if (!m_building)
        startBuild(accentBlind);
    return nullptr;
}

void SongIndexKeeper::refresh() {
    if (m_db && !m_building)
        startBuild(m_wantBlind);
}

void SongIndexKeeper::distrust() {
    m_index.reset();
    refresh();
}

void SongIndexKeeper::startBuild(bool accentBlind) {
    if (!m_db || m_path.isEmpty() || !QCoreApplication::instance() || !m_readsOnItsOwn)
        return;
    // Rows written inside a transaction that is still open would be missed
    // by the reading connection: the read waits for the commit (the next
    // search asks again).
    if (!sqlite3_get_autocommit(m_db))
        return;
    joinBuilder();
    m_building = true;
    const quint64 serial = ++m_serial;
    const Stamp stamp = stampNow();
    const QByteArray path = m_path.toUtf8();
    QPointer<SongIndexKeeper> self(this);
    const QString saveTo = savedPath() + QStringLiteral(".new");
    m_builder = std::thread([this, serial, stamp, path, accentBlind, saveTo] {
        std::shared_ptr<const SongIndex> index;
        qint64 maxId = -1;
        sqlite3* reader = nullptr;
        if (sqlite3_open_v2(path.constData(), &reader, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr) ==
            SQLITE_OK) {
            sqlite3_exec(reader, "PRAGMA cache_size = -16384", nullptr, nullptr, nullptr);
            // One read transaction: the highest id saved with the index is
            // that of the rows it holds.
            sqlite3_exec(reader, "BEGIN", nullptr, nullptr, nullptr);
            sqlite3_stmt* top = nullptr;
            if (sqlite3_prepare_v2(reader, "Select ifnull(max(KaraokeTrackID), 0) From tblKaraokeTracks", -1,
                                   &top, nullptr) == SQLITE_OK &&
                sqlite3_step(top) == SQLITE_ROW)
                maxId = sqlite3_column_int64(top, 0);
            sqlite3_finalize(top);
            // The read runs again if the catalogue changes before it ends,
            // so its two halves may be read through two connections.
            index = SongIndex::build(reader, accentBlind, &m_stop, nullptr, true);
            sqlite3_exec(reader, "COMMIT", nullptr, nullptr, nullptr);
        }
        sqlite3_close(reader);
        if (m_stop)
            return;
        // The index goes to the searches first; its copy on disk, for the
        // next start, follows.
        QMetaObject::invokeMethod(
            this, [this, serial, index, stamp] { finishBuild(serial, index, stamp); }, Qt::QueuedConnection);
        // A read started meanwhile stops the copy rather than wait for it.
        if (index && maxId >= 0 && !m_stop && index->save(saveTo, maxId, &m_stop))
            QMetaObject::invokeMethod(
                this, [this, serial] { finishSave(serial); }, Qt::QueuedConnection);
    });
}

void SongIndexKeeper::finishBuild(quint64 serial, std::shared_ptr<const SongIndex> index, Stamp stamp) {
    if (serial != m_serial)
        return;
    // The read's thread may still be writing the index's copy: it is waited
    // for when the next read starts or the catalogue closes.
    m_building = false;
    if (!index || !m_db) {
        // No copy follows a failed read; an earlier read's may lie there.
        QFile::remove(savedPath() + QStringLiteral(".new"));
        return;
    }
    // A change while the read ran may or may not be in it: read again.
    const Stamp now = stampNow();
    if (songsChanged(stamp, now) || m_songsChangedInTransaction) {
        startBuild(index->accentBlind());
        return;
    }
    m_index = std::move(index);
    m_indexStamp = now;
    m_indexSerial = serial;
#if defined(__GLIBC__)
    // The read's working copies were freed on the reading thread; their
    // pages go back once the searches it was read for have had their turn.
    QTimer::singleShot(kTrimDelayMs, this, [] { malloc_trim(0); });
#endif
    emit indexReady();
}

void SongIndexKeeper::finishSave(quint64 serial) {
    // A later read owns the file being written now.
    if (serial != m_serial)
        return;
    const QString newFile = savedPath() + QStringLiteral(".new");
    // Renamed here, on the thread that sees every change of this program,
    // so that no change can come between the check and the file: only while
    // the index in use is the one saved, and the songs are as it read them.
    const bool current = m_db && m_index && serial == m_indexSerial &&
                         !songsChanged(m_indexStamp, stampNow()) && !m_songsChangedInTransaction;
    if (!current ||
        std::rename(QFile::encodeName(newFile).constData(), QFile::encodeName(savedPath()).constData()) != 0)
        QFile::remove(newFile);
}

bool SongIndexKeeper::buildNow(bool accentBlind) {
    if (!m_db)
        return false;
    joinBuilder();
    ++m_serial;
    const Stamp stamp = stampNow();
    auto index = SongIndex::build(m_db, accentBlind);
    if (!index)
        return false;
    m_wantBlind = accentBlind;
    m_index = std::move(index);
    m_indexStamp = stamp;
    return true;
}

bool SongIndexKeeper::loadSaved(bool accentBlind) {
    if (!m_db)
        return false;
    // The highest id, read from the end of the table at once. Counting the
    // songs would read the whole table, which is what the saved index is
    // there to spare; every change by a program of ours removes the file.
    qint64 maxId = -1;
    sqlite3_stmt* top = nullptr;
    if (sqlite3_prepare_v2(m_db, "Select ifnull(max(KaraokeTrackID), 0) From tblKaraokeTracks", -1, &top,
                           nullptr) == SQLITE_OK &&
        sqlite3_step(top) == SQLITE_ROW)
        maxId = sqlite3_column_int64(top, 0);
    sqlite3_finalize(top);
    if (maxId < 0)
        return false;
    auto index = SongIndex::load(savedPath(), accentBlind, maxId);
    if (!index)
        return false;
    joinBuilder();
    ++m_serial;
    m_wantBlind = accentBlind;
    m_index = std::move(index);
    m_indexStamp = stampNow();
    return true;
}

bool SongIndexKeeper::waitUntilCurrent(bool accentBlind, int ms) {
    QDeadlineTimer deadline(ms);
    while (!current(accentBlind)) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(2);
    }
    return true;
}
