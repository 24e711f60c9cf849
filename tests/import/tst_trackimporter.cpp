#include "catalogue/database.h"
#include "import/importsession.h"
#include "import/importtext.h"
#include "import/importtransaction.h"
#include "import/trackimporter.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QSqlQuery>
#include <QTest>
#include <memory>

namespace {

struct Row {
    QString artist, title, disc, trackNo, fileName, trackPath;
    int kamikaze = 0;
};

QList<Row> rowsWithPath(const QString& path) {
    QSqlQuery q(dbConnection());
    q.prepare(QStringLiteral("SELECT ArtistName, TrackName, DiscName, TrackNo, FileName, TrackPath, Kamikaze "
                             "FROM tblKaraokeTracks WHERE TrackPath = ?"));
    q.addBindValue(path);
    q.exec();
    QList<Row> rows;
    while (q.next())
        rows.append({q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                     q.value(3).toString(), q.value(4).toString(), q.value(5).toString(),
                     q.value(6).toInt()});
    return rows;
}

qint64 trackCount() {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks"));
    return q.next() ? q.value(0).toLongLong() : -1;
}

} // namespace

class TestTrackImporter : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    TrackImporter m_importer;

    int importErrorQuestions() const { return m_prompts->countTitle(QStringLiteral("Import Error")); }

