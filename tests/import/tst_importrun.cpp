#include "catalogue/database.h"
#include "core/globals.h"
#include "import/filepatternmatcher.h"
#include "import/importrun.h"
#include "import/importsession.h"
#include "import/importtransaction.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

namespace {

void touch(const QString& path) {
    QDir().mkpath(QFileInfo(path).path());
    QFile f(path);
    QVERIFY2(f.open(QIODevice::WriteOnly), qPrintable(path));
}

QStringList catalogue(const QString& column) {
    QSqlQuery q =
        ExecuteSql(QStringLiteral("SELECT %1 FROM tblKaraokeTracks ORDER BY TrackPath").arg(column));
    QStringList out;
    while (q.next())
        out << q.value(0).toString();
    return out;
}

qint64 trackCount(const QString& where = QStringLiteral("1")) {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks WHERE ") + where);
    return q.next() ? q.value(0).toLongLong() : -1;
}

} // namespace

class TestFilePattern : public QObject {
    Q_OBJECT
private slots:
    void matches_data() {
        QTest::addColumn<QString>("patterns");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("expected");
        const auto row = [](const char* tag, const QString& patterns, const char* name, bool expected) {
            QTest::newRow(tag) << patterns << QString::fromUtf8(name) << expected;
        };
        const QString songs = ImportRun::kSongFilePattern;
        row("zip", songs, "A - B.zip", true);
        row("upper case extension", songs, "A - B.ZIP", true);
        row("mixed case divx", songs, "x.DivX", true);
        row("last in list", songs, "clip.mp4", true);
        row("cdg not taken", songs, "A - B.cdg", false);
        row("no extension", songs, "README", false);
        row("extension inside name", songs, "A.zip.bak", false);
        row("longer extension", songs, "A.mp34", false);
        row("non-ascii name", songs, "Ünïcödé - Mötley.MP3", true);
        row("question mark", "track??.mp3", "TRACK01.MP3", true);
        row("question mark needs a character", "track??.mp3", "track1.mp3", false);
        row("star in the middle", "a*b*c", "aXXbYYc", true);
        row("star backtracks", "*ab", "aab", true);
        row("star backtracks fail", "*ab*c", "abab", false);
        row("star dot star takes anything", "*.*", "noext", true);
        row("exact name", "Song.zip", "song.ZIP", true);
        row("blanks around patterns", "  *.ogg ;*.wma  ", "a.WMA", true);
        row("empty list", "", "a.zip", false);
        row("non-ascii letters compare case-blind", QString::fromUtf8("*.ÄÖ"), "x.äö", true);
    }
    void matches() {
        QFETCH(QString, patterns);
        QFETCH(QString, name);
        QTEST(FilePatternMatcher(patterns).matches(name), "expected");
        QTEST(MatchesFilePattern(name, patterns), "expected");
    }
};

class TestImportRun : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<QTemporaryDir> m_tree;
    std::unique_ptr<ImportRun> m_run;

    QString tree(const QString& rel = QString()) const { return m_tree->path() + QLatin1Char('/') + rel; }

