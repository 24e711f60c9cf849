#pragma once

#include <QByteArray>

#include <condition_variable>
#include <mutex>
#include <thread>

struct sqlite3;

// Folds a connection's write-ahead log into the catalogue file on a thread of
// its own, over a connection of its own, while the owner goes on writing: a
// bulk write then does not end with seconds of copying, and the copying runs
// on the processor the writer leaves idle. The owner's commits wake it when
// the log has grown by `pagesPerFold` pages or more.
//
// It takes over the connection's commit hook (and with it the automatic
// checkpoints, which are off while it lives) and gives it back bare: the owner
// sets its automatic checkpoints again. Nothing it does can lose a commit: a
// fold that fails or is cut short leaves the frames in the log, where the
// next checkpoint finds them.
class BackgroundCheckpoint {
public:
    BackgroundCheckpoint(sqlite3* writer, int pagesPerFold = 500);
    ~BackgroundCheckpoint();
    BackgroundCheckpoint(const BackgroundCheckpoint&) = delete;
    BackgroundCheckpoint& operator=(const BackgroundCheckpoint&) = delete;

    // The writer's connection was closed under it: its hook went with it.
    void writerClosed() { m_writer = nullptr; }

    // The writer is done: its commit hook is handed back at once, and the
    // thread makes one last fold of what is committed and then ends, without
    // the writer waiting for it. The destructor waits for that end (a fold
    // not yet begun by then is not made).
    void lastFoldThenEnd();

    // Folds made so far (for tests and figures).
    int folds() const;

private:
    static int committed(void* self, sqlite3* db, const char* schema, int pages);
    void run(QByteArray path);

    sqlite3* m_writer;
    const int m_pagesPerFold;
    int m_pagesAtLastWake = 0;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_wanted = false;
    bool m_last = false;
    bool m_stop = false;
    int m_folds = 0;
    std::thread m_thread;
};
