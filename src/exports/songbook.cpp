#include "songbook.h"

#include "catalogue/database.h"
#include "catalogue/groupedinsert.h"
#include "catalogue/sqlitestatement.h"
#include "core/errorlog.h"
#include "exports/exportfile.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

namespace {

const QString kConnection = QStringLiteral("kbdConnection");

// Closes and drops the songbook's own connection when the write ends.
struct DestinationConnection {
    QSqlDatabase db;
    explicit DestinationConnection(const QString& path) {
        db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), kConnection);
        db.setDatabaseName(path);
    }
    ~DestinationConnection() {
        db.close();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(kConnection);
    }
};

void run(QSqlDatabase& db, const QString& sql) {
    QSqlQuery q(db);
    if (!q.exec(sql))
        throw std::runtime_error(q.lastError().text().toStdString());
}

void removeWithSideFiles(const QString& path) {
    for (const char* side : {"", "-journal", "-wal", "-shm"})
        QFile::remove(path + QLatin1String(side));
}

bool flushToDisk(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadWrite) && ::fsync(f.handle()) == 0;
}

} // namespace

QString Songbook::titleProblem(const QString& title) {
    if (title.contains(QLatin1Char('/')) || title.contains(QStringLiteral("..")) || title.contains(QChar(0)))
        return QStringLiteral("The songbook title \"%1\" cannot be used: a title must not hold \"/\" or "
                              "\"..\", as the songbook is saved under its title in the documents folder.")
            .arg(title);
    return {};
}

QString Songbook::pathForTitle(const QString& documents, const QString& title, QString* error) {
    *error = titleProblem(title);
    if (!error->isEmpty())
        return {};
    return exportPathIn(documents, title + kExtension, error);
}

QStringList Songbook::schema() {
    return {
        QStringLiteral(
            "CREATE TABLE HostDetails('HostName' text(255,0), 'EmailAddress' text(255,0), 'MobileNo' "
            "text(50,0), 'ContactType' integer(4,0) DEFAULT 0);"),
        QStringLiteral(
            "CREATE TABLE 'KaraokeSongs'('ArtistName' text(255,0), 'TrackName' text(255,0), 'DiscName' "
            "text(255,0), 'SearchCriteria' text(255,0));"),
        QStringLiteral("CREATE INDEX 'idxSearchCriteria' ON KaraokeSongs ('SearchCriteria' COLLATE NOCASE);"),
        QStringLiteral("CREATE INDEX 'idxArtistName' ON KaraokeSongs ('ArtistName' COLLATE NOCASE);"),
        QStringLiteral("CREATE INDEX 'idxTrackName' ON KaraokeSongs ('TrackName' COLLATE NOCASE);"),
    };
}

QString Songbook::hostRow(bool useEmail, const QString& email) {
    QString sql = QStringLiteral("Insert into HostDetails(HostName, EmailAddress, MobileNo, "
                                 "ContactType)Values('%1', '%2', '%3', '%4');");
    sql.replace(QLatin1String("%1"), QString());
    sql.replace(QLatin1String("%2"), useEmail ? MakeSafeSql(email) : QString());
    sql.replace(QLatin1String("%3"), QString());
    sql.replace(QLatin1String("%4"), QStringLiteral("0"));
    return sql;
}

std::array<QString, 4> Songbook::songValues(const QString& artist, const QString& title,
                                            const QString& disc) {
    // Each value, once in the row, is also subject to the replacements that
    // follow its own; the text put in by a replacement is not looked at again.
    std::array<QString, 4> v{artist, title, disc,
                             artist + QLatin1Char(' ') + title + QLatin1Char(' ') + disc};
    for (int step = 1; step < 4; ++step)
        for (int field = 0; field < step; ++field)
            v[field].replace(QLatin1Char('%') + QString::number(step + 1), v[step]);
    return v;
}

