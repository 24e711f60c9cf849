#include "songindex.h"

#include "likepattern.h"

#include <QFile>

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <thread>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

// The order and the columns of the typed search's statement: the same sort on
// the same column gives the same order, ties included.
constexpr const char* kReadAll =
    "Select KaraokeTrackID, FileName, (Error = 0) From tblKaraokeTracks Order By ArtistName";

// What the 32-bit offsets into the names' block can hold.
constexpr size_t kMostBytes = 0xFFFF0000u;

// SQLite's default cap on a LIKE pattern's length, in bytes.
constexpr size_t kLongestPattern = 50000;

} // namespace

size_t FindBytes(std::string_view text, std::string_view needle, size_t from) {
    const size_t n = text.size();
    const size_t k = needle.size();
    if (k == 0 || from > n || n - from < k)
        return std::string_view::npos;
    const char* s = text.data();
    if (k == 1) {
        const void* at = std::memchr(s + from, needle[0], n - from);
        return at ? size_t(static_cast<const char*>(at) - s) : std::string_view::npos;
    }
    size_t i = from;
#if defined(__SSE2__)
    const __m128i first = _mm_set1_epi8(needle[0]);
    const __m128i last = _mm_set1_epi8(needle[k - 1]);
    for (; i + 16 + k - 1 <= n; i += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + i + k - 1));
        unsigned mask =
            unsigned(_mm_movemask_epi8(_mm_and_si128(_mm_cmpeq_epi8(a, first), _mm_cmpeq_epi8(b, last))));
        while (mask) {
            const unsigned bit = unsigned(__builtin_ctz(mask));
            if (std::memcmp(s + i + bit + 1, needle.data() + 1, k - 2) == 0)
                return i + bit;
            mask &= mask - 1;
        }
    }
#endif
    for (; i + k <= n; ++i)
        if (s[i] == needle[0] && std::memcmp(s + i, needle.data(), k) == 0)
            return i;
    return std::string_view::npos;
}

namespace {

// One song as the catalogue's scan gives it, before the sort.
struct ScannedRow {
    qint64 id;
    uint32_t artistAt; // into the artists' block; kNoArtist for NULL
    uint32_t artistLength;
    uint32_t nameAt; // into the names' block
    uint32_t nameLength;
    bool shown;
};
constexpr uint32_t kNoArtist = 0xFFFFFFFFu;

// The artist in the form the column's NOCASE collation compares: ASCII
// capitals made small, every other byte as it is.
void appendNoCase(const unsigned char* p, int bytes, std::string& out) {
    const size_t at = out.size();
    out.resize(at + size_t(bytes));
    char* o = out.data() + at;
    for (int i = 0; i < bytes; ++i) {
        const unsigned char b = p[i];
        o[i] = char((b >= 'A' && b <= 'Z') ? b + 32 : b);
    }
}

// Whether a search shows the statement's row (its name is there, and the
// column at `shownColumn` says so); when it does, its name folded onto `out`.
bool foldShownName(sqlite3_stmt* stmt, int nameColumn, int shownColumn, bool accentBlind, std::string& out) {
    if (sqlite3_column_type(stmt, nameColumn) == SQLITE_NULL || sqlite3_column_int(stmt, shownColumn) != 1)
        return false;
    const auto* name = sqlite3_column_text(stmt, nameColumn);
    likepattern::foldTextUtf8(name ? name : reinterpret_cast<const unsigned char*>(""),
                              sqlite3_column_bytes(stmt, nameColumn), accentBlind, out);
    return true;
}

} // namespace

void SongIndex::appendRow(qint64 id, bool shown, std::string_view folded) {
    m_ids.push_back(id);
    m_starts.push_back(uint32_t(m_text.size()));
    m_searchable.push_back(shown ? 1 : 0);
    m_text.append(folded);
    m_text.push_back(char(0xFF));
    m_longest = std::max(m_longest, folded.size());
}

void SongIndex::finishRows() {
    m_starts.push_back(uint32_t(m_text.size()));
    m_ids.shrink_to_fit();
    m_starts.shrink_to_fit();
    m_searchable.shrink_to_fit();
    m_text.shrink_to_fit();
    viewOwnArrays();
}

