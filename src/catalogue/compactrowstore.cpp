#include "compactrowstore.h"

namespace {

// Unsigned numbers in 7-bit groups, low group first; the high bit marks more.
void putVarint(QByteArray& out, quint64 v) {
    while (v >= 0x80) {
        out.append(char(quint8(v) | 0x80));
        v >>= 7;
    }
    out.append(char(v));
}

quint64 getVarint(const char*& p) {
    quint64 v = 0;
    int shift = 0;
    for (;;) {
        const quint8 b = quint8(*p++);
        v |= quint64(b & 0x7F) << shift;
        if (!(b & 0x80))
            return v;
        shift += 7;
    }
}

// Ids are signed: fold the sign into the low bit so that small negatives stay short.
quint64 zigzag(qint64 v) {
    return (quint64(v) << 1) ^ quint64(v >> 63);
}
qint64 unzigzag(quint64 v) {
    return qint64(v >> 1) ^ -qint64(v & 1);
}

} // namespace

CompactRowStore::Entry CompactRowStore::encode(qint64 id, const Texts& texts) {
    QByteArray row;
    row.reserve(64);
    putVarint(row, zigzag(id));
    for (const QString& t : texts) {
        const QByteArray utf8 = t.toUtf8();
        putVarint(row, quint64(utf8.size()));
        row.append(utf8);
    }
    // A row never spans two blocks; a row larger than a block gets one of its own.
    if (m_blocks.empty() || m_blocks.back().size() + row.size() > m_blocks.back().capacity()) {
        QByteArray block;
        block.reserve(qMax(kBlockSize, row.size()));
        m_blocks.push_back(std::move(block));
    }
    QByteArray& block = m_blocks.back();
    const Entry e{quint32(m_blocks.size() - 1), quint32(block.size())};
    block.append(row);
    return e;
}

void CompactRowStore::append(qint64 id, const Texts& texts) {
    m_index.push_back(encode(id, texts));
}

void CompactRowStore::replace(int row, const Texts& texts) {
    m_index.at(row) = encode(id(row), texts);
}

void CompactRowStore::removeAt(int row) {
    m_index.erase(m_index.begin() + row);
}

void CompactRowStore::clear() {
    m_index.clear();
    m_index.shrink_to_fit();
    m_blocks.clear();
}

qint64 CompactRowStore::id(int row) const {
    const char* p = at(m_index.at(row));
    return unzigzag(getVarint(p));
}

QString CompactRowStore::text(int row, int field) const {
    const char* p = at(m_index.at(row));
    getVarint(p);
    for (int f = 0; f < field; ++f)
        p += getVarint(p);
    const auto len = qsizetype(getVarint(p));
    return QString::fromUtf8(p, len);
}

CompactRowStore::Texts CompactRowStore::texts(int row) const {
    Texts t;
    for (int f = 0; f < kTexts; ++f)
        t[f] = text(row, f);
    return t;
}

qint64 CompactRowStore::bytesHeld() const {
    qint64 bytes = qint64(m_index.capacity() * sizeof(Entry));
    for (const QByteArray& b : m_blocks)
        bytes += b.capacity();
    return bytes;
}
