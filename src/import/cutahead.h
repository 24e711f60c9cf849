#pragma once

#include "filepatternmatcher.h"
#include "namecut.h"

#include <QByteArray>
#include <QString>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

// Works out what the walk needs of each entry of the folders it has read, on
// a thread of its own and ahead of the walk: the entry's name as text,
// whether it is a song file, and the cut of its name. The walk itself still
// reads the folders, asks the host, and inserts, in its own order; only the
// text work moves to the other processor.
//
// The folder the walk went into last is worked on first (it is the one the
// walk reads next), and no folder is worked more than a few thousand entries
// ahead of the walk, so that a folder of a million files is never held cut
// whole in memory.
class CutAhead {
public:
    CutAhead(const FilePatternMatcher& matcher, int convention);
    ~CutAhead();
    CutAhead(const CutAhead&) = delete;
    CutAhead& operator=(const CutAhead&) = delete;

    struct Entry {
        QString name;
        // Matches the run's file pattern.
        bool song = false;
        // For a song: its full path, and whether that text names the file
        // again (it does not for a name that is not UTF-8).
        QString path;
        bool pathOpensIt = false;
        // For a song whose path opens it: the cut of its name.
        NameCut cut;
    };
    class Folder;

    // Hands over the entries of a folder the walk has just read, in the
    // order it takes them. `folder` and `folderBytes` end in a separator.
    std::shared_ptr<Folder> add(const QString& folder, const QByteArray& folderBytes,
                                std::vector<QByteArray> names);
    // Entry `i` of the folder, once it is worked out; the walk takes them in order.
    Entry& take(Folder& folder, size_t i);
    // The walk is done with the folder, whether it went through it or not.
    void done(const std::shared_ptr<Folder>& folder);

private:
    void run();
    Folder* nextToWork();
    void work(Folder& folder, size_t i) const;

    const FilePatternMatcher m_matcher;
    const int m_convention;
    std::mutex m_mutex;
    std::condition_variable m_workWaiting;
    std::condition_variable m_entryReady;
    std::vector<std::shared_ptr<Folder>> m_folders;
    // Folders the walk is done with, to be freed by the helper.
    std::vector<std::shared_ptr<Folder>> m_retired;
    bool m_stop = false;
    std::atomic<bool> m_walkWaiting{false};
    std::atomic<bool> m_idle{false};
    std::thread m_thread;
};
