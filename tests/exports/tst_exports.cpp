#include "childprocess.h"
#include "exports/deduplist.h"
#include "exports/exportfile.h"
#include "exports/songbook.h"
#include "exports/songlist.h"
#include "exportsfixture.h"
#include "smalldisk.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

using namespace exportstest;

class TestExports : public QObject {
    Q_OBJECT

private slots:
    void exportPaths_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("plain") << "Ann History.csv" << true;
        QTest::newRow("dots inside a name are harmless") << "AC..DC.kbd" << true;
        QTest::newRow("a slash") << "../escape.kbd" << false;
        QTest::newRow("an absolute path") << "/etc/passwd" << false;
        QTest::newRow("only dots") << ".." << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("a NUL") << QString("a") + QChar(0) + "b" << false;
    }
    void exportPaths() {
        QFETCH(QString, name);
        QFETCH(bool, accepted);
        QTemporaryDir dir;
        QString error;
        const QString path = exportPathIn(dir.path(), name, &error);
        QCOMPARE(!path.isEmpty(), accepted);
        QCOMPARE(error.isEmpty(), accepted);
        if (accepted)
            QCOMPARE(QFileInfo(path).absolutePath(), QFileInfo(dir.path()).absoluteFilePath());
    }

    void missingFolderWritesNothing() {
        QString error;
        QVERIFY(exportPathIn("/nonexistent/Desktop", "SongExport.csv", &error).isEmpty());
        QVERIFY(error.contains("/nonexistent/Desktop"));
        QCOMPARE(fileNameFromText("AC/DC"), QString("AC-DC"));
    }

    void dedupFile_data() {
        QTest::addColumn<QList<Song>>("songs");
        QTest::addColumn<int>("mode");
        QTest::addColumn<QByteArray>("expected");
        const QList<Song> twoDiscs{{"Abba", "Waterloo", "D1", "01", "/a"},
                                   {"Abba", "Waterloo", "D2", "02", "/b"}};
        QTest::newRow("the first of two discs wins")
            << twoDiscs << 0 << QByteArray("1,\"Abba\",\"Waterloo\",\"D1\",\"01\"\r\n");
        QTest::newRow("artists alike but for case are one")
            << QList<Song>{{"ABBA", "waterloo", "D1", "01", "/a"}, {"abba", "Waterloo", "D2", "02", "/b"}}
            << 0 << QByteArray("1,\"ABBA\",\"waterloo\",\"D1\",\"01\"\r\n");
        QTest::newRow("a disc with an apostrophe is left out, by artist order")
            << QList<Song>{{"Zed", "Song", "Rock 'n' Roll", "01", "/a"},
                           {"Cher", "Believe", "D", "02", "/b"},
                           {"Adele", "Hello", "D", "03", "/c"}}
            << 0
            << QByteArray("3,\"Adele\",\"Hello\",\"D\",\"03\"\r\n2,\"Cher\",\"Believe\",\"D\",\"02\"\r\n");
        QTest::newRow("quotes stand unescaped, other letters kept")
            << QList<Song>{{"Die \"Ärzte\"", "Schrei, nach", "D", "1", "/a"}} << 0
            << QByteArray("1,\"Die \"Ärzte\"\",\"Schrei, nach\",\"D\",\"1\"\r\n");
        QTest::newRow("upper case quotes the id too")
            << QList<Song>{{"Die Ärzte", "Lied", "d", "1a", "/a"}} << 1
            << QByteArray("\"1\",\"DIE ÄRZTE\",\"LIED\",\"D\",\"1A\"\r\n");
        QTest::newRow("lower case") << QList<Song>{{"ABBA", "SOS", "D", "X", "/a"}} << 2
                                    << QByteArray("\"1\",\"abba\",\"sos\",\"d\",\"x\"\r\n");
    }
    void dedupFile() {
        QFETCH(QList<Song>, songs);
        QFETCH(int, mode);
        QFETCH(QByteArray, expected);
        TestWorkspace ws;
        addSongs(songs);
        DedupList::BuildDedupTable();
        const QString path = ws.documentsFolder() + DedupList::kFileName;
        QString error;
        QVERIFY2(DedupList::ExportDedup(path, DedupList::CaseMode(mode), {}, &error), qPrintable(error));
        QCOMPARE(fileBytes(path), expected);
        // The scratch table is emptied after the export.
        QCOMPARE(column("SELECT COUNT(*) FROM tblDedup"), QStringList{"0"});
    }

    // The table keeps what its unique index keeps: the first song in the
    // catalogue of each artist and title as the index compares them, a song
    // the table refuses leaving its place to the next one alike, and the
    // index in place afterwards. Every song is counted once; a list still
    // reading from the catalogue goes on reading; a table that lost its index
    // gets it back; a build stopped half-way keeps what it took and
    // commits it; songs not yet committed on the catalogue's connection
    // are in the list.
    void dedupKeepsWhatItsIndexWould_data() {
        QTest::addColumn<QList<Song>>("songs");
        QTest::addColumn<QList<qint64>>("kept");
        // 1: a list reading, 2: the index gone, 3: the last song uncommitted, 4: stopped half-way
        QTest::addColumn<int>("before");
        QTest::newRow("a refused first song leaves the key to the next")
            << QList<Song>{{"A", "T", "D", QString(101, QLatin1Char('9')), "/a"}, {"a", "t", "D", "01", "/b"}}
            << QList<qint64>{2} << 0;
        QTest::newRow("an apostrophe leaves the key to the next")
            << QList<Song>{{"A", "T", "O'D", "01", "/a"},
                           {"a", "t", "D", "01", "/b"},
                           {"A", "T", "D", "1", "/c"}}
            << QList<qint64>{2} << 0;
        QTest::newRow("the first in the catalogue wins though it sorts after its twin")
            << QList<Song>{{"b", "x", "D", "01", "/a"},
                           {"abba", "sos", "D", "01", "/b"},
                           {"ABBA", "SOS", "D", "01", "/c"},
                           {"Abba", "SOS", "D", "01", "/d"}}
            << QList<qint64>{1, 2} << 0;
        QTest::newRow("letters beyond ASCII keep their case")
            << QList<Song>{{"Ärger", "X", "D", "01", "/a"}, {"ärger", "x", "D", "01", "/b"}}
            << QList<qint64>{1, 2} << 0;
        QTest::newRow("the same letters cut elsewhere are another key")
            << QList<Song>{{"ab", "c", "D", "01", "/a"}, {"a", "bc", "D", "01", "/b"}} << QList<qint64>{1, 2}
            << 0;
        QTest::newRow("names that differ after a NUL are one key")
            << QList<Song>{{QStringLiteral("A") + QChar(0) + "x", "T", "D", "01", "/a"},
                           {QStringLiteral("A") + QChar(0) + "y", "T", "D", "01", "/b"}}
            << QList<qint64>{1} << 0;
        QList<Song> twins;
        for (int i = 0; i < 5000; ++i)
            twins.append(
                {i % 2 ? QStringLiteral("ARTIST %1").arg(i % 7) : QStringLiteral("artist %1").arg(i % 7),
                 QStringLiteral("Title"), "D", "01", QStringLiteral("/t%1").arg(i)});
        const QList<qint64> firsts{1, 2, 3, 4, 5, 6, 7};
        QTest::newRow("5000 songs, 7 keys") << twins << firsts << 0;
        QTest::newRow("5000 songs, a list reading") << twins << firsts << 1;
        QTest::newRow("5000 songs, the index gone") << twins << firsts << 2;
        // The songs come by artist: half of them hold the first four artists.
        QTest::newRow("5000 songs, stopped half-way") << twins << QList<qint64>{1, 2, 3, 4} << 4;
        QTest::newRow("5000 songs, the last uncommitted")
            << twins + QList<Song>{{"New", "Song", "D", "01", "/new"}} << firsts + QList<qint64>{5001} << 3;
    }
    void dedupKeepsWhatItsIndexWould() {
        QFETCH(QList<Song>, songs);
        QFETCH(QList<qint64>, kept);
        QFETCH(int, before);
        TestWorkspace ws;
        addSongs(before == 3 ? songs.mid(0, songs.size() - 1) : songs);
        QSqlQuery list(dbConnection());
        list.setForwardOnly(true);
        if (before == 1)
            QVERIFY(list.exec("SELECT TrackPath FROM tblKaraokeTracks") && list.next());
        if (before == 2) {
            DedupList::CreateDedupTable();
            ExecuteSql("DROP INDEX idxDepup");
        }
        if (before == 3) {
            QVERIFY(dbConnection().transaction());
            addSongs({songs.last()});
        }
        qint64 counted = 0;
        // Told of every song in turn, against the whole count.
        const auto told = [&](qint64 done, qint64 total) {
            return total == songs.size() && (done == counted || ++counted == done) &&
                   !(before == 4 && done == 2500);
        };
        QCOMPARE(DedupList::BuildDedupTable(told), qint64(kept.size()));
        QCOMPARE(counted, qint64(before == 4 ? 2500 : songs.size()));
        // The build's own transaction is over, whatever ended it.
        QCOMPARE(bool(sqlite3_get_autocommit(NativeHandle(dbConnection()))), before != 3);
        if (before == 1) {
            qsizetype read = 1;
            while (list.next())
                ++read;
            QCOMPARE(read, songs.size());
        }
        // The build left the transaction it found open.
        if (before == 3)
            QVERIFY(dbConnection().commit());
        QList<qint64> ids;
        for (const QString& id : column("SELECT SongId FROM tblDedup ORDER BY SongId"))
            ids << id.toLongLong();
        QCOMPARE(ids, kept);
        QCOMPARE(column("SELECT name FROM sqlite_master WHERE type = 'index' AND tbl_name = 'tblDedup'"),
                 QStringList{"idxDepup"});
    }

    void songListFile_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<Rows>("expected");
        QTest::newRow("all songs") << int(SongList::AllSongs)
                                   << Rows{{"Artist", "Track", "Disc", "TrackNo", "Location"},
                                           {"O'Brien, \"Pat\"", "Ärger", "D1", "01", "/s/o.zip"},
                                           {"Cher", "Believe", "D2", "02", "/s/c.zip"}};
        QTest::newRow("songs with errors") << int(SongList::SongsWithErrors)
                                           << Rows{{"Artist", "Track", "Disc", "TrackNo", "Location"},
                                                   {"Cher", "Believe", "D2", "02", "/s/c.zip"}};
        QTest::newRow("no duplicates has four columns") << int(SongList::AllSongsNoDuplicates)
                                                        << Rows{{"Artist", "Track", "Disc", "TrackNo"},
                                                                {"Cher", "Believe", "D2", "02"},
                                                                {"O'Brien, \"Pat\"", "Ärger", "D1", "01"}};
    }
    void songListFile() {
        QFETCH(int, kind);
        QFETCH(Rows, expected);
        TestWorkspace ws;
        addSongs({{"O'Brien, \"Pat\"", "Ärger", "D1", "01", "/s/o.zip"},
                  {"Cher", "Believe", "D2", "02", "/s/c.zip", true}});
        if (kind == SongList::AllSongsNoDuplicates)
            DedupList::BuildDedupTable();
        const QString path = ws.documentsFolder() + SongList::kFileName;
        QString error;
        QVERIFY2(SongList::write(SongList::statement(SongList::Kind(kind)), path, &error), qPrintable(error));
        QCOMPARE(readCsv(path), expected);
        QVERIFY(fileBytes(path).startsWith("\"Artist\",\"Track\""));
    }

    void songValuesReplaceInTurn_data() {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("plain") << QStringList{"Abba", "SOS", "D1"}
                               << QStringList{"Abba", "SOS", "D1", "Abba SOS D1"};
        QTest::newRow("apostrophe stays single")
            << QStringList{"Guns N' Roses", "Patience", "D"}
            << QStringList{"Guns N' Roses", "Patience", "D", "Guns N' Roses Patience D"};
        QTest::newRow("%3 in an artist becomes the disc")
            << QStringList{"Band %3", "Song", "Disc"}
            << QStringList{"Band Disc", "Song", "Disc", "Band %3 Song Disc"};
        QTest::newRow("%4 in a title becomes the whole search text")
            << QStringList{"A", "T%4", "D"} << QStringList{"A", "TA T%4 D", "D", "A T%4 D"};
        QTest::newRow("%1 is never looked for again")
            << QStringList{"%1", "%2", "x"} << QStringList{"%1", "%2", "x", "%1 %2 x"};
    }
    void songValuesReplaceInTurn() {
        QFETCH(QStringList, names);
        QFETCH(QStringList, expected);
        const auto v = Songbook::songValues(names[0], names[1], names[2]);
        QCOMPARE((QStringList{v[0], v[1], v[2], v[3]}), expected);
    }

    // The songbook is a whole SQLite file of the app's schema that replaces
    // an older one; the host's address goes in only when requests by email
    // are allowed.
    void songbookFile_data() {
        QTest::addColumn<bool>("allowEmail");
        QTest::addColumn<QString>("host");
        QTest::newRow("email allowed") << true << "|host@example.com||0";
        QTest::newRow("email not allowed") << false << "|||0";
    }
    void songbookFile() {
        QFETCH(bool, allowEmail);
        QFETCH(QString, host);
        TestWorkspace ws;
        addSongs({{"Guns N' Roses", "Patience", "D1", "01", "/a"},
                  {"Zed", "Zebra", "D2", "02", "/b"},
                  {"Guns N' Roses", "Patience", "D1", "01", "/c"}});
        const QString path = ws.documentsFolder() + "  My Book  .kbd";
        QVERIFY(writeBytes(path, "an older songbook"));
        const Songbook::Outcome out = Songbook::write(path, allowEmail, "host@example.com");
        QVERIFY2(out.written, qPrintable(out.error));
        QCOMPARE(out.songs, qint64(3));
        QVERIFY(!QFile::exists(path + ".part"));
        QCOMPARE(sqliteColumn(path, "pragma integrity_check"), QStringList{"ok"});
        QCOMPARE(sqliteColumn(path, "pragma page_size"), QStringList{"1024"});
        QStringList expectedSchema = Songbook::schema();
        for (QString& s : expectedSchema)
            s.chop(1); // the stored text has no closing semicolon
        QCOMPARE(sqliteColumn(path, "SELECT sql FROM sqlite_master ORDER BY rowid"), expectedSchema);
        QCOMPARE(sqliteColumn(path, "SELECT HostName || '|' || EmailAddress || '|' || MobileNo || '|' || "
                                    "ContactType FROM HostDetails"),
                 QStringList{host});
        QCOMPARE(sqliteColumn(path, "SELECT SearchCriteria FROM KaraokeSongs ORDER BY rowid"),
                 (QStringList{"Guns N' Roses Patience D1", "Zed Zebra D2", "Guns N' Roses Patience D1"}));
    }

    void songbookCancelKeepsSongsSoFar() {
        TestWorkspace ws;
        addSongs({{"A", "1", "D", "1", "/a"}, {"B", "2", "D", "1", "/b"}, {"C", "3", "D", "1", "/c"}});
        const QString path = ws.documentsFolder() + "Book.kbd";
        const auto out = Songbook::write(path, false, {}, [](qint64 done, qint64) { return done < 2; });
        QVERIFY(out.written && out.cancelled);
        QCOMPARE(sqliteColumn(path, "SELECT COUNT(*) FROM KaraokeSongs"), QStringList{"2"});
    }

    // A song the file cannot take ends the export: the old songbook stays
    // whole under its name, and the fault is in the error log.
    void songbookErrorLeavesOldFile() {
        TestWorkspace ws;
        addSongs({{"A", "1", "D", "1", "/a"}});
        ExecuteSql("UPDATE tblKaraokeTracks SET DiscName = NULL");
        const QString path = ws.documentsFolder() + "Book.kbd";
        QVERIFY(writeBytes(path, "older"));
        const auto out = Songbook::write(path, false, {});
        QVERIFY(!out.written && !out.error.isEmpty());
        QCOMPARE(fileBytes(path), QByteArray("older"));
        QVERIFY(!QFile::exists(path + ".part"));
        QVERIFY(TestWorkspace::errorLog().contains(Songbook::kSource));
    }

    // A disk that fills up leaves the old list whole under its name.
    void fullDiskLeavesOldFile() {
        TestWorkspace ws;
        QTemporaryDir dir;
        SmallDisk disk(dir.path(), 64);
        if (!disk.mounted())
            QSKIP("needs the rights to mount a small disk");
        const QString path = dir.filePath(SongList::kFileName);
        QVERIFY(writeBytes(path, "older"));
        QList<Song> many;
        for (int i = 0; i < 3000; ++i)
            many.append(
                {QString("Artist %1").arg(i), QString(40, 'x'), "Disc", "01", QString("/s/%1.zip").arg(i)});
        addSongs(many);
        QString error;
        QVERIFY(!SongList::write(SongList::statement(SongList::AllSongs), path, &error));
        QVERIFY(!error.isEmpty());
        QCOMPARE(fileBytes(path), QByteArray("older"));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList{SongList::kFileName});
    }

    // The tool writes the same files as the screen, for a scheduled job.
    void toolExports_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QByteArray>("head");
        QTest::newRow("songs") << QStringList{"songs"} << 0
                               << QByteArray(
                                      "\"Artist\",\"Track\",\"Disc\",\"TrackNo\",\"Location\"\r\n\"Cher\"");
        QTest::newRow("dedup in upper case") << QStringList{"dedup", "--case", "upper"} << 0
                                             << QByteArray("\"1\",\"CHER\",\"BELIEVE\",\"D\",\"01\"\r\n");
        QTest::newRow("songbook") << QStringList{"songbook", "--email", "a@b"} << 0
                                  << QByteArray("SQLite format 3");
        QTest::newRow("unknown case")
            << QStringList{"dedup", "--case", "title"} << 2 << QByteArray("<missing>");
        QTest::newRow("no file") << QStringList{"songs"} << 2 << QByteArray("<missing>");
    }
    void toolExports() {
        QFETCH(QStringList, args);
        QFETCH(int, exitCode);
        QFETCH(QByteArray, head);
        TestWorkspace ws;
        addSongs({{"Cher", "Believe", "D", "01", "/s/c.zip"}, {"cher", "believe", "E", "02", "/s/d.zip"}});
        const QString file = ws.documentsFolder() + "out.file";
        QStringList full{"export"};
        full << args;
        if (QTest::currentDataTag() != QByteArray("no file"))
            full.insert(2, file);
        const kvtest::ChildResult r = kvtest::runTool(full);
        QVERIFY2(r.finished, r.err.constData());
        QCOMPARE(r.exitCode, exitCode);
        QCOMPARE(fileBytes(file).left(head.size()), head);
    }
};

KV_TEST_CLASS(TestExports)
#include "tst_exports.moc"
