#include "listingwindow.h"

#include "catalogue/database.h"
#include "catalogue/songlookup.h"

ListingWindow::ListingWindow(sqlite3* db, std::shared_ptr<const SongIndex> index)
    : m_db(db), m_generation(ConnectionGeneration()), m_index(std::move(index)) {}

void ListingWindow::replace(int row, const Texts& texts) {
    m_edits.insert(id(row), texts);
}

void ListingWindow::removeAt(int row) {
    m_edits.remove(id(row));
    if (!m_ownOrder) {
        m_rows.resize(size_t(size()));
        for (size_t i = 0; i < m_rows.size(); ++i)
            m_rows[i] = uint32_t(i);
        m_ownOrder = true;
    }
    m_rows.erase(m_rows.begin() + row);
    // The rows after it moved up: the blocks read no longer fit them.
    m_blocks.clear();
    m_blockOrder.clear();
}

const ListingWindow::Texts& ListingWindow::textsOf(int row) const {
    if (!m_edits.isEmpty()) {
        const auto edited = m_edits.constFind(id(row));
        if (edited != m_edits.constEnd())
            return *edited;
    }
    const int block = row / kBlockRows;
    auto found = m_blocks.find(block);
    if (found == m_blocks.end()) {
        readBlock(block);
        found = m_blocks.find(block);
    }
    return found->second[size_t(row % kBlockRows)];
}

void ListingWindow::readBlock(int block) const {
    if (int(m_blockOrder.size()) >= kBlocksKept) {
        m_blocks.erase(m_blockOrder.front());
        m_blockOrder.pop_front();
    }
    const int first = block * kBlockRows;
    const int count = qMin(kBlockRows, size() - first);
    std::vector<Texts> texts(size_t(qMax(0, count)));
    // A connection closed and opened since has other rows: show none.
    if (m_generation == ConnectionGeneration() && count > 0) {
        SongLookup lookup(m_db);
        for (int i = 0; lookup.ok() && i < count; ++i)
            lookup.read(id(first + i), texts[size_t(i)]);
    }
    m_blocks.emplace(block, std::move(texts));
    m_blockOrder.push_back(block);
}

qint64 ListingWindow::bytesHeld() const {
    qint64 bytes = qint64(m_rows.capacity() * sizeof(uint32_t));
    for (const auto& [block, rows] : m_blocks)
        for (const Texts& t : rows)
            for (const QString& s : t)
                bytes += s.size() * 2;
    return bytes;
}
