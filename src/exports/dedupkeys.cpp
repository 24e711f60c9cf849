#include "dedupkeys.h"

#include <cstdint>

namespace {

unsigned char folded(char c) {
    const auto u = static_cast<unsigned char>(c);
    return u >= 'A' && u <= 'Z' ? static_cast<unsigned char>(u + ('a' - 'A')) : u;
}

bool sameFolded(QByteArrayView a, QByteArrayView b) {
    if (a.size() != b.size())
        return false;
    for (qsizetype i = 0; i < a.size(); ++i)
        if (folded(a[i]) != folded(b[i]))
            return false;
    return true;
}

// FNV-1a over the folded bytes, then a finishing mix so that the low bits,
// which pick the slot, depend on every byte.
quint64 mix(quint64 h, QByteArrayView text) {
    for (const char c : text) {
        h ^= folded(c);
        h *= 0x100000001b3ULL;
    }
    return h;
}

quint64 finish(quint64 h) {
    h ^= h >> 33;
    h *= 0xff51afd7ed558ccdULL;
    h ^= h >> 33;
    h *= 0xc4ceb9fe1a85ec53ULL;
    h ^= h >> 33;
    return h;
}

} // namespace

DedupKeys::DedupKeys(qint64 rows) {
    // At most half full.
    quint64 size = 1024;
    while (size < quint64(rows) * 2)
        size <<= 1;
    m_slots.resize(size);
    m_mask = size - 1;
}

quint64 DedupKeys::hash(QByteArrayView artist, QByteArrayView title) {
    // The artist's length keeps "ab"+"c" apart from "a"+"bc".
    quint64 h = 0xcbf29ce484222325ULL ^ quint64(artist.size());
    h = mix(h, artist);
    h ^= 0xff;
    h *= 0x100000001b3ULL;
    return finish(mix(h, title));
}

bool DedupKeys::sameKey(QByteArrayView artist1, QByteArrayView title1, QByteArrayView artist2,
                        QByteArrayView title2) {
    return sameFolded(artist1, artist2) && sameFolded(title1, title2);
}

bool DedupKeys::take(quint64 hash, qint64 row) {
    if (row <= 0 || row > qint64(UINT32_MAX) || quint64(m_used + 1) * 2 > m_slots.size())
        return false;
    quint64 at = hash & m_mask;
    while (m_slots[at].row != 0)
        at = (at + 1) & m_mask;
    m_slots[at] = {quint32(hash >> 32), quint32(row)};
    ++m_used;
    return true;
}