namespace {

// The rows of one stretch of ids, as read, with the texts they point into.
struct Scan {
    enum Outcome { Read, NotText, Failed, Stopped };
    std::vector<ScannedRow> rows;
    std::string artists;
    std::string names;
    // The rows in the statement's order, once sorted.
    std::vector<uint32_t> order;
    Outcome outcome = Read;
    QString error;
};

// "Order By ArtistName": the column's NOCASE collation (the artists are
// folded so already), NULL first.
bool byArtist(const ScannedRow& x, std::string_view xArtists, const ScannedRow& y,
              std::string_view yArtists) {
    if (x.artistAt == kNoArtist || y.artistAt == kNoArtist)
        return x.artistAt == kNoArtist && y.artistAt != kNoArtist;
    return xArtists.substr(x.artistAt, x.artistLength) < yArtists.substr(y.artistAt, y.artistLength);
}

// Sorts a scan's rows into the statement's order, leaving rows of equal
// artists in the order the table gave them.
void sortScan(Scan& scan) {
    if (scan.outcome != Scan::Read)
        return;
    scan.order.resize(scan.rows.size());
    for (size_t i = 0; i < scan.order.size(); ++i)
        scan.order[i] = uint32_t(i);
    const std::string_view artists(scan.artists);
    std::stable_sort(scan.order.begin(), scan.order.end(), [&](uint32_t a, uint32_t b) {
        return byArtist(scan.rows[a], artists, scan.rows[b], artists);
    });
}

// Makes room in the scan for the rows still to come, judged by the ids the
// rows so far took up of the stretch that ends at `lastId`: the blocks then
// grow once, instead of by doubling, each new block copied and its pages
// fresh from the system.
void makeRoom(Scan& out, qint64 firstId, qint64 idNow, qint64 lastId) {
    const double rows = double(out.rows.size());
    const double span = double(lastId - firstId) + 1;
    const double seen = double(idNow - firstId) + 1;
    if (seen <= 0 || span <= seen)
        return;
    // Ids close together at first and far apart later would promise too
    // much: the room stops at a few million rows, and is only asked for.
    constexpr double kMostRowsAhead = 4'000'000;
    const double expected = std::min({span, rows * span / seen, kMostRowsAhead}) * 1.05;
    try {
        out.rows.reserve(size_t(expected));
        out.artists.reserve(size_t(double(out.artists.size()) / rows * expected));
        out.names.reserve(size_t(double(out.names.size()) / rows * expected));
    } catch (const std::exception&) {
        // The blocks grow as they need after all.
    }
}

// Reads the songs whose ids lie in [from, to], in the table's own order.
// `lastId`, when known, is the highest id there is.
void scanRows(sqlite3* db, qint64 from, qint64 to, bool accentBlind, const std::atomic<bool>* stop, Scan& out,
              qint64 lastId = 0) {
    constexpr size_t kRowsBeforeRoom = 1024;
    qint64 firstId = 0;
    sqlite3_stmt* stmt = nullptr;
    auto fail = [&](Scan::Outcome outcome, const QString& why) {
        out.outcome = outcome;
        out.error = why;
        sqlite3_finalize(stmt);
    };
    if (sqlite3_prepare_v2(db,
                           "Select KaraokeTrackID, ArtistName, FileName, (Error = 0) From tblKaraokeTracks "
                           "Where KaraokeTrackID Between ? And ?",
                           -1, &stmt, nullptr) != SQLITE_OK)
        return fail(Scan::Failed, QString::fromUtf8(sqlite3_errmsg(db)));
    sqlite3_bind_int64(stmt, 1, from);
    sqlite3_bind_int64(stmt, 2, to);
    int rc = SQLITE_ROW;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        if (stop && (out.rows.size() & 0xFFF) == 0 && stop->load(std::memory_order_relaxed))
            return fail(Scan::Stopped, QStringLiteral("stopped"));
        ScannedRow r{sqlite3_column_int64(stmt, 0), kNoArtist, 0, uint32_t(out.names.size()), 0, false};
        const int artistType = sqlite3_column_type(stmt, 1);
        if (artistType == SQLITE_TEXT) {
            const auto* a = sqlite3_column_text(stmt, 1);
            r.artistAt = uint32_t(out.artists.size());
            r.artistLength = uint32_t(sqlite3_column_bytes(stmt, 1));
            appendNoCase(a, int(r.artistLength), out.artists);
        } else if (artistType != SQLITE_NULL) {
            // Numbers and blobs sort by rules of their own: leave the order
            // to the statement itself.
            return fail(Scan::NotText, {});
        }
        r.shown = foldShownName(stmt, 2, 3, accentBlind, out.names);
        r.nameLength = uint32_t(out.names.size() - r.nameAt);
        if (out.names.size() + out.rows.size() > kMostBytes || out.artists.size() > kMostBytes)
            return fail(Scan::Failed, QStringLiteral("the catalogue's names are too many to hold"));
        if (out.rows.empty())
            firstId = r.id;
        out.rows.push_back(r);
        if (out.rows.size() == kRowsBeforeRoom && lastId > 0)
            makeRoom(out, firstId, r.id, std::min(to, lastId));
    }
    if (rc != SQLITE_DONE)
        return fail(Scan::Failed, QString::fromUtf8(sqlite3_errmsg(db)));
    sqlite3_finalize(stmt);
}

