#pragma once

#include "catalogue/compactrowstore.h"
#include "catalogue/sqlitestatement.h"

struct sqlite3;

// Reads the artist, title, disc and track number of songs by their ids. While
// one lives it keeps a single read of the catalogue open (a statement left
// standing on its first row), instead of a lock taken and given back for each
// song; it must go before the connection closes.
class SongLookup {
public:
    explicit SongLookup(sqlite3* db);
    bool ok() const { return m_row.ok(); }
    // False when the catalogue has no song of that id.
    bool read(qint64 id, CompactRowStore::Texts& texts);

private:
    SqliteStatement m_hold;
    SqliteStatement m_row;
};