Songbook::Outcome Songbook::write(const QString& path, bool useEmail, const QString& email,
                                  const Progress& progress) {
    Outcome out;
    const QString partial = path + QStringLiteral(".part");
    removeWithSideFiles(partial);
    try {
        {
            DestinationConnection dest(partial);
            QSqlDatabase& db = dest.db;
            if (!db.open())
                throw std::runtime_error(db.lastError().text().toStdString());
            run(db, QStringLiteral("PRAGMA page_size = 1024"));
            run(db, QStringLiteral("PRAGMA default_cache_size = 2000"));
            // The file is new and is put in place only when whole, so this
            // connection needs no journal and no flush per write: the file is
            // flushed once, before it is renamed.
            run(db, QStringLiteral("PRAGMA journal_mode = OFF"));
            run(db, QStringLiteral("PRAGMA synchronous = OFF"));
            // A page cache of 12 MB: beside the song index the program holds,
            // a larger one would take the export past 200 MB for a million
            // songs, and saves little of the index builds' time.
            run(db, QStringLiteral("PRAGMA cache_size = -12288"));
            // Up to two helper threads sort the rows when the indexes are built.
            run(db, QStringLiteral("PRAGMA threads = 2"));
            // The tables first, the indexes once the songs are in: the same
            // file, and a sorted build of each index instead of a million
            // scattered inserts into it (a sixth of the time).
            const QStringList statements = schema();
            run(db, statements[0]);
            run(db, statements[1]);
            run(db, hostRow(useEmail, email));

            qint64 total = 0;
            sqlite3* catalogue = NativeHandle(dbConnection());
            SqliteStatement count(catalogue, "SELECT COUNT(*) FROM tblKaraokeTracks");
            if (count.next())
                total = count.integer(0);
            SqliteStatement songs(catalogue, "Select ArtistName, TrackName, DiscName from tblKaraokeTracks");
            if (!songs.ok())
                throw std::runtime_error(songs.error().toStdString());

            run(db, QStringLiteral("Delete from KaraokeSongs"));
            if (!db.transaction())
                throw std::runtime_error(db.lastError().text().toStdString());
            GroupedInsert insert(
                NativeHandle(db),
                "INSERT INTO KaraokeSongs(ArtistName, TrackName, DiscName, SearchCriteria)Values", 4);
            const auto refused = [&] { return std::runtime_error(insert.error().toStdString()); };
            QByteArray search;
            while (songs.next()) {
                for (int c = 0; c < 3; ++c)
                    if (songs.isNull(c))
                        throw std::runtime_error("a song has no artist, title or disc value (null)");
                const QByteArrayView artist = songs.text(0), title = songs.text(1), disc = songs.text(2);
                if (artist.contains('%') || title.contains('%') || disc.contains('%')) {
                    const auto values = songValues(QString::fromUtf8(artist), QString::fromUtf8(title),
                                                   QString::fromUtf8(disc));
                    for (int c = 0; c < 4; ++c)
                        insert.add(values[size_t(c)].toUtf8());
                } else {
                    // Nothing to replace: the names as they are, and the search text.
                    search.clear();
                    search.append(artist).append(' ').append(title).append(' ').append(disc);
                    insert.add(artist);
                    insert.add(title);
                    insert.add(disc);
                    insert.add(search);
                }
                if (!insert.endRow())
                    throw refused();
                ++out.songs;
                if (progress && !progress(out.songs, total)) {
                    out.cancelled = true;
                    break;
                }
            }
            if (!insert.finish())
                throw refused();
            if (songs.failed())
                throw std::runtime_error(songs.error().toStdString());
            // The index builds sort in runs the size of the page cache: runs
            // of 2 MB sort within the processor's own caches and in parallel,
            // which beats fewer, larger ones.
            run(db, QStringLiteral("PRAGMA cache_size = -2000"));
            for (qsizetype i = 2; i < statements.size(); ++i)
                run(db, statements[i]);
            if (!db.commit())
                throw std::runtime_error(db.lastError().text().toStdString());
        }
        if (!flushToDisk(partial))
            throw std::runtime_error("the finished file could not be flushed to disk");
        if (std::rename(QFile::encodeName(partial).constData(), QFile::encodeName(path).constData()) != 0)
            throw std::runtime_error(std::string("the finished file could not be put in place: ") +
                                     std::strerror(errno));
        out.written = true;
    } catch (const std::exception& e) {
        out.error = QString::fromUtf8(e.what());
        out.cancelled = false;
        removeWithSideFiles(partial);
        LogErrorQuietly(out.error, kSource, 0);
    }
    return out;
}