// Reads the songs from `from` on through a connection of its own, in a read
// transaction of its own.
void scanOnOwnConnection(const QByteArray& path, qint64 from, qint64 lastId, bool accentBlind,
                         const std::atomic<bool>* stop, Scan& out) {
    sqlite3* db = nullptr;
    if (sqlite3_open_v2(path.constData(), &db, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr) !=
        SQLITE_OK) {
        out.outcome = Scan::Failed;
        out.error = QString::fromUtf8(sqlite3_errmsg(db));
        sqlite3_close(db);
        return;
    }
    sqlite3_busy_timeout(db, 2000);
    sqlite3_exec(db, "PRAGMA cache_size = -8192", nullptr, nullptr, nullptr);
    scanRows(db, from, std::numeric_limits<qint64>::max(), accentBlind, stop, out, lastId);
    sqlite3_close(db);
    sortScan(out);
}

// The rows of two sorted scans, the second of higher ids, as one: row i is
// the lower scan's row i below the split, and the upper scan's row i - split
// from there on. Nothing is copied.
class Halves {
public:
    Halves(const Scan& lower, const Scan& upper)
        : m_lower(lower), m_upper(upper), m_split(uint32_t(lower.rows.size())) {}

    size_t size() const { return m_lower.rows.size() + m_upper.rows.size(); }
    const Scan& scanOf(uint32_t i) const { return i < m_split ? m_lower : m_upper; }
    const ScannedRow& row(uint32_t i) const {
        return i < m_split ? m_lower.rows[i] : m_upper.rows[i - m_split];
    }

    // Both scans' orders merged: of equal artists, the lower scan's rows
    // come first, as the table gives them.
    std::vector<uint32_t> order() const {
        std::vector<uint32_t> upper(m_upper.order);
        for (uint32_t& i : upper)
            i += m_split;
        std::vector<uint32_t> merged(size());
        std::merge(m_lower.order.begin(), m_lower.order.end(), upper.begin(), upper.end(), merged.begin(),
                   [&](uint32_t a, uint32_t b) {
                       return byArtist(row(a), scanOf(a).artists, row(b), scanOf(b).artists);
                   });
        return merged;
    }

private:
    const Scan& m_lower;
    const Scan& m_upper;
    const uint32_t m_split;
};

// A catalogue whose ids span less than this is read in one piece.
constexpr qint64 kSplitFrom = 20000;

} // namespace

