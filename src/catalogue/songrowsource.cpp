#include "songrowsource.h"

#include "catalogue/database.h"
#include "catalogue/songindexkeeper.h"
#include "catalogue/unicodelike.h"
#include "core/kverror.h"

#include <QSqlError>

QList<qint64> remainingIds(SongRowSource& source) {
    QList<qint64> ids;
    qint64 id = 0;
    CompactRowStore::Texts texts;
    while (source.next(id, texts))
        ids << id;
    return ids;
}

StatementRowSource::StatementRowSource(const QSqlDatabase& db, const QString& sql) {
    if (!db.isOpen())
        throw KvError(3704, QStringLiteral("Operation is not allowed when the object is closed."));
    m_query = QSqlQuery(db);
    m_query.setForwardOnly(true);
    if (!m_query.exec(sql)) {
        QString failure = m_query.lastError().databaseText();
        if (failure.isEmpty())
            failure = m_query.lastError().text();
        throw KvError(m_query.lastError().nativeErrorCode().toInt(), failure);
    }
}

bool StatementRowSource::next(qint64& id, CompactRowStore::Texts& texts) {
    if (!m_more)
        return false;
    if (!m_query.next()) {
        // The end of the result, or the statement was ended under us (the
        // connection closed): either way there is nothing more to read.
        m_more = false;
        m_query = QSqlQuery();
        return false;
    }
    id = m_query.value(0).toLongLong();
    texts = {m_query.value(1).toString(), m_query.value(2).toString(), m_query.value(3).toString(),
             m_query.value(4).toString()};
    return true;
}

IndexedRowSource::IndexedRowSource(sqlite3* db, IndexScan scan)
    : m_scan(std::move(scan)), m_db(db), m_generation(ConnectionGeneration()) {}

bool IndexedRowSource::next(qint64& id, CompactRowStore::Texts& texts) {
    // The connection the rows were found for is gone.
    if (m_generation != ConnectionGeneration())
        return false;
    if (!m_lookup) {
        m_lookup = std::make_unique<SongLookup>(m_db);
        if (!m_lookup->ok())
            return false;
    }
    while (m_scan.next(id)) {
        if (m_lookup->read(id, texts))
            return true;
        SongIndexKeeper::instance().distrust();
    }
    return false;
}

std::unique_ptr<SongRowSource> IndexedSearch(const QSqlDatabase& db, const QStringList& words) {
    sqlite3* handle = db.isOpen() ? NativeHandle(db) : nullptr;
    if (!handle)
        return nullptr;
    const bool blind = AccentBlindLike();
    auto query = std::make_unique<IndexQuery>(words, blind);
    if (!query->usable())
        return nullptr;
    auto index = SongIndexKeeper::instance().current(blind);
    if (!index)
        return nullptr;
    return std::make_unique<IndexedRowSource>(handle, IndexScan(std::move(index), std::move(query)));
}

std::unique_ptr<ListingWindow> IndexedListing(const QSqlDatabase& db) {
    sqlite3* handle = db.isOpen() ? NativeHandle(db) : nullptr;
    if (!handle)
        return nullptr;
    auto index = SongIndexKeeper::instance().current(AccentBlindLike());
    if (!index)
        return nullptr;
    return std::make_unique<ListingWindow>(handle, std::move(index));
}
