#include "songlookup.h"

SongLookup::SongLookup(sqlite3* db)
    : m_hold(db, "Select 1 From tblKaraokeTracks Limit 1"),
      m_row(
          db,
          "Select ArtistName, TrackName, DiscName, TrackNo From tblKaraokeTracks Where KaraokeTrackID = ?") {
    m_hold.next();
}

bool SongLookup::read(qint64 id, CompactRowStore::Texts& texts) {
    m_row.bind(1, id);
    const bool found = m_row.next();
    if (found)
        for (int c = 0; c < CompactRowStore::kTexts; ++c) {
            const QByteArrayView t = m_row.text(c);
            texts[size_t(c)] = QString::fromUtf8(t.data(), t.size());
        }
    m_row.reset();
    return found;
}
