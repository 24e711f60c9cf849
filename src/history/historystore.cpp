#include "historystore.h"

#include "catalogue/database.h"

#include <QSqlError>

namespace {

// The five values of a row as they stand in the VALUES list of both inserts.
QString valuesOf(const HistoryRow& r) {
    return MakeSafeSql(r.SingerName) + QStringLiteral("','") + MakeSafeSql(r.Artist) + QStringLiteral("','") +
           MakeSafeSql(r.Title) + QStringLiteral("',") + QString::number(r.Key) + QStringLiteral(",'") +
           MakeSafeSql(r.TrackPath) + QStringLiteral("')");
}

QStringList firstColumn(const QString& sql) {
    QSqlQuery q = ExecuteSql(sql);
    QStringList out;
    while (q.next())
        out << q.value(0).toString();
    return out;
}

} // namespace

bool HistoryFilter::isAll() const {
    return singer == HistoryStore::kAll;
}

QString HistoryStore::playedInsertSql(const HistoryRow& row) {
    return QStringLiteral(
               "Insert into tblKaraokeTrackHistory(SingerName,Artist,Title,[Key],TrackPath)Values('") +
           valuesOf(row);
}

void HistoryStore::addPlayed(const HistoryRow& row) {
    ExecuteSql(playedInsertSql(row));
}

QString HistoryStore::importInsertSql(const HistoryRow& row) {
    return QStringLiteral("Insert Into tblKaraokeTrackHistory(SingerName, Artist, Title, [Key], "
                          "TrackPath)Values('") +
           valuesOf(row);
}

void HistoryStore::addImported(const HistoryRow& row) {
    ExecuteSql(importInsertSql(row));
}

QStringList HistoryStore::singerNames() {
    return firstColumn(QStringLiteral("SELECT Distinct SingerName FROM tblKaraokeTrackHistory;"));
}

QStringList HistoryStore::singersForCombo(bool withAll) {
    if (!withAll)
        return singerNames();
    return firstColumn(QStringLiteral("SELECT Distinct SingerName FROM tblKaraokeTrackHistory UNION SELECT "
                                      "'(All)' FROM tblKaraokeTrackHistory;"));
}

QStringList HistoryStore::singersAfterClear() {
    return firstColumn(QStringLiteral(
        "SELECT SingerName FROM tblKaraokeTrackHistory UNION SELECT '(All)' FROM tblKaraokeTrackHistory;"));
}

QString HistoryStore::listSql(const HistoryFilter& f) {
    if (f.afterClear)
        return QStringLiteral("SELECT TrackPath, SingerName, Artist, Title,Key From tblKaraokeTrackHistory "
                              "ORDER BY SingerName;");
    if (f.isAll()) {
        return f.noDups ? QStringLiteral("SELECT Distinct TrackPath, SingerName, Artist, Title,[Key] From "
                                         "tblKaraokeTrackHistory ORDER BY SingerName, Artist;")
                        : QStringLiteral("SELECT TrackPath, SingerName, Artist, Title, [Key] From "
                                         "tblKaraokeTrackHistory ORDER BY SingerName, Artist;");
    }
    const QString head = f.noDups
                             ? QStringLiteral("SELECT Distinct TrackPath, SingerName, Artist, Title, [Key] "
                                              "From tblKaraokeTrackHistory where Singername = '")
                             : QStringLiteral("SELECT TrackPath, SingerName, Artist, Title, [Key] From "
                                              "tblKaraokeTrackHistory where Singername = '");
    return head + MakeSafeSql(f.singer) + QStringLiteral("' ORDER BY SingerName, Artist;");
}

QSqlQuery HistoryStore::openList(const HistoryFilter& filter) {
    return ExecuteSql(listSql(filter));
}

QList<HistoryRow> HistoryStore::songsOfSinger(const QString& name) {
    QSqlQuery q = ExecuteSql(
        QStringLiteral("SELECT DISTINCT tblKaraokeTrackHistory.Artist, tblKaraokeTrackHistory.Title, "
                       "tblKaraokeTrackHistory.Key, tblKaraokeTrackHistory.TrackPath From "
                       "tblKaraokeTrackHistory WHERE (((tblKaraokeTrackHistory.SingerName)='") +
        name + QStringLiteral("'));"));
    QList<HistoryRow> rows;
    while (q.next())
        rows.append(
            {name, q.value(0).toString(), q.value(1).toString(), q.value(2).toInt(), q.value(3).toString()});
    return rows;
}

void HistoryStore::removeSong(const QString& singer, const QString& path) {
    static const QString kTemplate =
        QStringLiteral("DELETE From tblKaraokeTrackHistory WHERE "
                       "(((tblKaraokeTrackHistory.SingerName)='%SingerName%') AND "
                       "((tblKaraokeTrackHistory.TrackPath)='%TrackPath%'));");
    static const QString kSinger = QStringLiteral("%SingerName%");
    static const QString kPath = QStringLiteral("%TrackPath%");
    // Each marker is replaced at its own place, the later one first, so that a
    // name or a path that holds a marker's text stays as it is.
    QString sql = kTemplate;
    sql.replace(kTemplate.indexOf(kPath), kPath.size(), MakeSafeSql(path));
    sql.replace(kTemplate.indexOf(kSinger), kSinger.size(), MakeSafeSql(singer));
    ExecuteSql(sql);
}

void HistoryStore::clear(const QString& comboText) {
    if (comboText == kAll)
        ExecuteSql(QStringLiteral("Delete from tblKaraokeTrackHistory"));
    else
        ExecuteSql(QStringLiteral("Delete from tblKaraokeTrackHistory Where Singername = '") +
                   MakeSafeSql(comboText) + QStringLiteral("';"));
}

qint64 HistoryStore::rowCount() {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT COUNT(*) FROM tblKaraokeTrackHistory"));
    return q.next() ? q.value(0).toLongLong() : 0;
}
