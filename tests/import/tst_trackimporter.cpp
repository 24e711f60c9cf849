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

#include <algorithm>
#include <memory>

namespace {

// The rows stored for `path`, each as "artist|title|disc|track number|file name|kamikaze".
QStringList rowsWithPath(const QString& path) {
    QSqlQuery q(dbConnection());
    q.prepare(QStringLiteral("SELECT ArtistName, TrackName, DiscName, TrackNo, FileName, Kamikaze "
                             "FROM tblKaraokeTracks WHERE TrackPath = ?"));
    q.addBindValue(path);
    q.exec();
    QStringList rows;
    while (q.next()) {
        QStringList cells;
        for (int i = 0; i < 6; ++i)
            cells << q.value(i).toString();
        rows << cells.join('|');
    }
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

    // One file of each kind of name through each convention: what the row
    // holds and how often the naming question came. A name in ASCII is cut
    // as bytes, any other as text: each row comes again with letters beyond
    // ASCII in it.
    void conventions_data() {
        QTest::addColumn<int>("convention");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("fields"); // artist|title|disc|track number
        QTest::addColumn<int>("questions");

        // tag, convention, file name, artist, title, disc, track number, questions
        const auto row = [](const char* tag, int convention, const char* name, const char* artist,
                            const char* title, const char* disc, const char* trackNo, int questions) {
            const QString fields = QStringList{artist, title, disc, trackNo}.join('|');
            QTest::newRow(tag) << convention << QString::fromUtf8(name) << fields << questions;
            const auto beyondAscii = [](QString s) {
                return s.replace(QLatin1Char('A'), QStringLiteral("Ä"))
                    .replace(QLatin1Char('o'), QStringLiteral("ö"));
            };
            const QString text = beyondAscii(QString::fromUtf8(name));
            QVERIFY(text != QString::fromUtf8(name));
            QTest::newRow((QByteArray(tag) + " (as text)").constData())
                << convention << text << beyondAscii(fields) << questions;
        };
        row("0 title - artist", 0, "Title - Artist.zip", "Artist", "Title", "", "", 0);
        row("0 apostrophe doubled in fallback", 0, "Don't Stop.zip", "", "Don''t Stop.zip", "", "", 0);
        row("1 three pieces: third dropped", 1, "A - B - C.mp3", "A", "B", "", "", 0);
        row("1 underscores split", 1, "Artist_-_Title.zip", "Artist", "Title", "", "", 0);
        row("1 apostrophes once", 1, "Guns 'n' Roses - Don't Cry.zip", "Guns 'n' Roses", "Don't Cry", "", "",
            0);
        row("2 example", 2, "ABC123-04 - Some Artist - Some_Title.zip", "Some Artist", "Some Title", "ABC123",
            "04", 0);
        row("2 first piece without hyphen", 2, "12 - Artist - Title.zip", "Artist", "12 - Artist - Title.zip",
            "12", "", 1);
        row("2 two pieces: raw name", 2, "Don't - Stop.zip", "", "Don''t - Stop.zip", "", "", 0);
        row("3 disk-track title artist", 3, "SC01-02 - A Title - An Artist.zip", "An Artist", "A Title",
            "SC01", "02", 0);
        row("3 fallback: working name less 4", 3, "Title_-_Artist.zip", "", "Title - Artist", "", "", 0);
        row("4 all in one", 4, "Some_Song's - Thing.mp3", "", "Some_Song's - Thing", "", "", 0);
        row("5 title artist disk-track", 5, "A Title - An Artist - SC01-02.zip", "An Artist", "A Title",
            "SC01", "02", 0);
        row("5 disk without track", 5, "A Title - An Artist - SC01.zip", "An Artist",
            "A Title - An Artist - SC01.zip", "SC01", "", 1);
        row("6 artist title disk-track", 6, "An Artist - A Title - SC01-02.mp3", "An Artist", "A Title",
            "SC01", "02", 0);
        row("7 example", 7, "AB-123-04 - A Title - An Artist.mp3", "An Artist", "A Title", "AB-123", "04", 0);
        row("7 empty first piece asks twice", 7, " - T - A.zip", "A", " - T - A.zip", "", "", 2);
        row("8 disk-no-track artist title", 8, "AB-123-04 - An Artist - A Title.zip", "An Artist", "A Title",
            "AB-123", "04", 0);
        row("9 number artist title", 9, "05 - An Artist - A Title.zip", "An Artist", "A Title", "", "05", 0);
        row("9 four pieces: fallback", 9, "05 - A - B - C.zip", "", "05 - A - B - C", "", "", 0);
        row("10 number title artist", 10, "05 - A Title - An Artist.zip", "An Artist", "A Title", "", "05",
            0);
        row("11 four pieces", 11, "ID1 - SC01-02 - An Artist - A Title.zip", "An Artist", "A Title",
            "SC01-02", "", 0);
        row("11 three pieces fails on the title", 11, "ID1 - SC01 - An Artist.zip", "An Artist",
            "ID1 - SC01 - An Artist.zip", "SC01", "", 1);
        row("11 two pieces: fallback", 11, "A - B.zip", "", "A - B", "", "", 0);
        row("12 disc title artist", 12, "SC01 - A Title - An Artist.zip", "An Artist", "A Title", "SC01", "",
            0);
        row("12 four pieces: fallback", 12, "ID - SC01-02 - Ar - Ti.zip", "", "ID - SC01-02 - Ar - Ti", "",
            "", 0);
    }
    void conventions() {
        QFETCH(int, convention);
        QFETCH(QString, name);

        const QString path = QStringLiteral("/music/it's here/") + name;
        m_importer.ConventionNumber = convention;
        m_importer.AddToImportDatabase(path, false);

        QFETCH(QString, fields);
        QFETCH(int, questions);
        QCOMPARE(rowsWithPath(path), QStringList{fields + '|' + name + "|0"});
        // A value the name does not give is empty text, never NULL.
        QSqlQuery nulls =
            ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks WHERE ArtistName IS NULL "
                                      "OR TrackName IS NULL OR DiscName IS NULL OR TrackNo IS NULL"));
        QVERIFY(nulls.next());
        QCOMPARE(nulls.value(0).toInt(), 0);
        QCOMPARE(importErrorQuestions(), questions);
        QCOMPARE(m_importer.ProcessedCount, questions + 1); // each question counts the file once more
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
    }

    void duplicateIsSilent() {
        m_importer.ConventionNumber = 1;
        const QString path = QStringLiteral("/m/Artist - Title.zip");
        m_importer.AddToImportDatabase(path, false);
        m_importer.AddToImportDatabase(path, true);
        QCOMPARE(rowsWithPath(path).size(), 1);
        QCOMPARE((QList<int>{m_importer.ProcessedCount, importSession().NewTrackCount}), (QList<int>{2, 1}));
        QVERIFY(m_prompts->calls.isEmpty() && TestWorkspace::errorLog().isEmpty());
        // A path differing only in case is another file; a new one marked for
        // kamikaze is stored as yes.
        m_importer.AddToImportDatabase(QStringLiteral("/m/artist - title.zip"), true);
        QCOMPARE(trackCount(), 2);
        QVERIFY(rowsWithPath(QStringLiteral("/m/artist - title.zip")).first().endsWith("|-1"));
    }

    // A failure that is neither a missing piece nor a duplicate is logged
    // under the routine's name without a box, and the counters stay.
    void otherErrorIsLogged() {
        m_importer.ConventionNumber = 4;
        m_importer.AddToImportDatabase(QStringLiteral("/m/abc"), false);
        QCOMPARE((QList<qint64>{trackCount(), importSession().NewTrackCount, m_prompts->calls.size()}),
                 (QList<qint64>{0, 0, 0}));
        QCOMPARE(TestWorkspace::errorLog().count(QStringLiteral("\nAddToImportDatabase\n")), 1);
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

    // Rows grouped many to a statement end as they would one by one: the
    // same counts, the same commits (a duplicate as the 3000th does not
    // commit), and a refused row stops the run at its own file, with every
    // row before it in.
    // A piece's value in UTF-8, made on the short way where it can be, is the
    // cleaned text's.
    void cleanPieceInUtf8_data() {
        QTest::addColumn<QString>("piece");
        QTest::addColumn<QString>("value");
        const auto row = [](const char* tag, const QString& piece, const char* value) {
            QTest::newRow(tag) << piece << QString::fromUtf8(value);
        };
        row("plain", QStringLiteral("Artist"), "Artist");
        row("blanks around", QStringLiteral("  Artist  "), "Artist");
        row("leading underscore", QStringLiteral("_Artist"), "Artist");
        row("underscore then blank", QStringLiteral("_ Artist"), "Artist");
        row("inner underscores", QStringLiteral("An_Artist"), "An Artist");
        row("extension at the end", QStringLiteral("Title.mp3"), "Title");
        row("extension in capitals", QStringLiteral("Title .MP3"), "Title");
        row("two extensions", QStringLiteral("Title.mp3.zip"), "Title");
        row("extension inside", QStringLiteral("A.Mp3B"), "AB");
        row("other extension", QStringLiteral("Title.ogg"), "Title.ogg");
        row("dot of no extension", QStringLiteral("Mr. Big"), "Mr. Big");
        row("short of an extension", QStringLiteral("Title.mp"), "Title.mp");
        row("only an extension", QStringLiteral(".zip"), "");
        row("NUL ends it", QStringLiteral("Ti") + QChar(0) + QStringLiteral("tle.mp3"), "Ti");
        row("accents", QStringLiteral("Beyoncé Knowles.cdg"), "Beyoncé Knowles");
        row("apostrophe kept single", QStringLiteral("Don't.zip"), "Don't");
    }
    void cleanPieceInUtf8() {
        QFETCH(QString, piece);
        QFETCH(QString, value);
        QCOMPARE(CleanNamePart(piece), value);
        QCOMPARE(CleanNamePartUtf8(piece), value.toUtf8());
        // A piece in ASCII is cleaned as bytes too.
        if (std::all_of(piece.cbegin(), piece.cend(), [](QChar c) { return c.unicode() < 0x80; })) {
            const QByteArray ascii = piece.toLatin1();
            QCOMPARE(CleanAsciiNamePart(ascii), value.toUtf8());
        }
    }

    // The rows go in with the catalogue's Yes/No trigger off, which must be on
    // again whenever anything else may write: at the caller's pump, and once
    // the grouping ends. A Yes/No column set to 1 then reads -1.
    void yesNoTriggerOnBetweenGroups_data() {
        QTest::addColumn<bool>("callersPump");
        QTest::newRow("caller's pump") << true;
        QTest::newRow("looks now and then") << false;
    }
    void yesNoTriggerOnBetweenGroups() {
        QFETCH(bool, callersPump);
        const auto setErrorOfFirst = [] {
            ExecuteSql(QStringLiteral("UPDATE tblKaraokeTracks SET Error = 1 WHERE TrackName = 'T1'"));
            QSqlQuery q =
                ExecuteSql(QStringLiteral("SELECT Error FROM tblKaraokeTracks WHERE TrackName = 'T1'"));
            return q.next() ? q.value(0).toInt() : 0;
        };
        TrackImporter grouped;
        grouped.ConventionNumber = 1;
        int pumps = 0;
        int wrongAtPump = 0;
        if (callersPump)
            grouped.setEventPump([&] {
                ++pumps;
                if (setErrorOfFirst() != -1)
                    ++wrongAtPump;
            });
        grouped.setGrouping(true);
        for (int i = 1; i <= 60; ++i)
            grouped.AddToImportDatabase(QStringLiteral("/c/A - T%1.zip").arg(i), i % 2 == 0);
        grouped.setGrouping(false);
        QCOMPARE(pumps, callersPump ? 60 : 0);
        QCOMPARE(wrongAtPump, 0);
        QCOMPARE(setErrorOfFirst(), -1);
        QCOMPARE(rowsWithPath(QStringLiteral("/c/A - T2.zip")), QStringList{"A|T2|||A - T2.zip|-1"});
        QCOMPARE(int(trackCount()), 60);
    }

    void groupedRowsAsOneByOne_data() {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("duplicateAt");
        QTest::addColumn<int>("refusedAt");
        QTest::addColumn<int>("newTracks");
        QTest::addColumn<int>("keptAfterRollback");
        QTest::newRow("a group and a part") << 45 << 0 << 0 << 45 << 0;
        QTest::newRow("past a batch") << 3040 << 0 << 0 << 3040 << 3000;
        QTest::newRow("duplicates inside groups") << 100 << 7 << 0 << 86 << 0;
        QTest::newRow("a duplicate ends the batch") << 3000 << 3000 << 0 << 2999 << 0;
        QTest::newRow("a refused row") << 200 << 0 << 40 << 39 << 0;
        QTest::newRow("a refused row after a batch") << 3100 << 0 << 3050 << 3049 << 3000;
    }
    void groupedRowsAsOneByOne() {
        QFETCH(int, rows);
        QFETCH(int, duplicateAt);
        QFETCH(int, refusedAt);
        QFETCH(int, newTracks);
        if (refusedAt > 0)
            QVERIFY(
                QSqlQuery(dbConnection())
                    .exec(QStringLiteral("CREATE TEMP TRIGGER refuse BEFORE INSERT ON tblKaraokeTracks "
                                         "WHEN NEW.TrackName = 'T%1' BEGIN SELECT RAISE(ABORT, 'refused'); "
                                         "END")
                              .arg(refusedAt)));
        TrackImporter grouped; // with its own looks at the events, which allow groups
        grouped.ConventionNumber = 1;
        grouped.setGrouping(true);
        for (int i = 1; i <= rows && grouped.StopReason.isEmpty(); ++i) {
            // Every `duplicateAt`th file is the one before it again.
            const int n = duplicateAt > 0 && i % duplicateAt == 0 ? i - 1 : i;
            grouped.AddToImportDatabase(QStringLiteral("/c/A - T%1.zip").arg(n), false);
        }
        grouped.setGrouping(false);
        if (refusedAt > 0) {
            QCOMPARE(grouped.StopReason, QStringLiteral("refused\nFile: /c/A - T%1.zip").arg(refusedAt));
        } else {
            QCOMPARE(grouped.ProcessedCount, rows);
            QCOMPARE(grouped.StopReason, QString());
        }
        QCOMPARE(int(trackCount()), newTracks);
        QCOMPARE(importSession().NewTrackCount, newTracks);
        if (InTransaction())
            RollbackTrans();
        QTEST(int(trackCount()), "keptAfterRollback");
    }
};

KV_TEST_CLASS(TestTrackImporter)
#include "tst_trackimporter.moc"
