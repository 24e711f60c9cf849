#include "songlist.h"

#include "catalogue/database.h"
#include "catalogue/sqlitestatement.h"
#include "core/csvwriter.h"
#include "exports/exportfile.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>

namespace {

const QString kListColumns = QStringLiteral("SELECT tblKaraokeTracks.ArtistName As Artist, "
                                            "tblKaraokeTracks.TrackName as Track, tblKaraokeTracks.DiscName "
                                            "as Disc, tblKaraokeTracks.TrackNo as TrackNo, "
                                            "tblKaraokeTracks.TrackPath as Location From tblKaraokeTracks");

} // namespace

QString SongList::statement(Kind kind) {
    switch (kind) {
    case AllSongsNoDuplicates:
        return QStringLiteral("SELECT ArtistName As Artist, TrackName as Track, DiscName as Disc, TrackNo as "
                              "TrackNo From tblDedup;");
    case SongsWithErrors:
        return kListColumns + QStringLiteral(" WHERE (((tblKaraokeTracks.Error)=-1));");
    case AllSongs:
        break;
    }
    return kListColumns + QLatin1Char(';');
}

bool SongList::write(const QString& sql, const QString& path, QString* error) {
    if (sql.isEmpty()) {
        ExportWriter file(path);
        const bool written = file.open() && file.commit();
        *error = file.error();
        return written;
    }
    SqliteStatement rows(NativeHandle(dbConnection()), sql.toUtf8());
    if (!rows.ok()) {
        *error = rows.error();
        return false;
    }
    ExportWriter file(path);
    if (!file.open()) {
        *error = file.error();
        return false;
    }
    const int columns = rows.columnCount();
    QStringList names;
    for (int c = 0; c < columns; ++c)
        names.append(rows.columnName(c));
    file.write(CsvWriter::header(names));
    QByteArray line;
    while (rows.next()) {
        line.clear();
        for (int c = 0; c < columns; ++c) {
            if (c > 0)
                line += ',';
            if (rows.isInteger(c))
                line += QByteArray::number(rows.integer(c));
            else
                CsvWriter::appendQuoted(line, rows.text(c));
        }
        line += "\r\n";
        file.write(line);
    }
    if (rows.failed()) {
        *error = rows.error();
        return false;
    }
    const bool written = file.commit();
    *error = file.error();
    return written;
}
