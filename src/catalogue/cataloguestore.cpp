#include "cataloguestore.h"

#include "catalogue/database.h"
#include "core/kverror.h"

#include <QSqlQuery>
#include <QVariant>

namespace {

// A value that is joined in unescaped must not hold a quote.
void refuseQuote(const QString& value, const QString& what) {
    if (value.contains(QLatin1Char('\'')))
        throw KvError(3075, QStringLiteral("Syntax error (missing operator) in query expression: the %1 "
                                           "holds an apostrophe: %2")
                                .arg(what, value));
}

} // namespace

void CatalogueStore::ChangeArtist(const QString& artist, qint64 id) {
    refuseQuote(artist, QStringLiteral("artist"));
    ExecuteSql(QStringLiteral("Update tblKaraokeTracks Set ArtistName='") + artist +
               QStringLiteral("' Where KaraokeTrackId = ") + QString::number(id) + QLatin1Char(';'));
}

void CatalogueStore::SwapArtistTitle(const QString& newArtist, const QString& newTrack, qint64 id) {
    ExecuteSql(QStringLiteral("Update tblKaraokeTracks Set ArtistName='") + MakeSafeSql(newArtist) +
               QStringLiteral("', TrackName='") + MakeSafeSql(newTrack) +
               QStringLiteral("' Where KaraokeTrackId = ") + QString::number(id) + QLatin1Char(';'));
}

void CatalogueStore::MarkAsError(qint64 id, const QString& notes) {
    // SQLite takes no table name before a column that is set; the rest of
    // the statement stands as it always has.
    QString sql = QStringLiteral("Update tblKaraokeTracks SET Error = 1, Notes = '%Notes%' WHERE "
                                 "(((tblKaraokeTracks.KaraokeTrackID)=%TrackId%));");
    // The notes go in first: a "%TrackId%" the host typed is then replaced
    // too, inside the quoted notes, where it can do no harm.
    sql.replace(QStringLiteral("%Notes%"), MakeSafeSql(notes));
    sql.replace(QStringLiteral("%TrackId%"), QString::number(id));
    ExecuteSql(sql);
}

void CatalogueStore::RemoveTrack(qint64 id) {
    ExecuteSql(QStringLiteral("DELETE FROM tblKaraokeTracks WHERE KaraokeTrackID = ") + QString::number(id) +
               QLatin1Char(';'));
}

QString CatalogueStore::TrackPath(qint64 id) {
    QSqlQuery q = ExecuteSql(QStringLiteral("Select TrackPath From tblKaraokeTracks where KaraokeTrackId =") +
                             QString::number(id));
    if (!q.next())
        throw KvError(3021, QStringLiteral("Either BOF or EOF is True, or the current record has been "
                                           "deleted. Requested operation requires a current record."));
    return q.value(0).toString();
}

void CatalogueStore::SetTrackPath(qint64 id, const QString& path) {
    ExecuteSql(QStringLiteral("Update tblKaraokeTracks Set TrackPath='") + MakeSafeSql(path) +
               QStringLiteral("' Where KaraokeTrackid=") + QString::number(id));
}

void CatalogueStore::RemoveErrorMark(const QString& trackPath) {
    refuseQuote(trackPath, QStringLiteral("location"));
    ExecuteSql(QStringLiteral("UPDATE tblKaraokeTracks SET Error = 0 WHERE TrackPath='") + trackPath +
               QStringLiteral("';"));
}

void CatalogueStore::DeleteByPath(const QString& trackPath) {
    refuseQuote(trackPath, QStringLiteral("location"));
    ExecuteSql(QStringLiteral("DELETE FROM tblKaraokeTracks WHERE TrackPath='") + trackPath +
               QStringLiteral("';"));
}

std::optional<CatalogueStore::Song> CatalogueStore::SongById(qint64 id) {
    QSqlQuery q = ExecuteSql(QStringLiteral("Select * From tblKaraokeTracks Where KaraokeTrackId =") +
                             QString::number(id) + QLatin1Char(';'));
    if (!q.next())
        return std::nullopt;
    return Song{q.value(1).toString(), q.value(2).toString(), q.value(6).toString()};
}

QList<qint64> CatalogueStore::KamikazeIds() {
    QList<qint64> ids;
    QSqlQuery q = ExecuteSql(QStringLiteral("Select KaraokeTrackId, ArtistName, TrackName, TrackPath From "
                                            "tblKaraokeTracks Where Kamikaze = -1"));
    while (q.next())
        ids.append(q.value(QStringLiteral("KaraokeTrackID")).toLongLong());
    return ids;
}

qint64 CatalogueStore::CountTracks() {
    QSqlQuery q =
        ExecuteSql(QStringLiteral("SELECT Count(KaraokeTrackID) AS CountOfTracks FROM tblKaraokeTracks;"));
    return q.next() ? q.value(0).toLongLong() : -1;
}

void CatalogueStore::DeleteAllTracks() {
    ExecuteSql(QStringLiteral("Delete From tblKaraokeTracks"));
}
