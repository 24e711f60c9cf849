#include "deduplist.h"

#include "catalogue/backgroundrows.h"
#include "catalogue/database.h"
#include "catalogue/groupedinsert.h"
#include "catalogue/sqlitestatement.h"
#include "core/errorlog.h"
#include "exports/exportfile.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

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
// The index of a table that lost it returns.
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

constexpr int kBuildCacheMb = 16;

} // namespace

qint64 DedupList::BuildDedupTable(const Progress& progress) {
    clear();
    // Without its index the table would take every twin: it stays empty.
    if (!tryExec(kEnsureIndex)) {
        LogErrorQuietly(QStringLiteral("The index of tblDedup could not be made, so the list was not built."),
                        QStringLiteral("DedupList.BuildDedupTable"), 1);
        return 0;
    }
    QSqlDatabase db = dbConnection();
    sqlite3* native = NativeHandle(db);
    qint64 total = 0;
    {
        SqliteStatement count(native, "SELECT COUNT(*) FROM tblKaraokeTracks");
        if (count.next())
            total = count.integer(0);
    }
    qint64 done = 0;
    const auto goOn = [&] { return !progress || progress(done, total); };
    // The songs come sorted as the table's index sorts them, and of the songs
    // that index takes for one (artist and title alike but for case), the
    // first in the catalogue comes first: the table and its index then grow
    // at their ends only, the rows lie in the order the file is written in,
    // and a twin is refused by the index itself, by its own rules. The sort
    // runs away from the window, which keeps answering.
    bool ownTransaction = false;
    {
        BackgroundRows songs(native,
                             "SELECT KaraokeTrackId, ArtistName, TrackName, DiscName, TrackNo FROM "
                             "tblKaraokeTracks ORDER BY ArtistName COLLATE NOCASE, TrackName COLLATE NOCASE, "
                             "KaraokeTrackId");
        // One transaction: a refused row fails alone and the rest go on. Nothing
        // here is ever rolled back, which would also cut short every list still
        // reading from the catalogue. Inside a transaction of the caller's the
        // rows are the caller's to commit.
        ownTransaction = db.transaction();
        // Room for the pages the rows are added to, which then reach the log
        // once, at the commit, instead of again at every spill of a small cache.
        LargeCatalogueCache cache(kBuildCacheMb);
        // A row the table's rules refuse (a twin among them) is passed over.
        GroupedInsert insert(
            native,
            "INSERT OR IGNORE INTO tblDedup (SongId, ArtistName, TrackName, DiscName, TrackNo )Values", 5);
        while (insert.ok() && songs.next(goOn)) {
            ++done;
            // The disc and track number reach this statement unescaped in the
            // list's long-standing form, so that a row with an apostrophe there
            // never made it into the list: it stays out.
            if (!songs.text(3).contains('\'') && !songs.text(4).contains('\'')) {
                insert.add(songs.integer(0));
                for (int c = 1; c < 5; ++c) {
                    if (songs.isNull(c))
                        insert.addNull();
                    else
                        insert.add(songs.text(c));
                }
                insert.endRow();
            }
            if (!goOn())
                break;
        }
        insert.finish();
    }
    // The reading is over before the commit. The count is the table's own:
    // a failed write may have taken rows back with it.
    if (ownTransaction)
        db.commit();
    SqliteStatement count(native, "SELECT COUNT(*) FROM tblDedup");
    return count.next() ? count.integer(0) : 0;
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
        QByteArray out;
        while (rows.next()) {
            if (mode == CaseMode::LeaveAlone) {
                // The common case straight from the bytes, into one line's
                // room used again for every line.
                out.setNum(rows.integer(0));
                for (int c = 1; c < 5; ++c)
                    out.append(",\"").append(rows.text(c)).append('"');
                out.append("\r\n");
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
