#pragma once

#include "filepatternmatcher.h"
#include "namecut.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>

// True when `path` (an entry of type `type` as a folder read gives it) is a
// folder. Links are followed: a linked folder is walked like any other.
bool IsFolderEntry(const QByteArray& path, unsigned char type);

// Reads the folders of an import's walk, and works out what the walk needs
// of each entry, on a thread of its own and ahead of the walk: the folder's
// entries in name order, each entry's name as text, whether it is a song
// file, and the cut of its name. The walk itself still opens each folder
// when it gets there (so that one gone meanwhile is reported where it was),
// asks the host and inserts, in its own order; the reading and the text work
// move to the other processor.
//
// The helper goes through the tree in the walk's order and stays at most a
// few thousand entries ahead of it. Should the walk go another way (a folder
// left before its end, as a cancel leaves it; a folder changed since the
// helper read it; an entry one of them takes for a folder and the other
// not), the helper stops for good and the walk reads the rest itself, with
// the same code. A run started from inside this one has a helper of its own.
class WalkAhead {
public:
    // `root` and `rootBytes` end in a separator.
    WalkAhead(const QString& root, const QByteArray& rootBytes, const FilePatternMatcher& matcher,
              int convention);
    ~WalkAhead();
    WalkAhead(const WalkAhead&) = delete;
    WalkAhead& operator=(const WalkAhead&) = delete;

    struct Entry {
        QByteArray bytes;
        unsigned char type = 0;
        QString name;
        // Matches the run's file pattern.
        bool song = false;
        // For a song: its full path, and whether that text names the file
        // again (it does not for a name that is not UTF-8).
        QString path;
        bool pathOpensIt = false;
        // For a song whose path opens it: the cut of its name.
        NameCut cut;
        // The above is worked out.
        bool worked = false;
        // The helper went into it as a folder.
        bool enteredAhead = false;
    };
    class Folder;

    // The walk has opened `folder` (`self` describes it; null when it could
    // not be opened) and found it `seen` or not: its entries as read ahead,
    // or else as read now from `dir` (null when not to be read). Entries come
    // in name order; `readError` is the error that cut the reading short.
    std::shared_ptr<Folder> open(const QString& folder, const QByteArray& folderBytes, DIR* dir,
                                 const struct stat* self, bool seen);
    static size_t size(const Folder& folder);
    static int readError(const Folder& folder);
    // Entry `i` of the folder, once it is read (and, unless it was taken for
    // a folder, worked out); the walk takes them in order.
    Entry& take(Folder& folder, size_t i);
    // The walk takes the entry for a folder (`asFolder`) or a file; a file
    // is then worked out. When the helper took it the other way, it stops.
    void settle(Folder& folder, Entry& e, bool asFolder);
    // The walk is done with the folder, whether it went through it or not.
    void done(const std::shared_ptr<Folder>& folder);

    // False once the helper has stopped following the walk (for tests).
    bool following() const { return !m_abandoned.load(); }

private:
    using FolderId = std::pair<quint64, quint64>;
    void run();
    bool visit(const QString& folder, const QByteArray& folderBytes, std::set<FolderId>& visited);
    bool waitForRoom();
    void publish(Folder& folder, size_t ready);
    void abandon();
    void stopHelper();
    size_t workedAhead() const;
    void freeRetired(std::unique_lock<std::mutex>& lock);
    // `pathBytes`, when the caller has them, are the folder's bytes and the entry's.
    void workOut(const Folder& folder, Entry& e, QByteArrayView pathBytes = {}) const;

    const QString m_root;
    const QByteArray m_rootBytes;
    const FilePatternMatcher m_matcher;
    const int m_convention;
    std::mutex m_mutex;
    std::condition_variable m_helperWaiting;
    std::condition_variable m_walkWaiting;
    // The folders read ahead, in the walk's order, not yet opened by the walk.
    std::deque<std::shared_ptr<Folder>> m_read;
    // Folders the walk is done with, to be freed by the helper.
    std::vector<std::shared_ptr<Folder>> m_retired;
    bool m_finished = false;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_abandoned{false};
    // Entries worked out ahead, and entries the walk has taken of them.
    std::atomic<size_t> m_worked{0};
    std::atomic<size_t> m_taken{0};
    std::atomic<bool> m_walkIsWaiting{false};
    std::atomic<bool> m_idle{false};
    std::thread m_thread;
};
