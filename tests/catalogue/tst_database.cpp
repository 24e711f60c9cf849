#include "catalogue/database.h"
#include "childprocess.h"
#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "core/kverror.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <sys/stat.h>

namespace {

int count(const QString& sql) {
    QSqlQuery q = ExecuteSql(sql);
    return q.next() ? q.value(0).toInt() : -1;
}

QStringList archivedIn(const QString& folder) {
    return QDir(folder).entryList({QStringLiteral("*.mdb")}, QDir::Files, QDir::Name);
}

} // namespace

class TestDatabase : public QObject {
    Q_OBJECT

private slots:
    // LIKE ignores case for every letter, not only ASCII, and keeps the
    // operator's wildcards, ESCAPE and NULL.
    void likeIgnoresCaseOfEveryLetter_data() {
        QTest::addColumn<QVariant>("text");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("escape"); // none when empty
        QTest::addColumn<QVariant>("expected");
        const auto row = [](const char* tag, const char* text, const char* pattern, QVariant expected,
                            const char* escape = "") {
            QTest::newRow(tag) << (text ? QVariant(QString::fromUtf8(text)) : QVariant())
                               << QString::fromUtf8(pattern) << QString::fromUtf8(escape) << expected;
        };
        row("ascii", "Dancing Queen", "%QUEEN%", 1);
        row("umlaut", "Die Ärzte - Männer", "%ärzte%", 1);
        row("accented capital", "ÉDITH PIAF", "édith%", 1);
        row("accents still count", "Edith Piaf", "%édith%", 0);
        row("cyrillic", "ПЕСНЯ", "песня", 1);
        row("greek final sigma", "ΈΡΩΣ", "%έρως", 1);
        row("underscore is one letter, not one byte", "Ä", "_", 1);
        row("underscore needs a letter", "", "_", 0);
        row("runs step back", "abcabd", "%a%d", 1);
        row("runs that cannot fit", "ab", "a%b%c", 0);
        row("whole text must match", "Abba Gold", "abba", 0);
        row("start", "Abba Gold", "abba%", 1);
        row("end", "Abba Gold", "%GOLD", 1);
        row("ascii word in a text beyond ascii", "Beyoncé - Halo", "%HALO%", 1);
        row("ascii word missing from a text beyond ascii", "Beyoncé - Halo", "%ring%", 0);
        row("a letter beyond ascii that folds to one", "Chriſtmas", "%christmas%", 1);
        row("kelvin sign", "\u212Aing", "king", 1);
        row("empty pattern", "", "", 1);
        row("escaped percent", "100%", "100!%", 1, "!");
        row("escaped percent is no wildcard", "1000", "100!%", 0, "!");
        row("escape at the end matches nothing", "100", "100!", 0, "!");
        row("null text", nullptr, "%a%", QVariant());
    }
    void likeIgnoresCaseOfEveryLetter() {
        QFETCH(QVariant, text);
        QFETCH(QString, pattern);
        QFETCH(QString, escape);
        QFETCH(QVariant, expected);
        TestWorkspace ws;
        QSqlQuery q(dbConnection());
        QVERIFY(q.prepare(escape.isEmpty() ? QStringLiteral("SELECT ? LIKE ?")
                                           : QStringLiteral("SELECT ? LIKE ? ESCAPE ?")));
        q.addBindValue(text);
        q.addBindValue(pattern);
        if (!escape.isEmpty())
            q.addBindValue(escape);
        QVERIFY2(q.exec() && q.next(), qPrintable(q.lastError().text()));
        QCOMPARE(q.value(0).isNull(), expected.isNull());
        if (!expected.isNull())
            QCOMPARE(q.value(0).toInt(), expected.toInt());
    }

