#include "deduplist.h"

#include "catalogue/database.h"
#include "catalogue/sqlitestatement.h"
#include "exports/dedupkeys.h"
#include "exports/exportfile.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <optional>

#include <sqlite3.h>

namespace {

// Jet's TEXT (255) and TEXT (100) limits, as checks, so that an over-long
// name is refused like any other row the table does not take.
const QString kCreateTable =
    QStringLiteral("CREATE TABLE tblDedup (SongId INTEGER, "
                   "ArtistName TEXT(255) NOT NULL COLLATE NOCASE CHECK (length(ArtistName) <= 255), "
                   "TrackName TEXT(255) NOT NULL COLLATE NOCASE CHECK (length(TrackName) <= 255), "
                   "DiscName TEXT(255) COLLATE NOCASE CHECK (length(DiscName) <= 255), "
                   "TrackNo TEXT(100) COLLATE NOCASE CHECK (length(TrackNo) <= 100));");
const QString kCreateIndex =
    QStringLiteral("CREATE UNIQUE INDEX idxDepup ON tblDedup (ArtistName, TrackName)");
const QString kDelete = QStringLiteral("DELETE FROM tblDedup");
// The index of a table that lost it (a build that could not put it back) returns.
const QString kEnsureIndex =
    QStringLiteral("CREATE UNIQUE INDEX IF NOT EXISTS idxDepup ON tblDedup (ArtistName, TrackName)");

bool tryExec(const QString& sql) {
    QSqlQuery q(dbConnection());
    return q.exec(sql);
}

QString cased(const QString& text, DedupList::CaseMode mode) {
    switch (mode) {
    case DedupList::CaseMode::Upper:
        return text.toUpper();
    case DedupList::CaseMode::Lower:
        return text.toLower();
    case DedupList::CaseMode::LeaveAlone:
        break;
    }
    return text;
}

QByteArray quotedAsIs(const QString& text) {
    return '"' + text.toUtf8() + '"';
}

} // namespace

void DedupList::CreateDedupTable() {
    tryExec(kDelete);
    tryExec(kCreateTable);
    tryExec(kCreateIndex);
}

void DedupList::clear() {
    if (!tryExec(kDelete))
        CreateDedupTable();
}

namespace {

const QString kDropIndex = QStringLiteral("DROP INDEX idxDepup");
constexpr int kSortingCacheMb = 16;

// Fills the table from the catalogue, in the catalogue's own order, and
// returns the number of songs it took. With `keys` the table has no index: a
// song whose artist and title an earlier song took is passed over here, and
// nullopt means the keys could not follow (the caller then builds the other
// way). Without, the table's unique index refuses the twin.
std::optional<qint64> fill(sqlite3* native, qint64 total, const DedupList::Progress& progress,
                           DedupKeys* keys) {
    SqliteStatement songs(native, "SELECT KaraokeTrackId, ArtistName, TrackName, DiscName, TrackNo FROM "
                                  "tblKaraokeTracks;");
    SqliteStatement insert(native, "INSERT INTO tblDedup (SongId, ArtistName, TrackName, DiscName, TrackNo "
                                   ")Values(?, ?, ?, ?, ?)");
    SqliteStatement earlier(native, "SELECT ArtistName, TrackName FROM tblDedup WHERE rowid = ?");
    if (!songs.ok() || !insert.ok() || !earlier.ok())
        return keys ? std::nullopt : std::optional<qint64>(0);
    qint64 done = 0;
    qint64 kept = 0;
    while (songs.next()) {
        ++done;
        // The disc and track number reach this statement unescaped in the
        // list's long-standing form, so that a row with an apostrophe there
        // never made it into the list: it stays out.
        if (!songs.text(3).contains('\'') && !songs.text(4).contains('\'')) {
            const QByteArrayView artist = songs.text(1);
            const QByteArrayView title = songs.text(2);
            quint64 hash = 0;
            bool twin = false;
            if (keys) {
                hash = DedupKeys::hash(artist, title);
                twin = keys->taken(hash, [&](qint64 row) {
                    earlier.bind(1, row);
                    const bool same =
                        earlier.next() && DedupKeys::sameKey(earlier.text(0), earlier.text(1), artist, title);
                    earlier.reset();
                    return same;
                });
            }
            if (!twin) {
                insert.bind(1, songs.integer(0));
                for (int c = 1; c < 5; ++c) {
                    if (songs.isNull(c))
                        insert.bindNull(c + 1);
                    else
                        insert.bind(c + 1, songs.text(c));
                }
                // A row the table's rules refuse is left out, and takes no key.
                if (insert.run()) {
                    ++kept;
                    if (keys && !keys->take(hash, sqlite3_last_insert_rowid(native)))
                        return std::nullopt;
                }
            }
        }
        if (progress && !progress(done, total))
            break;
    }
    return kept;
}

} // namespace