private slots:
    void init() {
        m_ws = std::make_unique<TestWorkspace>();
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_tree = std::make_unique<QTemporaryDir>();
        importSession() = ImportSession{};
        m_run = std::make_unique<ImportRun>();
        m_run->setSettlePause(0);
    }
    void cleanup() {
        m_run.reset();
        m_tree.reset();
        m_prompts.reset();
        m_ws.reset();
    }

    // The walk over a tree with hidden entries, a link that loops, files of
    // other kinds and names that SQL and file systems find awkward. The folder
    // is given without its trailing separator.
    void walkTakesSongFilesOnly() {
        const QString longName = QString(251, QLatin1Char('x')) + QStringLiteral(".zip");
        QCOMPARE(longName.toUtf8().size(), 255);
        const QStringList wanted = {
            QStringLiteral("Artist - Song.zip"),
            QStringLiteral("sub/It's \"Quoted\" - 100% _under_, a: b.mp3"),
            QStringLiteral("sub/deeper/Ünïcödé Bänd - Mötley Sóng.MP3"),
            QStringLiteral("sub/deeper/") + longName,
            QStringLiteral("clip.DIVX"),
        };
        for (const QString& f : wanted)
            touch(tree(f));
        for (const char* f : {".hidden.zip", ".mp3", ".hiddendir/Hidden - Song.zip", "sub/A - B.cdg", "noext",
                              "sub/notes.txt"})
            touch(tree(QString::fromUtf8(f)));
        QVERIFY(QFile::link(tree(), tree(QStringLiteral("sub/deeper/loop"))));
        QVERIFY(QFile::link(tree(QStringLiteral("nowhere")), tree(QStringLiteral("dangling"))));

        m_run->GetTracks(m_tree->path(), 1);

        QStringList expectedPaths;
        for (const QString& f : wanted)
            expectedPaths << tree(f);
        expectedPaths.sort();
        QCOMPARE(catalogue(QStringLiteral("TrackPath")), expectedPaths);
        QCOMPARE(m_run->processedCount(), wanted.size());
        QCOMPARE(importSession().NewTrackCount, wanted.size());
        QVERIFY(m_prompts->calls.isEmpty());
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);

        const QStringList titles = catalogue(QStringLiteral("TrackName"));
        QVERIFY(titles.contains(QStringLiteral("100%  under , a: b")));
        QVERIFY(catalogue(QStringLiteral("ArtistName")).contains(QStringLiteral("It's \"Quoted\"")));
        QVERIFY(titles.contains(QStringLiteral("Mötley Sóng")));
        QVERIFY(catalogue(QStringLiteral("FileName")).contains(longName));
    }

    void linkedFolderWalkedOnce() {
        touch(tree(QStringLiteral("real/A - B.zip")));
        QVERIFY(QFile::link(tree(QStringLiteral("real")), tree(QStringLiteral("alias"))));
        m_run->GetTracks(tree(), 1);
        QCOMPARE(trackCount(), 1);
    }

    void runSignalsAndCounts() {
        for (int i = 0; i < 10; ++i)
            touch(tree(QStringLiteral("A - Song %1.zip").arg(i)));
        QSignalSpy status(m_run.get(), &ImportRun::statusChanged);
        QSignalSpy captions(m_run.get(), &ImportRun::buttonCaptionChanged);
        QSignalSpy total(m_run.get(), &ImportRun::totalCountChanged);
        QSignalSpy busy(m_run.get(), &ImportRun::busyChanged);

        m_run->GetTracks(tree(), 1);
        QCOMPARE(status.last().first().toString(), QStringLiteral("10 new tracks were imported."));
        QCOMPARE(captions.first().first().toString(), QStringLiteral("Cancel Import"));
        QCOMPARE(captions.last().first().toString(), QStringLiteral("Find Tracks"));
        QCOMPARE(total.last().first().toString(),
                 QStringLiteral("Total count of tracks in the database is 10"));
        QCOMPARE(busy.first().first().toBool(), true);
        QCOMPARE(busy.last().first().toBool(), false);
        QVERIFY(!m_run->ImportRunning);
        // The run compacted the catalogue and opened it again.
        QVERIFY(IsDatabaseOpen());
        QVERIFY(!QFile::exists(WorkingFolder + QStringLiteral("kvSongListTemp.mdb")));

        // Nothing new: the sum of this program run stays.
        m_run->GetTracks(tree(), 1);
        QCOMPARE(status.last().first().toString(), QStringLiteral("10 new tracks were imported."));
        QCOMPARE(m_run->processedCount(), 10);

        for (int i = 0; i < 10; ++i)
            touch(tree(QStringLiteral("more/B - Song %1.zip").arg(i)));
        m_run->GetTracks(tree(), 1);
        QCOMPARE(status.last().first().toString(), QStringLiteral("20 new tracks were imported."));
        QCOMPARE(trackCount(), 20);
    }

    void invalidFolder_data() {
        QTest::addColumn<QString>("folder");
        QTest::newRow("missing") << QStringLiteral("/no/such/folder");
        QTest::newRow("empty") << QString();
        QTest::newRow("a file") << QStringLiteral("FILE");
    }
    void invalidFolder() {
        QFETCH(QString, folder);
        if (folder == QLatin1String("FILE")) {
            touch(tree(QStringLiteral("A - B.zip")));
            folder = tree(QStringLiteral("A - B.zip"));
        }
        QSignalSpy status(m_run.get(), &ImportRun::statusChanged);
        QSignalSpy total(m_run.get(), &ImportRun::totalCountChanged);
        m_run->GetTracks(folder, 1);
        QCOMPARE(m_prompts->boxTitles(), QStringList{QStringLiteral("Invalid Folder")});
        QCOMPARE(status.last().first().toString(), QStringLiteral("0 new tracks were imported."));
        QCOMPARE(total.size(), 1);
        QCOMPARE(trackCount(), 0);
    }

    // A cancel before the first 3000 rolls back every row of the run, yet the
    // label counts what had been inserted.
    void cancelRollsBackOpenBatch_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("rowsLeft");
        QTest::newRow("OK cancels") << int(Prompts::Ok) << 0;
        QTest::newRow("Cancel goes on") << int(Prompts::Cancel) << 30;
    }
    void cancelRollsBackOpenBatch() {
        QFETCH(int, answer);
        QFETCH(int, rowsLeft);
        for (int i = 0; i < 30; ++i)
            touch(tree(QStringLiteral("A - Song %1.zip").arg(i)));
        int pumps = 0;
        bool clicked = false;
        // The host clicks the button again while the fifth row is in.
        m_run->setEventPump([&] {
            if (++pumps == 5 && !clicked) {
                clicked = true;
                m_prompts->answer(answer);
                m_run->GetTracks(tree(), 1);
            }
        });
        QSignalSpy status(m_run.get(), &ImportRun::statusChanged);
        m_run->GetTracks(tree(), 1);
        QVERIFY(clicked);
        QCOMPARE(m_prompts->countTitle(QStringLiteral("Cancel Import")), 1);
        QCOMPARE(m_prompts->calls.first().style, int(Prompts::OkCancel | Prompts::Question));
        QCOMPARE(trackCount(), rowsLeft);
        // The inner click and the run itself each end with the sum.
        const QString expected = answer == Prompts::Ok ? QStringLiteral("5 new tracks were imported.")
                                                       : QStringLiteral("30 new tracks were imported.");
        QCOMPARE(status.last().first().toString(), expected);
        QVERIFY(!m_run->CancelRequested);
        QVERIFY(!InTransaction());
    }

    // Between two subfolders the run reads as not running, so a press of the
    // button there starts a second run inside the first. The inner run finds
    // the outer run's rows as duplicates, leaves the compaction to the outer
    // run, and the catalogue stays guarded until the outer run ends.
    void pressBetweenFoldersNestsARun() {
        for (const char* folder : {"a", "b"})
            for (int i = 0; i < 100; ++i)
                touch(tree(QStringLiteral("%1/A - Song %2.zip").arg(QLatin1String(folder)).arg(i)));
        QSignalSpy running(m_run.get(), &ImportRun::runningChanged);
        QSignalSpy captions(m_run.get(), &ImportRun::buttonCaptionChanged);
        bool pressed = false;
        bool guardedInside = false;
        m_run->setEventPump([&] {
            if (!pressed && !m_run->ImportRunning) {
                pressed = true;
                m_run->GetTracks(tree(), 1);
                guardedInside = running.size() == 1 && InTransaction();
            }
        });
        const qint32 before = importSession().NewTrackCount;
        m_run->GetTracks(tree(), 1);
        QVERIFY(pressed);
        QVERIFY(guardedInside);
        QCOMPARE(captions.count(QVariantList{QStringLiteral("Cancel Import")}), 2);
        QCOMPARE(running.size(), 2);
        QCOMPARE(running.last().first().toBool(), false);
        QCOMPARE(trackCount(), 200);
        QCOMPARE(importSession().NewTrackCount - before, 200);
        QVERIFY(!InTransaction());
        QVERIFY(IsDatabaseOpen());
    }

    // A folder that goes away while the walk is on: the box, then the walk
    // goes on with the rest.
    void vanishedFolderReported() {
        touch(tree(QStringLiteral("one/A - B.zip")));
        touch(tree(QStringLiteral("two/A - B.zip")));
        bool removed = false;
        m_run->setEventPump([&] {
            if (removed || trackCount() != 1)
                return;
            removed = true;
            // Whichever of the two folders is not yet walked disappears.
            const bool inOne =
                catalogue(QStringLiteral("TrackPath")).first().startsWith(tree(QStringLiteral("one/")));
            QDir(tree(inOne ? QStringLiteral("two") : QStringLiteral("one"))).removeRecursively();
        });
        BeginTrans();
        m_run->SearchForFiles(tree());
        CommitTrans();
        QVERIFY(removed);
        QCOMPARE(trackCount(), 1);
        QCOMPARE(m_prompts->boxTitles(), QStringList{QStringLiteral("Application Error")});
        QVERIFY(m_prompts->calls.first().text.contains(
            QStringLiteral("in KvApp.frmOptions.SearchForFiles at line")));
        QVERIFY(!m_run->ImportRunning);
    }

    void missingRootReported() {
        m_run->SearchForFiles(tree(QStringLiteral("gone/")));
        QCOMPARE(m_prompts->countTitle(QStringLiteral("Application Error")), 1);
        QVERIFY(m_prompts->calls.first().text.contains(tree(QStringLiteral("gone/"))));
    }

    void kamikazeReadForEachFile() {
        for (int i = 0; i < 4; ++i)
            touch(tree(QStringLiteral("A - Song %1.zip").arg(i)));
        int asked = 0;
        m_run->setKamikazeSource([&] { return ++asked % 2 == 0; });
        m_run->GetTracks(tree(), 1);
        QCOMPARE(asked, 4);
        QCOMPARE(trackCount(QStringLiteral("Kamikaze = -1")), 2);
    }
};

KV_TEST_CLASS(TestFilePattern)
KV_TEST_CLASS(TestImportRun)
#include "tst_importrun.moc"
