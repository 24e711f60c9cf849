#pragma once

#include <QByteArray>
#include <QString>
#include <array>
#include <vector>

// The rows of a results list kept small: a track id and a few texts a row,
// packed as UTF-8 into large shared blocks, with one small index entry a row.
// A catalogue listed whole costs a few tens of bytes a row instead of a
// string object per cell.
class CompactRowStore {
public:
    static constexpr int kTexts = 4;
    using Texts = std::array<QString, kTexts>;

    int size() const { return int(m_index.size()); }
    bool isEmpty() const { return m_index.empty(); }

    void append(qint64 id, const Texts& texts);
    // Gives a row new texts (the old bytes stay in their block until clear()).
    void replace(int row, const Texts& texts);
    void removeAt(int row);
    void clear();

    qint64 id(int row) const;
    QString text(int row, int field) const;
    Texts texts(int row) const;

    // Bytes held by the store, for the benchmarks.
    qint64 bytesHeld() const;

private:
    struct Entry {
        quint32 block;
        quint32 offset;
    };
    static constexpr qsizetype kBlockSize = 1 << 20;

    Entry encode(qint64 id, const Texts& texts);
    const char* at(const Entry& e) const { return m_blocks[e.block].constData() + e.offset; }

    std::vector<QByteArray> m_blocks;
    std::vector<Entry> m_index;
};
