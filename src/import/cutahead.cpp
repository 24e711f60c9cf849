#include "cutahead.h"

#include <QFile>

namespace {

// How far ahead of the walk a folder is worked, and how far the walk must
// catch up before the work goes on: a gap keeps the two from waking each
// other for every entry.
constexpr size_t kAhead = 4096;
constexpr size_t kResumeGap = 1024;
// Entries worked between two looks at what the walk needs most.
constexpr size_t kStretch = 64;

} // namespace

class CutAhead::Folder {
public:
    QString text;
    QByteArray bytes;
    std::vector<QByteArray> names;
    std::vector<Entry> entries;
    // Entries [0, ready) are worked out; the walk has taken [0, taken).
    std::atomic<size_t> ready{0};
    std::atomic<size_t> taken{0};
};

CutAhead::CutAhead(const FilePatternMatcher& matcher, int convention)
    : m_matcher(matcher), m_convention(convention), m_thread(&CutAhead::run, this) {}

CutAhead::~CutAhead() {
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_workWaiting.notify_all();
    m_thread.join();
}

std::shared_ptr<CutAhead::Folder> CutAhead::add(const QString& folder, const QByteArray& folderBytes,
                                                std::vector<QByteArray> names) {
    auto f = std::make_shared<Folder>();
    f->text = folder;
    f->bytes = folderBytes;
    f->entries.resize(names.size());
    f->names = std::move(names);
    {
        const std::lock_guard lock(m_mutex);
        m_folders.push_back(f);
    }
    m_workWaiting.notify_all();
    return f;
}

void CutAhead::done(const std::shared_ptr<Folder>& folder) {
    {
        const std::lock_guard lock(m_mutex);
        std::erase(m_folders, folder);
        // Freed on the thread that made its texts: a block goes back to the
        // heap it came from without a lock taken against that thread.
        m_retired.push_back(folder);
    }
    m_workWaiting.notify_all();
}

CutAhead::Entry& CutAhead::take(Folder& folder, size_t i) {
    folder.taken.store(i);
    // The work waits for the walk to catch up: wake it once the gap is there.
    if (m_idle.load() && i % kResumeGap == 0) {
        const std::lock_guard lock(m_mutex);
        m_workWaiting.notify_all();
    }
    if (folder.ready.load() <= i) {
        std::unique_lock lock(m_mutex);
        m_walkWaiting.store(true);
        m_workWaiting.notify_all();
        m_entryReady.wait(lock, [&] { return folder.ready.load() > i; });
        m_walkWaiting.store(false);
    }
    return folder.entries[i];
}

// The folder the walk will read soonest with work left that is not too far
// ahead: the latest one added first. Called with the lock held.
CutAhead::Folder* CutAhead::nextToWork() {
    for (auto it = m_folders.rbegin(); it != m_folders.rend(); ++it) {
        Folder& f = **it;
        const size_t ready = f.ready.load();
        const size_t limit = f.taken.load() + (m_idle.load() ? kAhead - kResumeGap : kAhead);
        if (ready < f.names.size() && ready < limit)
            return &f;
    }
    return nullptr;
}

void CutAhead::run() {
    std::unique_lock lock(m_mutex);
    for (;;) {
        Folder* f = nextToWork();
        if (!f && !m_stop && m_retired.empty()) {
            m_idle.store(true);
            m_workWaiting.wait(lock,
                               [&] { return m_stop || !m_retired.empty() || (f = nextToWork()) != nullptr; });
            m_idle.store(false);
        }
        if (m_stop)
            return;
        if (!m_retired.empty()) {
            std::vector<std::shared_ptr<Folder>> retired;
            retired.swap(m_retired);
            lock.unlock();
            retired.clear();
            lock.lock();
            continue;
        }
        // Kept alive while it is worked, even if the walk is done with it.
        const std::shared_ptr<Folder> keep = [&] {
            for (const auto& p : m_folders)
                if (p.get() == f)
                    return p;
            return std::shared_ptr<Folder>();
        }();
        const size_t from = f->ready.load();
        const size_t to = std::min({f->names.size(), from + kStretch, f->taken.load() + kAhead});
        lock.unlock();
        for (size_t i = from; i < to; ++i) {
            work(*f, i);
            f->ready.store(i + 1);
            if (m_walkWaiting.load()) {
                const std::lock_guard wake(m_mutex);
                m_entryReady.notify_all();
            }
        }
        lock.lock();
    }
}

void CutAhead::work(Folder& folder, size_t i) const {
    Entry& e = folder.entries[i];
    const QByteArray& bytes = folder.names[i];
    e.name = QFile::decodeName(bytes);
    e.song = m_matcher.matches(e.name);
    if (!e.song)
        return;
    e.path = folder.text + e.name;
    // A name that is not UTF-8 decodes to a text that encodes to other bytes.
    const QByteArray again = QFile::encodeName(e.path);
    e.pathOpensIt = again.size() == folder.bytes.size() + bytes.size() && again.startsWith(folder.bytes) &&
                    again.endsWith(bytes);
    if (e.pathOpensIt)
        e.cut = CutFileName(e.path, m_convention);
}
