#include "walkahead.h"

#include <QFile>

#include <algorithm>
#include <cerrno>

namespace {

// How many entries the helper works out ahead of the walk, and how far the
// walk must catch up before it goes on: the gap keeps the two from waking
// each other for every entry.
constexpr size_t kAhead = 4096;
constexpr size_t kResumeGap = 1024;

// Reads the rest of a folder, leaving out hidden entries, in the order of
// the names' bytes. The songs of a folder then get their ids in the order a
// host reads them, and the catalogue's index of paths grows at its end
// instead of at a random place for every file, which is what keeps an import
// of a million files from slowing down as it goes.
void readEntries(DIR* dir, std::vector<WalkAhead::Entry>& entries, int& readError) {
    // Names and types are sorted first: an entry is large to move about.
    std::vector<std::pair<QByteArray, unsigned char>> names;
    errno = 0;
    for (;;) {
        const dirent* entry = ::readdir(dir);
        if (!entry) {
            readError = errno;
            break;
        }
        if (entry->d_name[0] != '.')
            names.emplace_back(QByteArray(entry->d_name), entry->d_type);
        errno = 0;
    }
    std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    entries.resize(names.size());
    for (size_t i = 0; i < names.size(); ++i) {
        entries[i].bytes = std::move(names[i].first);
        entries[i].type = names[i].second;
    }
}

bool isAscii(const QByteArray& bytes) {
    return std::all_of(bytes.cbegin(), bytes.cend(), [](char c) { return quint8(c) < 0x80; });
}

} // namespace