qint64 DedupList::BuildDedupTable(const Progress& progress) {
    clear();
    tryExec(kEnsureIndex);
    QSqlDatabase db = dbConnection();
    sqlite3* native = NativeHandle(db);
    qint64 total = 0;
    {
        SqliteStatement count(native, "SELECT COUNT(*) FROM tblKaraokeTracks");
        if (count.next())
            total = count.integer(0);
    }
    // One transaction: a refused row fails alone and the rest go on. The
    // table is filled without its index, which is then built in one sorted
    // pass. Nothing here is ever rolled back: that would also cut short every
    // list still reading from the catalogue. SQLite takes the index away only
    // while no such list is open (the table is filled through the index
    // otherwise), and should the index refuse the rows (the keys here and its
    // rules disagreeing), the table is emptied, the index put back, and the
    // table filled through it.
    db.transaction();
    std::optional<qint64> kept;
    bool indexInPlace = !tryExec(kDropIndex);
    if (!indexInPlace) {
        // The fill only appends; the cache's size is the index's sorting
        // room, which it keeps to a bounded share of memory.
        LargeCatalogueCache cache(kSortingCacheMb);
        DedupKeys keys(total);
        kept = fill(native, total, progress, &keys);
        if (!kept || !tryExec(kCreateIndex)) {
            kept.reset();
            tryExec(kDelete);
            indexInPlace = tryExec(kCreateIndex);
        }
    }
    if (!kept) {
        LargeCatalogueCache cache;
        // Without its index (the next build puts it back) the table still
        // gets no twins.
        DedupKeys keys(indexInPlace ? 0 : total);
        kept = fill(native, total, progress, indexInPlace ? nullptr : &keys);
    }
    db.commit();
    return kept.value_or(0);
}

QByteArray DedupList::line(qint64 songId, const QString& artist, const QString& title, const QString& disc,
                           const QString& trackNo, CaseMode mode) {
    QByteArray out =
        mode == CaseMode::LeaveAlone ? QByteArray::number(songId) : quotedAsIs(QString::number(songId));
    for (const QString* text : {&artist, &title, &disc, &trackNo})
        out += ',' + quotedAsIs(cased(*text, mode));
    out += "\r\n";
    return out;
}

bool DedupList::ExportDedup(const QString& path, CaseMode mode, const Progress& progress, QString* error) {
    LargeCatalogueCache cache;
    sqlite3* native = NativeHandle(dbConnection());
    qint64 total = 0;
    SqliteStatement count(native, "SELECT COUNT(*) FROM tblDedup");
    if (count.next())
        total = count.integer(0);

    ExportWriter file(path);
    if (!file.open()) {
        *error = file.error();
        return false;
    }
    qint64 done = 0;
    {
        SqliteStatement rows(native, "Select * From tblDeDup order by ArtistName");
        if (!rows.ok()) {
            *error = rows.error();
            return false;
        }
        while (rows.next()) {
            if (mode == CaseMode::LeaveAlone) {
                // The common case straight from the bytes.
                QByteArray out = QByteArray::number(rows.integer(0));
                for (int c = 1; c < 5; ++c)
                    out += ",\"" + rows.text(c).toByteArray() + '"';
                out += "\r\n";
                file.write(out);
            } else {
                auto text = [&](int c) { return QString::fromUtf8(rows.text(c)); };
                file.write(line(rows.integer(0), text(1), text(2), text(3), text(4), mode));
            }
            if (progress && !progress(++done, total))
                break;
        }
    }
    const bool written = file.commit();
    *error = file.error();
    tryExec(kDelete);
    return written;
}
