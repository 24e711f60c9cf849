#pragma once

#include "catalogue/compactrowstore.h"
#include "catalogue/songindex.h"

#include <QHash>

#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

struct sqlite3;

// The whole catalogue as a list that holds only the song ids in the list's
// order (from the song index) and the texts of the rows shown last: the
// texts of a row are read from the catalogue when the list first asks for
// them, a block of rows at a time, and a few blocks are kept. Scrolling to
// the end of a million songs then costs no more memory than its top.
class ListingWindow {
public:
    using Texts = CompactRowStore::Texts;
    static constexpr int kBlockRows = 64;
    static constexpr int kBlocksKept = 64;

    ListingWindow(sqlite3* db, std::shared_ptr<const SongIndex> index);

    int size() const { return m_ownOrder ? int(m_rows.size()) : int(m_index->size()); }
    qint64 id(int row) const { return m_index->id(m_ownOrder ? m_rows[size_t(row)] : row); }
    QString text(int row, int field) const { return textsOf(row)[size_t(field)]; }
    Texts texts(int row) const { return textsOf(row); }
    // The list's own edit of a row's texts (the catalogue is not touched).
    void replace(int row, const Texts& texts);
    void removeAt(int row);
    qint64 bytesHeld() const;

private:
    const Texts& textsOf(int row) const;
    void readBlock(int block) const;

    sqlite3* m_db;
    quint64 m_generation;
    // The order is the index's own until a row is taken out of the list;
    // then the index rows still listed, in order.
    std::shared_ptr<const SongIndex> m_index;
    std::vector<uint32_t> m_rows;
    bool m_ownOrder = false;
    QHash<qint64, Texts> m_edits;
    mutable std::unordered_map<int, std::vector<Texts>> m_blocks;
    mutable std::deque<int> m_blockOrder; // oldest first
};