bool IsFolderEntry(const QByteArray& path, unsigned char type) {
    if (type == DT_DIR)
        return true;
    if (type != DT_LNK && type != DT_UNKNOWN)
        return false;
    struct stat st;
    return ::stat(path.constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

class WalkAhead::Folder {
public:
    Folder(const QString& text, const QByteArray& bytes)
        : text(text), bytes(bytes), textOpensIt(QFile::encodeName(text) == bytes) {}

    const QString text;
    const QByteArray bytes;
    // Whether the text encodes to the bytes again: a folder whose name is not
    // UTF-8 has a text that opens nothing.
    const bool textOpensIt;
    // As the helper found it: the error that kept it from being opened, the
    // folder's identity, and whether the walk had been there already.
    int openError = 0;
    bool identified = false;
    quint64 device = 0;
    quint64 inode = 0;
    // When the folder last changed, as it stood once read.
    qint64 changedNs = 0;
    qint64 modifiedNs = 0;
    bool seen = false;
    std::vector<Entry> entries;
    int readError = 0;
    // Entries [0, ready) are read and worked out.
    std::atomic<size_t> ready{0};
    // Entries of it the walk has taken.
    size_t taken = 0;
    // Read by the walk itself: its entries are worked out as they are taken.
    bool local = false;
};

namespace {

qint64 nanoseconds(const timespec& t) {
    return qint64(t.tv_sec) * 1'000'000'000 + t.tv_nsec;
}

} // namespace

WalkAhead::WalkAhead(const QString& root, const QByteArray& rootBytes, const FilePatternMatcher& matcher,
                     int convention)
    : m_root(root), m_rootBytes(rootBytes), m_matcher(matcher), m_convention(convention),
      m_thread(&WalkAhead::run, this) {}

WalkAhead::~WalkAhead() {
    stopHelper();
}

void WalkAhead::stopHelper() {
    {
        const std::lock_guard lock(m_mutex);
        m_stop = true;
    }
    m_helperWaiting.notify_all();
    if (m_thread.joinable())
        m_thread.join();
}

size_t WalkAhead::workedAhead() const {
    const size_t worked = m_worked.load();
    const size_t taken = m_taken.load();
    return worked > taken ? worked - taken : 0;
}

size_t WalkAhead::size(const Folder& folder) {
    return folder.entries.size();
}

int WalkAhead::readError(const Folder& folder) {
    return folder.readError;
}

void WalkAhead::run() {
    std::set<FolderId> visited;
    visit(m_root, m_rootBytes, visited);
    std::unique_lock lock(m_mutex);
    m_finished = true;
    m_walkWaiting.notify_all();
    // What is left is to free the folders the walk is done with.
    while (!m_stop) {
        m_helperWaiting.wait(lock, [&] { return m_stop || !m_retired.empty(); });
        freeRetired(lock);
    }
}

void WalkAhead::freeRetired(std::unique_lock<std::mutex>& lock) {
    if (m_retired.empty())
        return;
    // Freed, as a rule, on the thread that made their texts: a block goes
    // back to the heap it came from without a lock taken against that thread.
    std::vector<std::shared_ptr<Folder>> retired;
    retired.swap(m_retired);
    lock.unlock();
    retired.clear();
    lock.lock();
}

// Reads a folder, hands it to the walk, and works through its entries in the
// walk's order, going into each folder among them as the walk will. False
// once the helper is to stop.
bool WalkAhead::visit(const QString& folder, const QByteArray& folderBytes, std::set<FolderId>& visited) {
    auto f = std::make_shared<Folder>(folder, folderBytes);
    if (DIR* dir = ::opendir(folderBytes.constData())) {
        // The folder is known by its identity, and when it last changed,
        // once it is read: the walk finds it so, or reads it again.
        struct stat self;
        const bool identified = ::fstat(::dirfd(dir), &self) == 0;
        if (identified) {
            f->identified = true;
            f->device = quint64(self.st_dev);
            f->inode = quint64(self.st_ino);
            f->seen = !visited.emplace(f->device, f->inode).second;
        }
        if (!f->seen)
            readEntries(dir, f->entries, f->readError);
        if (identified && ::fstat(::dirfd(dir), &self) == 0) {
            f->changedNs = nanoseconds(self.st_ctim);
            f->modifiedNs = nanoseconds(self.st_mtim);
        } else {
            f->identified = false;
        }
        ::closedir(dir);
    } else {
        f->openError = errno ? errno : EIO;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (m_stop)
            return false;
        m_read.push_back(f);
    }
    m_walkWaiting.notify_all();

    // One buffer for the entries' paths: the folder's part stays, the name changes.
    QByteArray child = folderBytes;
    for (size_t i = 0; i < f->entries.size(); ++i) {
        if (!waitForRoom())
            return false;
        Entry& e = f->entries[i];
        child.truncate(folderBytes.size());
        child += e.bytes;
        if (IsFolderEntry(child, e.type)) {
            e.name = QFile::decodeName(e.bytes);
            e.enteredAhead = true;
            publish(*f, i + 1);
            child += '/';
            if (!visit(folder + e.name + QLatin1Char('/'), child, visited))
                return false;
        } else {
            workOut(*f, e, child);
            publish(*f, i + 1);
        }
    }
    return true;
}

bool WalkAhead::waitForRoom() {
    if (m_stop)
        return false;
    const bool checkRetired = (m_worked.load(std::memory_order_relaxed) & 63) == 0;
    // A walk that waits for an entry is owed it, however far ahead the
    // helper is of entries the walk may have passed over.
    if (!checkRetired && (workedAhead() < kAhead || m_walkIsWaiting.load()))
        return true;
    std::unique_lock lock(m_mutex);
    freeRetired(lock);
    if (workedAhead() < kAhead || m_walkIsWaiting.load())
        return !m_stop;
    m_idle.store(true);
    m_helperWaiting.wait(
        lock, [&] { return m_stop || workedAhead() < kAhead - kResumeGap || m_walkIsWaiting.load(); });
    m_idle.store(false);
    return !m_stop;
}

void WalkAhead::publish(Folder& folder, size_t ready) {
    m_worked.fetch_add(1);
    folder.ready.store(ready);
    if (m_walkIsWaiting.load()) {
        const std::lock_guard lock(m_mutex);
        m_walkWaiting.notify_all();
    }
}

// The walk went another way: the helper stops, and is waited for, so that
// nothing it was working on is touched by both.
void WalkAhead::abandon() {
    m_abandoned.store(true);
    stopHelper();
    m_read.clear();
}

std::shared_ptr<WalkAhead::Folder> WalkAhead::open(const QString& folder, const QByteArray& folderBytes,
                                                   DIR* dir, const struct stat* self, bool seen) {
    if (!m_abandoned.load()) {
        std::shared_ptr<Folder> f;
        {
            std::unique_lock lock(m_mutex);
            m_walkIsWaiting.store(true);
            m_helperWaiting.notify_all();
            m_walkWaiting.wait(lock, [&] { return !m_read.empty() || m_finished || m_stop; });
            m_walkIsWaiting.store(false);
            if (!m_read.empty()) {
                f = std::move(m_read.front());
                m_read.pop_front();
            }
        }
        // The helper read the folder the walk has just opened, and found it
        // as the walk finds it: its reading stands.
        const bool same =
            f && f->bytes == folderBytes &&
            (dir ? f->openError == 0 && self && f->identified && f->device == quint64(self->st_dev) &&
                       f->inode == quint64(self->st_ino) && f->seen == seen &&
                       f->changedNs == nanoseconds(self->st_ctim) &&
                       f->modifiedNs == nanoseconds(self->st_mtim)
                 : f->openError != 0);
        if (same)
            return dir ? f : nullptr;
        abandon();
    }
    if (!dir)
        return nullptr;
    auto f = std::make_shared<Folder>(folder, folderBytes);
    f->local = true;
    if (!seen)
        readEntries(dir, f->entries, f->readError);
    f->ready.store(f->entries.size());
    return f;
}

WalkAhead::Entry& WalkAhead::take(Folder& folder, size_t i) {
    Entry& e = folder.entries[i];
    folder.taken = i + 1;
    // A folder the walk read itself needs no way of its own: it is whole
    // already, and the helper it could wake has stopped.
    const size_t taken = m_taken.fetch_add(1) + 1;
    // The helper waits for the walk to catch up: wake it once the gap is there.
    if (m_idle.load() && taken % kResumeGap == 0) {
        const std::lock_guard lock(m_mutex);
        m_helperWaiting.notify_all();
    }
    if (folder.ready.load() <= i) {
        std::unique_lock lock(m_mutex);
        m_walkIsWaiting.store(true);
        m_helperWaiting.notify_all();
        m_walkWaiting.wait(lock, [&] { return folder.ready.load() > i || m_stop; });
        m_walkIsWaiting.store(false);
    }
    // Read by the walk itself, or left unread by a helper that was stopped
    // (and has ended): its text is made here.
    if (e.name.isNull())
        e.name = QFile::decodeName(e.bytes);
    return e;
}

void WalkAhead::done(const std::shared_ptr<Folder>& folder) {
    if (!folder || folder->local)
        return;
    // Left before its end: the helper is ahead in entries the walk will not
    // take, and goes another way from here.
    if (folder->taken < folder->entries.size() && !m_abandoned.load())
        abandon();
    {
        const std::lock_guard lock(m_mutex);
        m_retired.push_back(folder);
    }
    m_helperWaiting.notify_all();
}

void WalkAhead::settle(Folder& folder, Entry& e, bool asFolder) {
    if (!folder.local && !m_abandoned.load() && e.enteredAhead != asFolder)
        abandon();
    if (!asFolder)
        workOut(folder, e);
}

void WalkAhead::workOut(const Folder& folder, Entry& e, QByteArrayView pathBytes) const {
    if (e.worked)
        return;
    e.worked = true;
    if (e.name.isNull())
        e.name = QFile::decodeName(e.bytes);
    e.song = m_matcher.matches(e.name);
    if (!e.song)
        return;
    e.path = folder.text + e.name;
    // A name that is not UTF-8 decodes to a text that encodes to other bytes.
    // The folder's text was checked once; a name in ASCII is UTF-8 as it is.
    e.pathOpensIt = folder.textOpensIt && (isAscii(e.bytes) || QFile::encodeName(e.name) == e.bytes);
    if (!e.pathOpensIt)
        return;
    QByteArray joined;
    if (pathBytes.isNull()) {
        joined = folder.bytes + e.bytes;
        pathBytes = joined;
    }
    e.cut = CutFileName(e.path, m_convention, pathBytes);
}
