#include "catalogue/cataloguestore.h"
#include "catalogue/database.h"
#include "catalogue/maintenance.h"
#include "catalogue/songsearch.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <sys/mount.h>

namespace {

// One song with its file in `folder`; returns its id.
qint64 addSongFile(const QString& folder, const QString& fileName, const QStringList& cells) {
    const QString path = QDir(folder).filePath(fileName);
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write("song " + fileName.toUtf8()) < 0)
        return -1;
    f.close();
    QSqlQuery q(dbConnection());
    q.prepare("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, DiscName, TrackNo, FileName, TrackPath) "
              "VALUES (?, ?, ?, ?, ?, ?)");
    for (const QString& v : {cells.value(0), cells.value(1), cells.value(2), cells.value(3), fileName, path})
        q.addBindValue(v);
    return q.exec() ? q.lastInsertId().toLongLong() : -1;
}

QString rowText(qint64 id, const QString& columns) {
    QSqlQuery q(dbConnection());
    q.exec(QStringLiteral("SELECT %1 FROM tblKaraokeTracks WHERE KaraokeTrackID = %2").arg(columns).arg(id));
    return q.next() ? q.value(0).toString() : QStringLiteral("<no row>");
}

QByteArray bytesOf(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
}

// A small disk of its own over `folder`, turned read-only once filled.
class ReadOnlyMedia {
public:
    explicit ReadOnlyMedia(const QString& folder) : m_folder(QFile::encodeName(folder)) {
        m_mounted = ::mount("tmpfs", m_folder.constData(), "tmpfs", MS_NOSUID | MS_NODEV, "size=64k") == 0;
    }
    ~ReadOnlyMedia() {
        if (m_mounted)
            ::umount2(m_folder.constData(), MNT_DETACH);
    }
    bool mounted() const { return m_mounted; }
    bool makeReadOnly() {
        return ::mount(nullptr, m_folder.constData(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    QByteArray m_folder;
    bool m_mounted = false;
};

} // namespace

class TestMaintenance : public QObject {
    Q_OBJECT

private slots:
    void removeExtrasFromArtist_data() {
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("expected"); // "<none>": nothing changes
        QTest::newRow("no comma changes nothing") << "John Smith"
                                                  << "<none>";
        QTest::newRow("last, first") << "Smith, John"
                                     << "John Smith";
        QTest::newRow("blanks round the whole name") << "  Smith, John  "
                                                     << "John Smith";
        QTest::newRow("last, first & other") << "Smith, John & Jane"
                                             << "John Smith & Jane";
        QTest::newRow("only the first comma splits") << "Brown, James, Jr"
                                                     << "James, Jr Brown";
        QTest::newRow("inner blanks stay") << "Smith,  John  Paul "
                                           << "John  Paul Smith";
        QTest::newRow("a trailing comma of the back stays") << "Smith, John ,"
                                                            << "John , Smith";
        QTest::newRow("an ampersand in the front stays there") << "Sam & Dave, The"
                                                               << "The Sam & Dave";
        QTest::newRow("apostrophe and accents") << "O'Brien, Dónal"
                                                << "Dónal O'Brien";
        QTest::newRow("quotes") << "\"Weird Al\", Yankovic"
                                << "Yankovic \"Weird Al\"";
        QTest::newRow("cyrillic") << "Пугачёва, Алла"
                                  << "Алла Пугачёва";
    }
    void removeExtrasFromArtist() {
        QFETCH(QString, artist);
        QFETCH(QString, expected);
        QCOMPARE(maintenance::RemoveExtrasFromArtist(artist).value_or("<none>"), expected);
    }

    // The repairs of the store on the catalogue, with awkward names.
    void storeRepairs_data() {
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("title");
        QTest::newRow("plain") << "Abba"
                               << "Waterloo";
        QTest::newRow("apostrophes") << "Guns N' Roses"
                                     << "Knockin' On Heaven's Door";
        QTest::newRow("quotes and commas") << "\"Weird Al\", Yankovic"
                                           << "Eat It, \"Live\"";
        QTest::newRow("non-ASCII") << "Björk"
                                   << "Jóga ñ 日本";
    }
    void storeRepairs() {
        QFETCH(QString, artist);
        QFETCH(QString, title);
        TestWorkspace ws;
        const QList<qint64> ids = ws.addSongs({"Other - Song", "X - Y"});
        const qint64 id = ids[0];
        // Two swaps in a row give the row as it was.
        CatalogueStore::SwapArtistTitle(title, artist, id);
        QCOMPARE(rowText(id, "ArtistName || '|' || TrackName"), title + "|" + artist);
        CatalogueStore::SwapArtistTitle(artist, title, id);
        QCOMPARE(rowText(id, "ArtistName || '|' || TrackName"), artist + "|" + title);

        // The artist alone is written unescaped: an apostrophe fails and
        // changes nothing.
        if (artist.contains('\'')) {
            QVERIFY_THROWS_EXCEPTION(std::exception, CatalogueStore::ChangeArtist(artist + "!", id));
            QCOMPARE(rowText(id, "ArtistName"), artist);
        } else {
            CatalogueStore::ChangeArtist(artist + "!", id);
            QCOMPARE(rowText(id, "ArtistName"), artist + "!");
        }

        // Marked songs leave the typed search, with the host's notes kept.
        const QString notes = title + " %TrackId% '; DROP TABLE tblKaraokeTracks; --";
        CatalogueStore::MarkAsError(id, notes);
        QCOMPARE(rowText(id, "Error"), QString("-1"));
        QCOMPARE(rowText(id, "Notes"), QString(notes).replace("%TrackId%", QString::number(id)));
        QCOMPARE(rowText(ids[1], "Error"), QString("0"));
        QSqlQuery found = ExecuteSql(SongSearch::filterSql(SongSearch::filterList("Other", false)));
        QVERIFY(!found.next());

        CatalogueStore::RemoveTrack(id);
        QCOMPARE(rowText(id, "ArtistName"), QString("<no row>"));
        QCOMPARE(rowText(ids[1], "ArtistName"), QString("X"));
    }

    // The error list's menu: by path, never with a quote that could end the
    // literal and change other songs.
    void errorMenuByPath() {
        TestWorkspace ws;
        const QList<qint64> ids = ws.addSongs({"A - 1", "B - 2", "C - it's", "D - 4"});
        ExecuteSql("UPDATE tblKaraokeTracks SET Error = 1");
        CatalogueStore::RemoveErrorMark("/songs/A - 1.zip");
        CatalogueStore::DeleteByPath("/songs/B - 2.zip");
        QVERIFY_THROWS_EXCEPTION(std::exception, CatalogueStore::DeleteByPath("/songs/C - it's.zip"));
        QVERIFY_THROWS_EXCEPTION(std::exception, CatalogueStore::RemoveErrorMark("x' OR '1'='1"));
        QSqlQuery q = ExecuteSql("SELECT ArtistName || ':' || Error FROM tblKaraokeTracks ORDER BY 1");
        QStringList rows;
        while (q.next())
            rows << q.value(0).toString();
        QCOMPARE(rows, (QStringList{"A:0", "C:-1", "D:-1"}));
    }

    void renameSongFile_data() {
        QTest::addColumn<QString>("oldName");
        QTest::addColumn<QStringList>("cells"); // artist, track, disc, track number
        QTest::addColumn<QString>("newName");
        QTest::newRow("an mp3 becomes .zip")
            << "abba waterloo.mp3" << QStringList{"Abba", "Waterloo", "SC8001", "05"}
            << "SC8001-05 - Abba - Waterloo.zip";
        QTest::newRow("apostrophes") << "x.zip" << QStringList{"Guns N' Roses", "Don't Cry", "D'1", "1"}
                                     << "D'1-1 - Guns N' Roses - Don't Cry.zip";
        QTest::newRow("quotes and commas")
            << "x.zip" << QStringList{"\"Weird Al\", Yankovic", "Eat It", "D", "2"}
            << "D-2 - \"Weird Al\", Yankovic - Eat It.zip";
        QTest::newRow("non-ASCII") << "x.cdg" << QStringList{"Björk", "Jóga", "Ø", "3"}
                                   << "Ø-3 - Björk - Jóga.zip";
        QTest::newRow("already so named")
            << "D-4 - A - B.zip" << QStringList{"A", "B", "D", "4"} << "D-4 - A - B.zip";
    }
    void renameSongFile() {
        QFETCH(QString, oldName);
        QFETCH(QStringList, cells);
        QFETCH(QString, newName);
        TestWorkspace ws;
        ScriptedPrompts boxes;
        QTemporaryDir songs;
        const qint64 id = addSongFile(songs.path(), oldName, {"row's", "own", "cells", "99"});
        QVERIFY(id > 0);
        QVERIFY(maintenance::RenameSongFile(id, cells[0], cells[1], cells[2], cells[3]));
        const QString newPath = songs.filePath(newName);
        QCOMPARE(bytesOf(newPath), "song " + oldName.toUtf8());
        QCOMPARE(QDir(songs.path()).entryList(QDir::Files), QStringList{newName});
        QCOMPARE(rowText(id, "TrackPath"), newPath);
        // The file name column keeps the old name: the search by file name
        // goes on finding the song under it.
        QCOMPARE(rowText(id, "FileName"), oldName);
        QVERIFY(boxes.calls.isEmpty());
    }

    // A rename that cannot be done whole changes neither the disk nor the row.
    void renameRefused_data() {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<QString>("reason");
        QTest::newRow("another file has the name") << "existing"
                                                   << "a file of that name is there already";
        QTest::newRow("a slash in the artist") << "slash"
                                               << "\"/\"";
        QTest::newRow("the file is gone") << "gone"
                                          << "the file is not there";
        QTest::newRow("another row has the new path") << "row"
                                                      << "the catalogue did not take the new path";
        QTest::newRow("read-only media") << "readonly"
                                         << "read-only media";
    }
    void renameRefused() {
        QFETCH(QString, setup);
        QFETCH(QString, reason);
        TestWorkspace ws;
        ScriptedPrompts boxes;
        QTemporaryDir songs;
        std::unique_ptr<ReadOnlyMedia> media;
        if (setup == "readonly") {
            media = std::make_unique<ReadOnlyMedia>(songs.path());
            if (!media->mounted())
                QSKIP("needs the rights to mount a small disk");
        }
        const qint64 id = addSongFile(songs.path(), "old.mp3", {});
        QVERIFY(id > 0);
        QString artist = "Abba";
        const QString target = songs.filePath("D-1 - Abba - SOS.zip");
        if (setup == "existing")
            QVERIFY(QFile(target).open(QIODevice::WriteOnly));
        if (setup == "slash")
            artist = "AC/DC";
        if (setup == "gone")
            QVERIFY(QFile::remove(songs.filePath("old.mp3")));
        if (setup == "row")
            ExecuteSql(QString("INSERT INTO tblKaraokeTracks (ArtistName, TrackPath) VALUES ('x', '%1')")
                           .arg(target));
        if (setup == "readonly")
            QVERIFY(media->makeReadOnly());
        const QStringList before = QDir(songs.path()).entryList(QDir::Files);
        const QByteArray targetBefore = bytesOf(target);

        QVERIFY(!maintenance::RenameSongFile(id, artist, "SOS", "D", "1"));
        QCOMPARE(QDir(songs.path()).entryList(QDir::Files), before);
        QCOMPARE(bytesOf(target), targetBefore);
        QCOMPARE(rowText(id, "TrackPath"), songs.filePath("old.mp3"));
        QCOMPARE(boxes.boxTitles(), QStringList{"Rename File"});
        QVERIFY2(boxes.calls.first().text.contains(reason), qPrintable(boxes.calls.first().text));
    }
};

KV_TEST_CLASS(TestMaintenance)
#include "tst_maintenance.moc"