    // Kamikaze and Error read -1 for any non-zero value, whether a plain
    // INSERT or an UPDATE wrote it, and also in a catalogue made from a
    // template that had no INSERT trigger yet.
    void yesNoColumnsStoreMinusOne_data() {
        QTest::addColumn<bool>("olderTemplate");
        QTest::addColumn<QString>("write");
        QTest::newRow("insert")
            << false << "INSERT INTO tblKaraokeTracks (TrackPath, Kamikaze, Error) VALUES ('/a', 1, 7)";
        QTest::newRow("insert, older template")
            << true << "INSERT INTO tblKaraokeTracks (TrackPath, Kamikaze, Error) VALUES ('/a', 1, 7)";
        QTest::newRow("update") << false << "UPDATE tblKaraokeTracks SET Kamikaze = 1, Error = 7";
    }
    void yesNoColumnsStoreMinusOne() {
        QFETCH(bool, olderTemplate);
        QFETCH(QString, write);
        TestWorkspace ws;
        if (olderTemplate) {
            ExecuteSql("DROP TRIGGER trgTracksYesNoInsert");
            CloseDatabase();
            QVERIFY(OpenDatabase());
        }
        if (write.startsWith("UPDATE"))
            ExecuteSql("INSERT INTO tblKaraokeTracks (TrackPath) VALUES ('/a')");
        ExecuteSql(write);
        QCOMPARE(count("Select count(*) from tblKaraokeTracks Where Kamikaze = -1 And Error = -1"), 1);
    }

    void missingCatalogue() {
        TestWorkspace ws(false);
        QFile::remove(ws.catalogueFile());
        ScriptedPrompts p;
        QCOMPARE(OpenDatabase(), false);
        QCOMPARE(p.boxTitles(), QStringList{QStringLiteral("Database connection failed")});
        QVERIFY(!QFile::exists(ws.catalogueFile())); // no empty catalogue made in its place
    }

    // A pipe where the catalogue should be is refused at once by both
    // commands of the tool (which open the catalogue as the program does),
    // instead of waiting for ever for someone to write into it.
    void catalogueThatIsNotAFileIsRefused_data() {
        QTest::addColumn<QStringList>("args");
        QTest::newRow("search") << QStringList{"search", "abba"};
        QTest::newRow("import") << QStringList{"import", QDir::tempPath(), "--convention", "1"};
    }
    void catalogueThatIsNotAFileIsRefused() {
        QFETCH(QStringList, args);
        TestWorkspace ws(false);
        QVERIFY(QFile::remove(ws.catalogueFile()));
        QCOMPARE(::mkfifo(QFile::encodeName(ws.catalogueFile()).constData(), 0600), 0);
        const kvtest::ChildResult r = kvtest::runTool(args, 20000);
        QVERIFY2(r.finished, "the tool hung on the pipe");
        QVERIFY(r.exitCode != 0);
        QVERIFY2(r.err.contains("not a regular file"), r.err.constData());
    }