std::shared_ptr<const SongIndex> SongIndex::build(sqlite3* db, bool accentBlind,
                                                  const std::atomic<bool>* stop, QString* error,
                                                  bool readInTwo) {
    // The rows in the table's own order, the fastest read there is; the
    // statement's order is then made here: "Order By ArtistName" sorts by the
    // column's NOCASE collation, NULL first, and leaves rows of equal artists
    // in the order the table gave them.
    auto fail = [&](const QString& why) -> std::shared_ptr<const SongIndex> {
        if (error)
            *error = why;
        return nullptr;
    };
    // A large catalogue is read in two halves of ids at once, the upper one
    // on a connection and thread of its own; the halves joined are the
    // table's order.
    qint64 lowest = 0;
    qint64 highest = 0;
    const char* file = readInTwo ? sqlite3_db_filename(db, "main") : nullptr;
    if (file && *file) {
        sqlite3_stmt* ends = nullptr;
        // Each end on its own, so that each is read from the end of the
        // table rather than by a scan of it.
        if (sqlite3_prepare_v2(db,
                               "Select (Select min(KaraokeTrackID) From tblKaraokeTracks), "
                               "(Select max(KaraokeTrackID) From tblKaraokeTracks)",
                               -1, &ends, nullptr) == SQLITE_OK &&
            sqlite3_step(ends) == SQLITE_ROW && sqlite3_column_type(ends, 0) == SQLITE_INTEGER) {
            lowest = sqlite3_column_int64(ends, 0);
            highest = sqlite3_column_int64(ends, 1);
        }
        sqlite3_finalize(ends);
    }
    Scan scan;
    // Empty unless the catalogue is read in two.
    Scan upper;
    if (highest - lowest >= kSplitFrom) {
        const qint64 middle = lowest + (highest - lowest) / 2;
        std::thread helper(scanOnOwnConnection, QByteArray(file), middle + 1, highest, accentBlind, stop,
                           std::ref(upper));
        scanRows(db, std::numeric_limits<qint64>::min(), middle, accentBlind, stop, scan, highest);
        sortScan(scan);
        helper.join();
        if (upper.outcome == Scan::Failed) {
            // The second connection could not read: the upper half is read
            // here after all.
            upper = Scan();
            if (scan.outcome == Scan::Read) {
                scanRows(db, middle + 1, std::numeric_limits<qint64>::max(), accentBlind, stop, upper,
                         highest);
                sortScan(upper);
            }
        }
        if (scan.outcome == Scan::Read && upper.outcome != Scan::Read)
            scan = std::move(upper);
    } else {
        scanRows(db, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max(), accentBlind,
                 stop, scan);
        sortScan(scan);
    }
    if (scan.outcome == Scan::NotText)
        return buildInStatementOrder(db, accentBlind, stop, error);
    if (scan.outcome != Scan::Read)
        return fail(scan.error);
    const size_t nameBytes = scan.names.size() + upper.names.size();
    const Halves rows(scan, upper);
    if (nameBytes + rows.size() > kMostBytes)
        return fail(QStringLiteral("the catalogue's names are too many to hold"));
    const std::vector<uint32_t> order = rows.order();
    if (stop && stop->load(std::memory_order_relaxed))
        return fail(QStringLiteral("stopped"));

    auto index = std::make_shared<SongIndex>();
    index->m_accentBlind = accentBlind;
    index->m_ids.reserve(rows.size());
    index->m_starts.reserve(rows.size() + 1);
    index->m_searchable.reserve(rows.size());
    index->m_text.reserve(nameBytes + rows.size());
    for (const uint32_t i : order) {
        const ScannedRow& r = rows.row(i);
        index->appendRow(r.id, r.shown,
                         std::string_view(rows.scanOf(i).names).substr(r.nameAt, r.nameLength));
    }
    index->finishRows();
    return index;
}

std::shared_ptr<const SongIndex> SongIndex::buildInStatementOrder(sqlite3* db, bool accentBlind,
                                                                  const std::atomic<bool>* stop,
                                                                  QString* error) {
    auto index = std::make_shared<SongIndex>();
    index->m_accentBlind = accentBlind;
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(db, kReadAll, -1, &stmt, nullptr) != SQLITE_OK) {
        if (error)
            *error = QString::fromUtf8(sqlite3_errmsg(db));
        sqlite3_finalize(stmt);
        return nullptr;
    }
    int rc = SQLITE_ROW;
    std::string folded;
    while ((rc = sqlite3_step(stmt)) == SQLITE_ROW) {
        if (stop && (index->m_ids.size() & 0xFFF) == 0 && stop->load(std::memory_order_relaxed)) {
            sqlite3_finalize(stmt);
            return nullptr;
        }
        folded.clear();
        const bool shown = foldShownName(stmt, 1, 2, accentBlind, folded);
        index->appendRow(sqlite3_column_int64(stmt, 0), shown, folded);
        if (index->m_text.size() > kMostBytes) {
            rc = SQLITE_TOOBIG;
            break;
        }
    }
    sqlite3_finalize(stmt);
    if (rc != SQLITE_DONE) {
        if (error)
            *error = rc == SQLITE_TOOBIG ? QStringLiteral("the catalogue's names are too many to hold")
                                         : QString::fromUtf8(sqlite3_errmsg(db));
        return nullptr;
    }
    index->finishRows();
    return index;
}

namespace {

// The saved form: this header, then the ids, the starts, the shown flags and
// the names' block, each as the arrays hold them in memory.
struct SavedHeader {
    char magic[8];
    quint32 version;
    quint32 accentBlind;
    quint64 rows;
    qint64 maxId;
    quint64 textBytes;
    quint64 longest;
};
constexpr char kMagic[8] = {'K', 'V', 'S', 'O', 'N', 'G', 'I', 'X'};
constexpr quint32 kSavedVersion = 1;

// Written a few megabytes at a time, so that a `stop` is heeded soon.
bool writeBytes(QIODevice& f, const void* data, size_t bytes, const std::atomic<bool>* stop) {
    constexpr size_t kChunk = 4 << 20;
    const char* at = static_cast<const char*>(data);
    for (size_t done = 0; done < bytes;) {
        if (stop && stop->load(std::memory_order_relaxed))
            return false;
        const size_t n = std::min(kChunk, bytes - done);
        if (f.write(at + done, qint64(n)) != qint64(n))
            return false;
        done += n;
    }
    return true;
}

} // namespace

