#pragma once

#include <QFile>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

// The catalogue's file names as the typed search sees them, held in memory in
// the order of the search's "Order By ArtistName": each name folded as the
// catalogue's LIKE folds it, as UTF-8, one after another in one block, so that
// a search is one pass of a fast byte scan over the block instead of a LIKE
// call per row and a sort of every match. A song that the search never shows
// (marked as an error, or without a file name) keeps its place in the order
// with an empty name, so the same order also lists the whole catalogue.
//
// One index is one look at the catalogue: it never changes once built.
// `SongIndexKeeper` decides when it still matches the catalogue.
class SongIndex {
public:
    // Reads every song through `db` in the statement's order. Returns null
    // when the read failed (`error` says why) or `stop` was set meanwhile.
    // `readInTwo` lets a large catalogue's upper half be read at the same
    // time through a second connection to the file: only for a `db` whose
    // own view is the file's committed one, and whose caller reads again if
    // the catalogue changed while the read ran.
    static std::shared_ptr<const SongIndex> build(sqlite3* db, bool accentBlind,
                                                  const std::atomic<bool>* stop = nullptr,
                                                  QString* error = nullptr, bool readInTwo = false);

    // The index as a file, so that the next program to open the catalogue
    // need not read it again (the caller puts it in place by a rename once it
    // is whole). `maxId` is the catalogue's highest song id, kept to check
    // the file against it. False, with no file left, when it could not be
    // written, or `stop` was set meanwhile.
    bool save(const QString& path, qint64 maxId, const std::atomic<bool>* stop = nullptr) const;
    // Reads a saved index; null when the file is missing or damaged, or was
    // made for another folding or another highest id.
    static std::shared_ptr<const SongIndex> load(const QString& path, bool accentBlind, qint64 maxId);

    bool accentBlind() const { return m_accentBlind; }
    qsizetype size() const { return m_rows; }
    qint64 id(qsizetype row) const { return m_idAt[row]; }
    bool searchable(qsizetype row) const { return m_shownAt[row] != 0; }
    // The folded name of a row (empty for one the search never shows).
    std::string_view text(qsizetype row) const {
        return m_block.substr(m_startAt[row], m_startAt[row + 1] - m_startAt[row] - 1);
    }
    // The row whose name holds byte `offset` of the block.
    qsizetype rowAt(size_t offset) const;
    // Where a row's name starts in the block.
    size_t start(qsizetype row) const { return m_startAt[row]; }
    // Every name, each followed by a 0xFF byte (which UTF-8 never holds).
    std::string_view block() const { return m_block; }
    size_t longestText() const { return m_longest; }
    qint64 bytesHeld() const;

private:
    // The same, with the order left to the statement itself (for artists
    // that are not all texts).
    static std::shared_ptr<const SongIndex>
    buildInStatementOrder(sqlite3* db, bool accentBlind, const std::atomic<bool>* stop, QString* error);

    bool m_accentBlind = false;
    // Points the views at the arrays just built.
    void viewOwnArrays();
    // Appends one song: its id, whether a search shows it, and its folded
    // name (empty for a song the search does not show).
    void appendRow(qint64 id, bool shown, std::string_view folded);
    // Ends the rows: the last name's end, the arrays no larger than they
    // need be, and the views onto them.
    void finishRows();

    // Built here: the arrays; read from a saved file: the file, mapped.
    std::vector<qint64> m_ids;
    std::vector<uint32_t> m_starts;
    std::vector<uint8_t> m_searchable;
    std::string m_text;
    std::unique_ptr<QFile> m_mapped;
    // What the search reads, wherever it lives.
    qsizetype m_rows = 0;
    const qint64* m_idAt = nullptr;
    const uint32_t* m_startAt = nullptr;
    const uint8_t* m_shownAt = nullptr;
    std::string_view m_block;
    size_t m_longest = 0;
};

// The words of a typed search, compiled for the index: each word is the
// pattern "%word%" with the LIKE's own wildcards inside it.
class IndexQuery {
public:
    IndexQuery(const QStringList& words, bool accentBlind);

    // False when the statement itself would not run as the index answers
    // (a word longer than SQLite allows a pattern to be, a stray half of a
    // surrogate pair, a NUL): the caller then runs the statement.
    bool usable() const { return m_usable; }
    bool accentBlind() const { return m_accentBlind; }
    // Whether the folded name of a row matches every word.
    bool matches(std::string_view folded) const;
    // The longest run of plain letters among the words: every match holds it.
    const std::string& anchor() const { return m_anchor; }
    // No name of fewer bytes than this can match.
    size_t shortestMatch() const { return m_shortest; }

private:
    struct Word {
        std::vector<char32_t> elements;
        // "%letters%": a plain search for `literal`.
        bool plain = false;
        std::string literal;
    };
    std::vector<Word> m_words;
    std::string m_anchor;
    size_t m_shortest = 0;
    bool m_usable = true;
    bool m_accentBlind = false;
};

// Walks an index in its order and gives the song ids of the rows a query
// matches (or of every row, without a query), as many as asked at a time.
class IndexScan {
public:
    IndexScan(std::shared_ptr<const SongIndex> index, std::unique_ptr<IndexQuery> query);
    // The next id; false at the end.
    bool next(qint64& id);

private:
    bool nextByAnchor(qint64& id);
    bool nextByRow(qint64& id);

    std::shared_ptr<const SongIndex> m_index;
    std::unique_ptr<IndexQuery> m_query;
    qsizetype m_row = 0;
};

// Finds `needle` (not empty) in `text`: its offset, or npos. A scan of the
// first and last byte of the needle over 16 places at a time, the bytes
// between compared only where both agree.
size_t FindBytes(std::string_view text, std::string_view needle, size_t from = 0);