private slots:
    void init() {
        m_ws = std::make_unique<TestWorkspace>();
        m_prompts = std::make_unique<ScriptedPrompts>();
        importSession() = ImportSession{};
        m_importer = TrackImporter();
        m_importer.setEventPump({});
        BeginTrans();
    }
    void cleanup() {
        if (InTransaction())
            RollbackTrans();
        m_prompts.reset();
        m_ws.reset();
    }

    void cleanNamePart_data() {
        QTest::addColumn<QString>("piece");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& piece, const char* expected) {
            QTest::newRow(name) << piece << QString(expected);
        };
        row("blanks trimmed", "  Some Title  ", "Some Title");
        row("listed extension anywhere, any case", "Song.MP3 Mix", "Song Mix");
        row("every listed extension", "A.zip.cdg.mpg.DAT B.mp3", "A B");
        row("unlisted extensions stay", "Title.ogg", "Title.ogg");
        row("divx stays", "Title.divx", "Title.divx");
        row("one leading underscore dropped, others blank", "_My_Song", "My Song");
        row("double leading underscore", "__x", "x");
        row("cut at NUL", QString(QStringLiteral("Abc") + QChar(0) + QStringLiteral("def")), "Abc");
        row("only an extension", " .ZIP ", "");
        // Each extension in one pass, in the list's order: what a removal
        // joins together stays.
        row("a removal joins no new extension", "A.z.zipip", "A.zip");
        row("a later extension's removal joins an earlier one", "A.zi.cdgp", "A.zip");
        row("near misses stay", "A.zi .zop zip. .", "A.zi .zop zip. .");
        row("tabs are not blanks", "\tTitle", "\tTitle");
        row("apostrophes untouched", "Don't", "Don't");
    }
    void cleanNamePart() {
        QFETCH(QString, piece);
        QTEST(CleanNamePart(piece), "expected");
    }

    // One file of each kind of name through each convention: what the row
    // holds, how often the naming question came, and how far ProcessedCount rose.
    void conventions_data() {
        QTest::addColumn<int>("convention");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("disc");
        QTest::addColumn<QString>("trackNo");
        QTest::addColumn<int>("questions");
        QTest::addColumn<int>("processed");

        // tag, convention, file name, artist, title, disc, track number, questions, processed
        const auto row = [](const char* tag, int convention, const char* name, const char* artist,
                            const char* title, const char* disc, const char* trackNo, int questions,
                            int processed) {
            QTest::newRow(tag) << convention << QString::fromUtf8(name) << QString::fromUtf8(artist)
                               << QString::fromUtf8(title) << QString::fromUtf8(disc)
                               << QString::fromUtf8(trackNo) << questions << processed;
        };
        row("0 title - artist", 0, "Title - Artist.zip", "Artist", "Title", "", "", 0, 1);
        row("0 one piece: raw name", 0, "Title.zip", "", "Title.zip", "", "", 0, 1);
        row("0 raw name keeps underscores", 0, "My_Song.zip", "", "My_Song.zip", "", "", 0, 1);
        row("0 apostrophe doubled in fallback", 0, "Don't Stop.zip", "", "Don''t Stop.zip", "", "", 0, 1);
        row("1 one piece", 1, "Title.zip", "", "Title", "", "", 0, 1);
        row("1 three pieces: third dropped", 1, "A - B - C.mp3", "A", "B", "", "", 0, 1);
        row("1 ogg keeps extension", 1, "A - B.ogg", "A", "B.ogg", "", "", 0, 1);
        row("1 mp3 loses extension", 1, "A - B.mp3", "A", "B", "", "", 0, 1);
        row("1 underscores split", 1, "Artist_-_Title.zip", "Artist", "Title", "", "", 0, 1);
        row("1 bare hyphen is no separator", 1, "A-B.zip", "", "A-B", "", "", 0, 1);
        row("1 divx fallback leaves dot", 1, "x.divx", "", "x.", "", "", 0, 1);
        row("1 apostrophes once", 1, "Guns 'n' Roses - Don't Cry.zip", "Guns 'n' Roses", "Don't Cry", "", "",
            0, 1);
        row("2 example", 2, "ABC123-04 - Some Artist - Some_Title.zip", "Some Artist", "Some Title", "ABC123",
            "04", 0, 1);
        row("2 first piece without hyphen", 2, "12 - Artist - Title.zip", "Artist", "12 - Artist - Title.zip",
            "12", "", 1, 2);
        row("2 empty first piece asks twice", 2, " - Artist - Title.zip", "Artist", " - Artist - Title.zip",
            "", "", 2, 3);
        row("2 two pieces: raw name", 2, "Don't - Stop.zip", "", "Don''t - Stop.zip", "", "", 0, 1);
        row("3 disk-track title artist", 3, "SC01-02 - A Title - An Artist.zip", "An Artist", "A Title",
            "SC01", "02", 0, 1);
        row("3 fallback: working name less 4", 3, "Title_-_Artist.zip", "", "Title - Artist", "", "", 0, 1);
        row("4 all in one", 4, "Some_Song's - Thing.mp3", "", "Some_Song's - Thing", "", "", 0, 1);
        row("5 title artist disk-track", 5, "A Title - An Artist - SC01-02.zip", "An Artist", "A Title",
            "SC01", "02", 0, 1);
        row("5 disk without track", 5, "A Title - An Artist - SC01.zip", "An Artist",
            "A Title - An Artist - SC01.zip", "SC01", "", 1, 2);
        row("6 artist title disk-track", 6, "An Artist - A Title - SC01-02.mp3", "An Artist", "A Title",
            "SC01", "02", 0, 1);
        row("7 example", 7, "AB-123-04 - A Title - An Artist.mp3", "An Artist", "A Title", "AB-123", "04", 0,
            1);
        row("7 only one hyphen", 7, "AB-123 - A Title - An Artist.mp3", "An Artist",
            "AB-123 - A Title - An Artist.mp3", "AB-123", "", 1, 2);
        row("7 empty first piece asks twice", 7, " - T - A.zip", "A", " - T - A.zip", "", "", 2, 3);
        row("8 disk-no-track artist title", 8, "AB-123-04 - An Artist - A Title.zip", "An Artist", "A Title",
            "AB-123", "04", 0, 1);
        row("9 number artist title", 9, "05 - An Artist - A Title.zip", "An Artist", "A Title", "", "05", 0,
            1);
        row("9 behind the hyphen is lost", 9, "05-XY - An Artist - A Title.zip", "An Artist", "A Title", "",
            "05", 0, 1);
        row("9 four pieces: fallback", 9, "05 - A - B - C.zip", "", "05 - A - B - C", "", "", 0, 1);
        row("10 number title artist", 10, "05 - A Title - An Artist.zip", "An Artist", "A Title", "", "05", 0,
            1);
        row("11 four pieces", 11, "ID1 - SC01-02 - An Artist - A Title.zip", "An Artist", "A Title",
            "SC01-02", "", 0, 1);
        row("11 five pieces: fifth dropped", 11, "ID1 - SC01 - Ar - Ti - Extra.zip", "Ar", "Ti", "SC01", "",
            0, 1);
        row("11 three pieces fails on the title", 11, "ID1 - SC01 - An Artist.zip", "An Artist",
            "ID1 - SC01 - An Artist.zip", "SC01", "", 1, 2);
        row("11 two pieces: fallback", 11, "A - B.zip", "", "A - B", "", "", 0, 1);
        row("12 disc title artist", 12, "SC01 - A Title - An Artist.zip", "An Artist", "A Title", "SC01", "",
            0, 1);
        row("12 four pieces: fallback", 12, "ID - SC01-02 - Ar - Ti.zip", "", "ID - SC01-02 - Ar - Ti", "",
            "", 0, 1);
    }
    void conventions() {
        QFETCH(int, convention);
        QFETCH(QString, name);

        const QString path = QStringLiteral("/music/it's here/") + name;
        m_importer.ConventionNumber = convention;
        m_importer.AddToImportDatabase(path, false);

        const QList<Row> rows = rowsWithPath(path);
        QCOMPARE(rows.size(), 1);
        const Row& r = rows.first();
        QTEST(r.artist, "artist");
        QTEST(r.title, "title");
        QTEST(r.disc, "disc");
        QTEST(r.trackNo, "trackNo");
        QCOMPARE(r.fileName, name);
        QCOMPARE(r.kamikaze, 0);
        QTEST(importErrorQuestions(), "questions");
        QTEST(m_importer.ProcessedCount, "processed");
        QCOMPARE(importSession().NewTrackCount, 1);
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    void questionTextAndAnswers_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("questionsForTwoFiles");
        QTest::newRow("Yes keeps asking") << int(Prompts::Yes) << 2;
        QTest::newRow("No silences") << int(Prompts::No) << 1;
    }
    void questionTextAndAnswers() {
        QFETCH(int, answer);
        QFETCH(int, questionsForTwoFiles);
        m_prompts->answer(answer);
        m_prompts->answer(answer);
        m_importer.ConventionNumber = 2;
        m_importer.AddToImportDatabase(QStringLiteral("/m/12 - Some_Artist - T.zip"), false);
        m_importer.AddToImportDatabase(QStringLiteral("/m/13 - Some_Artist - T.zip"), false);
        QCOMPARE(importErrorQuestions(), questionsForTwoFiles);
        const ScriptedPrompts::Call& c = m_prompts->calls.first();
        QCOMPARE(c.style, int(Prompts::YesNo));
        QCOMPARE(c.text, QStringLiteral("Error On Import, Please check the following file for correct naming "
                                        "convention: \nFile Name: 12 - Some Artist - T.zip\n"
                                        "Do you wish to be notified each time this happens?"));
        QCOMPARE(importSession().NotificationsOff, answer == Prompts::No);
        QCOMPARE(trackCount(), 2);
        // The flag outlives the importer: a later import stays silent too.
        TrackImporter later;
        later.setEventPump({});
        later.ConventionNumber = 2;
        later.AddToImportDatabase(QStringLiteral("/m/14 - A - T.zip"), false);
        QCOMPARE(importErrorQuestions(), questionsForTwoFiles + (answer == Prompts::Yes ? 1 : 0));
    }

    void duplicateIsSilent() {
        m_importer.ConventionNumber = 1;
        const QString path = QStringLiteral("/m/Artist - Title.zip");
        m_importer.AddToImportDatabase(path, false);
        m_importer.AddToImportDatabase(path, true);
        QCOMPARE(rowsWithPath(path).size(), 1);
        QCOMPARE(rowsWithPath(path).first().kamikaze, 0);
        QCOMPARE(m_importer.ProcessedCount, 2);
        QCOMPARE(importSession().NewTrackCount, 1);
        QVERIFY(m_prompts->calls.isEmpty());
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
        // A path differing only in case is another file; a new one marked for
        // kamikaze is stored as yes.
        m_importer.AddToImportDatabase(QStringLiteral("/m/artist - title.zip"), true);
        QCOMPARE(trackCount(), 2);
        QCOMPARE(rowsWithPath(QStringLiteral("/m/artist - title.zip")).first().kamikaze, -1);
    }

    // A failure that is neither a missing piece nor a duplicate is logged
    // under the routine's name without a box, and the counters stay.
    void otherErrorIsLogged() {
        m_importer.ConventionNumber = 4;
        m_importer.AddToImportDatabase(QStringLiteral("/m/abc"), false);
        QCOMPARE(trackCount(), 0);
        QCOMPARE(m_importer.ProcessedCount, 0);
        QCOMPARE(importSession().NewTrackCount, 0);
        QCOMPARE(TestWorkspace::errorLogRecords(), 1);
        QVERIFY(TestWorkspace::errorLog().contains(QStringLiteral("\nAddToImportDatabase\n")));
        QCOMPARE(m_prompts->calls.size(), 0);
    }

    void databaseFailureIsLogged() {
        m_importer.ConventionNumber = 1;
        RollbackTrans();
        CloseDatabase();
        m_importer.AddToImportDatabase(QStringLiteral("/m/A - B.zip"), false);
        QCOMPARE(TestWorkspace::errorLogRecords(), 1);
        QCOMPARE(m_importer.ProcessedCount, 0);
        QVERIFY(OpenDatabase());
    }

    // Every 3000th new row ends a batch: rolling back afterwards keeps the
    // committed rows only. A duplicate does not commit, even as the 3000th.
    void commitEvery3000Rows_data() {
        QTest::addColumn<int>("newRows");
        QTest::addColumn<bool>("duplicateLast");
        QTest::addColumn<int>("processed");
        QTest::addColumn<int>("kept");
        QTest::newRow("3001 new rows") << 3001 << false << 3001 << 3000;
        QTest::newRow("2999 and a duplicate") << 2999 << true << 3000 << 0;
    }
    void commitEvery3000Rows() {
        QFETCH(int, newRows);
        QFETCH(bool, duplicateLast);
        m_importer.ConventionNumber = 1;
        for (int i = 1; i <= newRows; ++i)
            m_importer.AddToImportDatabase(QStringLiteral("/c/A - T%1.zip").arg(i), false);
        if (duplicateLast)
            m_importer.AddToImportDatabase(QStringLiteral("/c/A - T1.zip"), false);
        QTEST(m_importer.ProcessedCount, "processed");
        QVERIFY(InTransaction());
        RollbackTrans();
        QTEST(int(trackCount()), "kept");
        if (!duplicateLast) {
            QCOMPARE(rowsWithPath(QStringLiteral("/c/A - T3000.zip")).size(), 1);
            QCOMPARE(rowsWithPath(QStringLiteral("/c/A - T3001.zip")).size(), 0);
        }
    }
};

KV_TEST_CLASS(TestTrackImporter)
#include "tst_trackimporter.moc"
