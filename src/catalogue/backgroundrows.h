#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

struct sqlite3;
class SqliteStatement;

// The rows of one statement, read on a thread of its own over a read-only
// connection of its own, and handed over in batches. A statement that sorts a
// whole catalogue gives no first row until the sort is done; read this way the
// window keeps answering meanwhile, and the caller's work on the rows runs
// beside the reading.
//
// The rows are those committed when the reading starts. A connection inside a
// transaction of its own (its changes not visible to another connection), or
// one without a file, is read directly, on the calling thread.
class BackgroundRows {
public:
    BackgroundRows(sqlite3* db, QByteArrayView sql);
    ~BackgroundRows();
    BackgroundRows(const BackgroundRows&) = delete;
    BackgroundRows& operator=(const BackgroundRows&) = delete;

    // Whether the rows are read on a thread of their own.
    bool inBackground() const { return !m_direct; }

    // Moves to the next row: true while there is one. While the reading has
    // none ready, `waiting` is called every few milliseconds; its false stops
    // the reading. After the last row, a stop or an error, false.
    bool next(const std::function<bool()>& waiting = {});
    // True when the reading ended on an error (the statement or the file).
    bool failed() const { return m_failed; }

    bool isNull(int column) const;
    qint64 integer(int column) const;
    // Valid until the next call of next().
    QByteArrayView text(int column) const;

private:
    struct Cell {
        qint64 integer = 0;
        qint32 offset = 0;
        qint32 length = -1; // -1: NULL
    };
    struct Batch {
        QByteArray bytes;
        std::vector<Cell> cells;
    };

    void read(QByteArray path, QByteArray sql);
    void stop();
    const Cell& cell(int column) const;

    std::unique_ptr<SqliteStatement> m_direct;
    bool m_failed = false;
    int m_columns = 0;

    Batch m_current;
    size_t m_row = 0;
    size_t m_rows = 0;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Batch> m_ready;
    bool m_finished = false;
    bool m_readFailed = false;
    // Read by the reading's progress handler, which ends a sort under way.
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};
