#pragma once

#include <QByteArrayView>
#include <QtGlobal>

#include <vector>

// The artist-and-title keys a DeDup build has taken so far, so that a song's
// earlier twin is found without the table's unique index, which is then built
// once, sorted, over the whole table instead of taking a million scattered
// inserts. Keys compare as that index compares them: ASCII letters without
// regard to case, every other byte as it is.
//
// A slot holds the upper half of a key's hash (the lower half picks the slot)
// and the table row that took it: eight bytes a song. A slot that matches is
// only a candidate, which the caller confirms against the row.
class DedupKeys {
public:
    // Room for `rows` keys, fixed: the build knows its row count beforehand.
    explicit DedupKeys(qint64 rows);

    static quint64 hash(QByteArrayView artist, QByteArrayView title);
    // Whether the two keys are the same key.
    static bool sameKey(QByteArrayView artist1, QByteArrayView title1, QByteArrayView artist2,
                        QByteArrayView title2);

    // True when a row that took a key of this hash is confirmed by
    // `isSameKey(row)`.
    template <typename SameKey> bool taken(quint64 hash, SameKey&& isSameKey) const {
        for (quint64 at = hash & m_mask;; at = (at + 1) & m_mask) {
            const Slot& slot = m_slots[at];
            if (slot.row == 0)
                return false;
            if (slot.tag == quint32(hash >> 32) && isSameKey(qint64(slot.row)))
                return true;
        }
    }
    // Records that `row` took a key of this hash. False when the table is
    // full, or the row's number does not fit a slot.
    bool take(quint64 hash, qint64 row);

private:
    struct Slot {
        quint32 tag = 0;
        quint32 row = 0; // 0: empty (table rows count from 1)
    };
    std::vector<Slot> m_slots;
    quint64 m_mask = 0;
    qint64 m_used = 0;
};