bool SongIndex::save(const QString& path, qint64 maxId, const std::atomic<bool>* stop) const {
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    SavedHeader h{};
    std::memcpy(h.magic, kMagic, sizeof kMagic);
    h.version = kSavedVersion;
    h.accentBlind = m_accentBlind ? 1 : 0;
    h.rows = quint64(m_rows);
    h.maxId = maxId;
    h.textBytes = quint64(m_block.size());
    h.longest = quint64(m_longest);
    const auto rows = size_t(m_rows);
    const bool written = f.write(reinterpret_cast<const char*>(&h), sizeof h) == qint64(sizeof h) &&
                         writeBytes(f, m_idAt, rows * sizeof(qint64), stop) &&
                         writeBytes(f, m_startAt, (rows + 1) * sizeof(uint32_t), stop) &&
                         writeBytes(f, m_shownAt, rows, stop) &&
                         writeBytes(f, m_block.data(), m_block.size(), stop);
    if (!written || !f.flush()) {
        f.close();
        f.remove();
        return false;
    }
    return true;
}

std::shared_ptr<const SongIndex> SongIndex::load(const QString& path, bool accentBlind, qint64 maxId) {
    auto file = std::make_unique<QFile>(path);
    if (!file->open(QIODevice::ReadOnly))
        return nullptr;
    SavedHeader h{};
    if (file->read(reinterpret_cast<char*>(&h), sizeof h) != qint64(sizeof h) ||
        std::memcmp(h.magic, kMagic, sizeof kMagic) != 0 || h.version != kSavedVersion ||
        h.accentBlind != (accentBlind ? 1u : 0u) || h.maxId != maxId || h.textBytes > kMostBytes)
        return nullptr;
    const size_t rows = size_t(h.rows);
    const qint64 expected =
        qint64(sizeof h + rows * (sizeof(qint64) + sizeof(uint32_t) + 1) + sizeof(uint32_t) + h.textBytes);
    if (file->size() != expected)
        return nullptr;
    // Mapped, not read: the pages come from the system's cache as the scan
    // reaches them, with no copy.
    const uchar* base = file->map(0, expected);
    if (!base)
        return nullptr;
    auto index = std::make_shared<SongIndex>();
    index->m_accentBlind = accentBlind;
    index->m_longest = size_t(h.longest);
    index->m_rows = qsizetype(rows);
    const uchar* at = base + sizeof h;
    index->m_idAt = reinterpret_cast<const qint64*>(at);
    at += rows * sizeof(qint64);
    index->m_startAt = reinterpret_cast<const uint32_t*>(at);
    at += (rows + 1) * sizeof(uint32_t);
    index->m_shownAt = at;
    at += rows;
    index->m_block = std::string_view(reinterpret_cast<const char*>(at), size_t(h.textBytes));
    index->m_mapped = std::move(file);
    // Every name must lie within the block, or the scan could run past it.
    if (index->m_startAt[0] != 0 || index->m_startAt[rows] != h.textBytes)
        return nullptr;
    for (size_t i = 0; i < rows; ++i)
        if (index->m_startAt[i + 1] <= index->m_startAt[i])
            return nullptr;
    return index;
}

void SongIndex::viewOwnArrays() {
    m_rows = qsizetype(m_ids.size());
    m_idAt = m_ids.data();
    m_startAt = m_starts.data();
    m_shownAt = m_searchable.data();
    m_block = m_text;
}

qsizetype SongIndex::rowAt(size_t offset) const {
    const uint32_t* after = std::upper_bound(m_startAt, m_startAt + m_rows, uint32_t(offset));
    return qsizetype(after - m_startAt) - 1;
}

qint64 SongIndex::bytesHeld() const {
    if (m_mapped)
        return m_mapped->size();
    return qint64(m_ids.capacity() * sizeof(qint64) + m_starts.capacity() * sizeof(uint32_t) +
                  m_searchable.capacity() + m_text.capacity());
}