    // A leftover temporary file wins, and both files are archived.
    void recoveryWithMainFile() {
        TestWorkspace ws;
        ws.addSongs({"Main - One"});
        CloseDatabase();
        QFile::copy(ws.catalogueFile(), oApplicationPaths->CompactedDatabase());
        {
            // The temporary copy holds one more song than the main file.
            QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "side");
            db.setDatabaseName(oApplicationPaths->CompactedDatabase());
            db.open();
            QSqlQuery(db).exec("INSERT INTO tblKaraokeTracks (TrackPath) VALUES ('/temp-only')");
            db.close();
        }
        QSqlDatabase::removeDatabase("side");
        ScriptedPrompts p;
        QVERIFY(OpenDatabase());
        QCOMPARE(p.calls.size(), 0);
        QVERIFY(!QFile::exists(oApplicationPaths->CompactedDatabase()));
        QCOMPARE(count("Select count(*) from tblKaraokeTracks Where TrackPath = '/temp-only'"), 1);
        const QStringList archived = archivedIn(ws.documentsFolder());
        QCOMPARE(archived.size(), 2);
        QVERIFY(archived[0].startsWith("kvSongListTemp.") && archived[1].startsWith("kvsonglist."));
    }

    void compactKeepsRowsAndShrinks() {
        TestWorkspace ws;
        QStringList songs;
        for (int i = 0; i < 3000; ++i)
            songs << QStringLiteral("Artist %1 - Title %1").arg(i);
        dbConnection().transaction();
        ws.addSongs(songs);
        dbConnection().commit();
        ExecuteSql("Delete From tblKaraokeTracks Where KaraokeTrackID > 100");
        ExecuteSql("PRAGMA wal_checkpoint(TRUNCATE)");
        const qint64 before = QFileInfo(ws.catalogueFile()).size();
        DatabaseCompact();
        QVERIFY(IsDatabaseOpen());
        QVERIFY(!QFile::exists(oApplicationPaths->CompactedDatabase()));
        QCOMPARE(count("Select count(*) from tblKaraokeTracks"), 100);
        QVERIFY(QFileInfo(ws.catalogueFile()).size() < before);
    }

    // A new catalogue has the program's page size, and one of another page
    // size takes it at its compaction, with its songs.
    void compactionGivesThePageSize_data() {
        QTest::addColumn<int>("startingPageSize");
        QTest::addColumn<bool>("compact");
        QTest::newRow("new catalogue") << 0 << false;
        QTest::newRow("new catalogue, compacted") << 0 << true;
        QTest::newRow("4096-byte pages, compacted") << 4096 << true;
        QTest::newRow("1024-byte pages, compacted") << 1024 << true;
    }
    void compactionGivesThePageSize() {
        QFETCH(int, startingPageSize);
        QFETCH(bool, compact);
        TestWorkspace ws;
        ws.addSongs({"Kept - Song", "Also - Kept"});
        if (startingPageSize > 0) {
            CloseDatabase();
            QSqlDatabase side = QSqlDatabase::addDatabase("QSQLITE", "pages");
            side.setDatabaseName(ws.catalogueFile());
            QVERIFY(side.open());
            for (const QString& sql : {QStringLiteral("PRAGMA journal_mode = DELETE"),
                                       QStringLiteral("PRAGMA page_size = %1").arg(startingPageSize),
                                       QStringLiteral("VACUUM"), QStringLiteral("PRAGMA journal_mode = WAL")})
                QVERIFY2(QSqlQuery(side).exec(sql), qPrintable(sql));
            side.close();
            side = QSqlDatabase();
            QSqlDatabase::removeDatabase("pages");
            QVERIFY(OpenDatabase());
            QCOMPARE(count("PRAGMA page_size"), startingPageSize);
        }
        if (compact)
            DatabaseCompact();
        QCOMPARE(count("PRAGMA page_size"), kCataloguePageSize);
        QCOMPARE(count("Select count(*) from tblKaraokeTracks"), 2);
    }

    void failedCompactionRecoversAtOpen() {
        TestWorkspace ws;
        ws.addSongs({"Keep - Me"});
        ScriptedPrompts p;
        // A source that is not there, then a destination that cannot be written:
        // each failure is logged, and the reopening puts the moved file back.
        CloseDatabase();
        QVERIFY(!CompactTheDatabase(WorkingFolder + "missing.mdb", WorkingFolder + "out.mdb"));
        QFile::rename(ws.catalogueFile(), oApplicationPaths->CompactedDatabase());
        QVERIFY(!CompactTheDatabase(oApplicationPaths->CompactedDatabase(), "/proc/kv-cannot-write.mdb"));
        QCOMPARE(TestWorkspace::errorLogRecords(), 2);
        QCOMPARE(TestWorkspace::errorLog().count("KvApp.modMain.CompactTheDatabase"), 2);
        QVERIFY(OpenDatabase());
        QCOMPARE(count("Select count(*) from tblKaraokeTracks"), 1);
    }
};

KV_TEST_CLASS(TestDatabase)
#include "tst_database.moc"
