#include "backgroundrows.h"

#include "sqlitestatement.h"

#include <chrono>

#include <sqlite3.h>

namespace {

constexpr size_t kRowsPerBatch = 2048;
// Batches read ahead of the caller: enough to keep both sides busy, few
// enough that a slow caller does not make the reading hold the whole answer.
constexpr size_t kBatchesAhead = 4;
constexpr auto kLookEvery = std::chrono::milliseconds(10);

} // namespace

BackgroundRows::BackgroundRows(sqlite3* db, QByteArrayView sql) {
    const char* file = db ? sqlite3_db_filename(db, "main") : nullptr;
    if (!db || !file || !*file || !sqlite3_get_autocommit(db)) {
        m_direct = std::make_unique<SqliteStatement>(db, sql);
        m_failed = !m_direct->ok();
        m_columns = m_direct->columnCount();
        return;
    }
    m_thread = std::thread(&BackgroundRows::read, this, QByteArray(file), sql.toByteArray());
}

BackgroundRows::~BackgroundRows() {
    if (!m_thread.joinable())
        return;
    stop();
    m_thread.join();
}

void BackgroundRows::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_changed.notify_all();
}

void BackgroundRows::read(QByteArray path, QByteArray sql) {
    sqlite3* reader = nullptr;
    bool failed = sqlite3_open_v2(path.constData(), &reader, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX,
                                  nullptr) != SQLITE_OK;
    if (!failed) {
        // A stop, whenever it comes, ends the statement within its next
        // steps: a sort under way too.
        sqlite3_progress_handler(
            reader, 1000, [](void* self) { return static_cast<BackgroundRows*>(self)->m_stop ? 1 : 0; },
            this);
        // The catalogue's writer may hold the log a moment (a checkpoint).
        sqlite3_busy_timeout(reader, 2000);
        // A small page cache: it is also the sort's working memory, and a
        // sort in many small runs is no slower than in a few large ones.
        sqlite3_exec(reader, "PRAGMA cache_size = -4096", nullptr, nullptr, nullptr);
        sqlite3_exec(reader, "PRAGMA threads = 1", nullptr, nullptr, nullptr);
        SqliteStatement rows(reader, sql);
        const int columns = rows.columnCount();
        {
            const std::lock_guard lock(m_mutex);
            m_columns = columns;
        }
        failed = !rows.ok();
        Batch batch;
        auto handOver = [&](Batch&& full) {
            std::unique_lock lock(m_mutex);
            m_changed.wait(lock, [&] { return m_stop || m_ready.size() < kBatchesAhead; });
            if (m_stop)
                return false;
            m_ready.push_back(std::move(full));
            lock.unlock();
            m_changed.notify_all();
            return true;
        };
        bool going = !failed;
        while (going && !m_stop && rows.next()) {
            for (int c = 0; c < columns; ++c) {
                Cell cell;
                if (!rows.isNull(c)) {
                    cell.integer = rows.integer(c);
                    const QByteArrayView text = rows.text(c);
                    cell.offset = qint32(batch.bytes.size());
                    cell.length = qint32(text.size());
                    batch.bytes.append(text);
                }
                batch.cells.push_back(cell);
            }
            if (batch.cells.size() >= kRowsPerBatch * size_t(columns))
                going = handOver(std::exchange(batch, Batch()));
        }
        failed = failed || rows.failed();
        if (going && !batch.cells.empty())
            handOver(std::move(batch));
    }
    {
        const std::lock_guard lock(m_mutex);
        m_finished = true;
        m_readFailed = failed && !m_stop;
    }
    sqlite3_close(reader);
    m_changed.notify_all();
}

bool BackgroundRows::next(const std::function<bool()>& waiting) {
    if (m_direct) {
        const bool more = m_direct->next();
        m_failed = m_direct->failed();
        return more;
    }
    if (++m_row < m_rows)
        return true;
    std::unique_lock lock(m_mutex);
    while (m_ready.empty() && !m_finished) {
        if (waiting) {
            lock.unlock();
            if (!waiting()) {
                stop();
                return false;
            }
            lock.lock();
        }
        m_changed.wait_for(lock, kLookEvery);
    }
    if (m_ready.empty()) {
        m_failed = m_readFailed;
        return false;
    }
    m_current = std::move(m_ready.front());
    m_ready.pop_front();
    lock.unlock();
    m_changed.notify_all();
    m_row = 0;
    m_rows = m_columns > 0 ? m_current.cells.size() / size_t(m_columns) : 0;
    return m_rows > 0;
}

const BackgroundRows::Cell& BackgroundRows::cell(int column) const {
    return m_current.cells[m_row * size_t(m_columns) + size_t(column)];
}

bool BackgroundRows::isNull(int column) const {
    return m_direct ? m_direct->isNull(column) : cell(column).length < 0;
}

qint64 BackgroundRows::integer(int column) const {
    return m_direct ? m_direct->integer(column) : cell(column).integer;
}

QByteArrayView BackgroundRows::text(int column) const {
    if (m_direct)
        return m_direct->text(column);
    const Cell& c = cell(column);
    return c.length < 0 ? QByteArrayView() : QByteArrayView(m_current.bytes.constData() + c.offset, c.length);
}