IndexQuery::IndexQuery(const QStringList& words, bool accentBlind) : m_accentBlind(accentBlind) {
    for (const QString& word : words) {
        // A NUL would end the statement's text, and a stray half of a
        // surrogate pair has no UTF-8 form to compare.
        for (qsizetype i = 0; i < word.size(); ++i) {
            const QChar c = word[i];
            if (c.isHighSurrogate() && i + 1 < word.size() && word[i + 1].isLowSurrogate())
                ++i;
            else if (c.isNull() || c.isSurrogate())
                m_usable = false;
        }
        const QByteArray pattern = QByteArrayLiteral("%") + word.toUtf8() + QByteArrayLiteral("%");
        if (size_t(pattern.size()) > kLongestPattern)
            m_usable = false;
        if (!m_usable)
            return;
        Word w;
        w.elements = likepattern::compile(reinterpret_cast<const unsigned char*>(pattern.constData()),
                                          int(pattern.size()), accentBlind)
                         .elements;
        // Every element that is not "%" takes at least a byte of the name.
        size_t shortest = 0;
        std::string run;
        auto closeRun = [&] {
            if (run.size() > m_anchor.size())
                m_anchor = run;
            run.clear();
        };
        bool onlyLetters = true;
        for (size_t i = 0; i < w.elements.size(); ++i) {
            const char32_t e = w.elements[i];
            if (e == likepattern::kAnyRun) {
                closeRun();
                if (i != 0 && i + 1 != w.elements.size())
                    onlyLetters = false;
                continue;
            }
            ++shortest;
            if (e == likepattern::kAnyOne) {
                closeRun();
                onlyLetters = false;
                continue;
            }
            likepattern::appendUtf8(e, run);
        }
        // The run in hand is the word's literal when the word holds no wildcard.
        const bool plain = onlyLetters && !w.elements.empty() && w.elements.front() == likepattern::kAnyRun &&
                           w.elements.back() == likepattern::kAnyRun;
        if (plain) {
            for (size_t i = 1; i + 1 < w.elements.size(); ++i)
                likepattern::appendUtf8(w.elements[i], w.literal);
            w.plain = true;
        }
        closeRun();
        m_shortest = std::max(m_shortest, shortest);
        m_words.push_back(std::move(w));
    }
}

bool IndexQuery::matches(std::string_view folded) const {
    if (folded.size() < m_shortest)
        return false;
    thread_local std::vector<char32_t> characters;
    bool decoded = false;
    for (const Word& w : m_words) {
        if (w.plain) {
            if (!w.literal.empty() && folded.find(w.literal) == std::string_view::npos)
                return false;
            continue;
        }
        if (!decoded) {
            // The name is folded already: only decode it.
            characters.clear();
            const auto* p = reinterpret_cast<const unsigned char*>(folded.data());
            const unsigned char* end = p + folded.size();
            while (p < end)
                characters.push_back(likepattern::nextCodePoint(p, end));
            decoded = true;
        }
        if (!likepattern::matches(w.elements, characters))
            return false;
    }
    return true;
}

IndexScan::IndexScan(std::shared_ptr<const SongIndex> index, std::unique_ptr<IndexQuery> query)
    : m_index(std::move(index)), m_query(std::move(query)) {
    if (m_query && m_query->shortestMatch() > m_index->longestText())
        m_row = m_index->size(); // no name is long enough
}

bool IndexScan::next(qint64& id) {
    if (!m_query) {
        if (m_row >= m_index->size())
            return false;
        id = m_index->id(m_row++);
        return true;
    }
    return m_query->anchor().empty() ? nextByRow(id) : nextByAnchor(id);
}

bool IndexScan::nextByAnchor(qint64& id) {
    const std::string_view block = m_index->block();
    while (m_row < m_index->size()) {
        const size_t at = FindBytes(block, m_query->anchor(), m_index->start(m_row));
        if (at == std::string_view::npos) {
            m_row = m_index->size();
            return false;
        }
        // A name never holds the 0xFF that ends it, so the find lies within one.
        const qsizetype row = m_index->rowAt(at);
        m_row = row + 1;
        if (m_index->searchable(row) && m_query->matches(m_index->text(row))) {
            id = m_index->id(row);
            return true;
        }
    }
    return false;
}

bool IndexScan::nextByRow(qint64& id) {
    while (m_row < m_index->size()) {
        const qsizetype row = m_row++;
        if (m_index->searchable(row) && m_query->matches(m_index->text(row))) {
            id = m_index->id(row);
            return true;
        }
    }
    return false;
}
