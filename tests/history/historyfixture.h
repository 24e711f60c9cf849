#pragma once

#include "catalogue/database.h"
#include "history/historystore.h"

#include <QSqlQuery>
#include <QStringList>

namespace historytest {

// Adds rows to the history as a song start would.
inline void add(const QString& singer, const QString& artist, const QString& title, qint32 key,
                const QString& path) {
    HistoryStore::addPlayed({singer, artist, title, key, path});
}

// Every row of the history as "singer|artist|title|key|path", sorted, so that
// two histories compare whatever order the rows came in.
inline QStringList allRows() {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT SingerName, Artist, Title, [Key], TrackPath, "
                                            "Artist IS NULL FROM tblKaraokeTrackHistory"));
    QStringList out;
    while (q.next()) {
        out << QStringLiteral("%1|%2|%3|%4|%5%6")
                   .arg(q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                        q.value(3).toString(), q.value(4).toString(),
                        q.value(5).toInt() ? QStringLiteral("|NULL") : QString());
    }
    out.sort();
    return out;
}

} // namespace historytest
