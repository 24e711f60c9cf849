#pragma once

#include "catalogue/compactrowstore.h"
#include "catalogue/listingwindow.h"
#include "catalogue/songindex.h"
#include "catalogue/songlookup.h"

#include <QList>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <memory>

// Where a list of songs reads its rows from, one at a time and only as far
// as the list needs them: a statement, or the song index's matches looked up
// one by one.
class SongRowSource {
public:
    virtual ~SongRowSource() = default;
    // The next row's track id and its artist, title, disc and track number;
    // false at the end.
    virtual bool next(qint64& id, CompactRowStore::Texts& texts) = 0;
    // The list has what it asked for: let go of what holds the connection.
    virtual void pause() {}
};

// The ids of every row left in a source, in its order (for comparing two
// sources of the same rows).
QList<qint64> remainingIds(SongRowSource& source);

// The rows of a statement on a connection. The constructor throws a KvError
// with the driver's text when the statement fails.
class StatementRowSource : public SongRowSource {
public:
    StatementRowSource(const QSqlDatabase& db, const QString& sql);
    bool next(qint64& id, CompactRowStore::Texts& texts) override;

private:
    QSqlQuery m_query;
    bool m_more = true;
};

// The rows an index scan names, each read from the catalogue by its id. A
// row that is gone (the index was out of step) is passed over and reported
// to the index's keeper.
class IndexedRowSource : public SongRowSource {
public:
    IndexedRowSource(sqlite3* db, IndexScan scan);
    bool next(qint64& id, CompactRowStore::Texts& texts) override;
    // The lookup is prepared again for the next rows: a statement left
    // prepared would keep the connection from closing.
    void pause() override { m_lookup.reset(); }

private:
    IndexScan m_scan;
    sqlite3* m_db;
    quint64 m_generation;
    std::unique_ptr<SongLookup> m_lookup;
};

// The typed search's rows from the index, or null when the index cannot
// answer it (not ready, or a word it cannot take): the caller then runs
// the statement.
std::unique_ptr<SongRowSource> IndexedSearch(const QSqlDatabase& db, const QStringList& words);
// The whole catalogue in the list's order from the index, or null.
std::unique_ptr<ListingWindow> IndexedListing(const QSqlDatabase& db);
