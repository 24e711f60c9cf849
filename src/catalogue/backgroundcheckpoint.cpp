#include "backgroundcheckpoint.h"

#include <sqlite3.h>

BackgroundCheckpoint::BackgroundCheckpoint(sqlite3* writer, int pagesPerFold)
    : m_writer(writer), m_pagesPerFold(pagesPerFold) {
    const char* file = writer ? sqlite3_db_filename(writer, "main") : nullptr;
    if (!file || !*file)
        return;
    sqlite3_wal_hook(writer, &BackgroundCheckpoint::committed, this);
    m_thread = std::thread(&BackgroundCheckpoint::run, this, QByteArray(file));
}

BackgroundCheckpoint::~BackgroundCheckpoint() {
    if (!m_thread.joinable())
        return;
    if (m_writer)
        sqlite3_wal_hook(m_writer, nullptr, nullptr);
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void BackgroundCheckpoint::lastFoldThenEnd() {
    if (m_writer)
        sqlite3_wal_hook(m_writer, nullptr, nullptr);
    m_writer = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        m_wanted = true;
        m_last = true;
    }
    m_wake.notify_all();
}

int BackgroundCheckpoint::folds() const {
    const std::lock_guard lock(m_mutex);
    return m_folds;
}

// Runs on the writer's thread after each commit, with the log's length in
// pages. A log that was folded whole starts again from its beginning, so a
// length below the last one means the growth counts from zero.
int BackgroundCheckpoint::committed(void* self, sqlite3*, const char*, int pages) {
    auto* me = static_cast<BackgroundCheckpoint*>(self);
    if (pages < me->m_pagesAtLastWake)
        me->m_pagesAtLastWake = 0;
    if (pages - me->m_pagesAtLastWake < me->m_pagesPerFold)
        return SQLITE_OK;
    me->m_pagesAtLastWake = pages;
    {
        const std::lock_guard lock(me->m_mutex);
        me->m_wanted = true;
    }
    me->m_wake.notify_one();
    return SQLITE_OK;
}

void BackgroundCheckpoint::run(QByteArray path) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) !=
        SQLITE_OK) {
        sqlite3_close(db);
        return;
    }
    // The writer's own commit may hold the log a moment.
    sqlite3_busy_timeout(db, 1000);
    // A connection learns that the file keeps a log when it first reads it.
    sqlite3_exec(db, "SELECT 1 FROM sqlite_master LIMIT 1", nullptr, nullptr, nullptr);
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_wake.wait(lock, [this] { return m_wanted || m_stop; });
        if (m_stop)
            break;
        m_wanted = false;
        const bool last = m_last;
        lock.unlock();
        // A passive fold copies what is committed and waits for no one; the
        // frames it cannot reach yet stay for the next.
        const int rc = sqlite3_wal_checkpoint_v2(db, "main", SQLITE_CHECKPOINT_PASSIVE, nullptr, nullptr);
        lock.lock();
        if (rc == SQLITE_OK)
            ++m_folds;
        if (last)
            break;
    }
    lock.unlock();
    sqlite3_close(db);
}
