#include "catalogue/database.h"
#include "childprocess.h"
#include "core/globals.h"
#include "filerights.h"
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

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

    // The walk over a tree with hidden entries, a link that loops, a dangling link, files of
    // other kinds and names that SQL and file systems find awkward. The folder
    // is given without its trailing separator.
    void walkTakesSongFilesOnly() {
        const QStringList wanted = {
            QStringLiteral("Artist - Song.zip"),
            QStringLiteral("sub/It's \"Quoted\" - 100% _under_, a: b.mp3"),
            QStringLiteral("sub/deeper/Ünïcödé Bänd - Mötley Sóng.MP3"),
            QStringLiteral("sub/deeper/") + QString(251, QLatin1Char('x')) +
                QStringLiteral(".zip"), // 255 bytes
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
        QVERIFY(m_prompts->calls.isEmpty());
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
        QVERIFY(catalogue(QStringLiteral("ArtistName")).contains(QStringLiteral("It's \"Quoted\"")));
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

    // Names that are not UTF-8 (Latin-1 names from old Windows discs) have no
    // text that opens the file again: they are left out, never stored under a
    // path that opens nothing, and each one is named to the host as it would
    // read it, by the box at the end of the run and by the tool's output.
    void namesThatAreNotUtf8AreLeftOutAndNamed() {
        const QByteArray root = QFile::encodeName(tree());
        for (const QByteArray& rel : {QByteArray("A - Caf\xe9.mp3"), QByteArray("A - Caf\xe8.mp3"),
                                      QByteArray("Don\x92t - Stop.zip"), QByteArray("Disc \xe9/B - C.mp3")}) {
            if (rel.contains('/'))
                QVERIFY(::mkdir((root + rel.left(rel.indexOf('/'))).constData(), 0700) == 0);
            const int fd = ::open((root + rel).constData(), O_CREAT | O_WRONLY, 0600);
            QVERIFY(fd >= 0);
            ::close(fd);
        }
        touch(tree(QStringLiteral("Plain - Song.mp3")));
        const QStringList named = {QStringLiteral("A - Café.mp3"), QStringLiteral("A - Cafè.mp3"),
                                   QStringLiteral("Disc é/B - C.mp3"),
                                   QStringLiteral("Don\u2019t - Stop.zip")};

        m_run->GetTracks(tree(), 1);
        for (const QString& path : catalogue(QStringLiteral("TrackPath")))
            QVERIFY2(QFile::exists(path), qPrintable(path));
        QCOMPARE(catalogue(QStringLiteral("TrackPath")),
                 QStringList{tree(QStringLiteral("Plain - Song.mp3"))});
        QCOMPARE(m_prompts->boxTitles(), QStringList{QStringLiteral("Files Not Imported")});
        for (const QString& name : named)
            QVERIFY2(m_prompts->calls[0].text.contains(tree(name)), qPrintable(m_prompts->calls[0].text));

        CloseDatabase();
        const kvtest::ChildResult tool = kvtest::runTool({"import", tree(), "--convention", "1"});
        QCOMPARE(tool.exitCode, 0);
        QStringList listed;
        for (const QByteArray& line : tool.out.split('\n'))
            if (line.startsWith("not imported"))
                listed << QString::fromUtf8(line.mid(line.indexOf(": ") + 2));
        listed.sort();
        QStringList expected;
        for (const QString& name : named)
            expected << tree(name);
        expected.sort();
        QCOMPARE(listed, expected);
        QVERIFY(OpenDatabase());
    }

    // A folder given as a relative or untidy path is stored under its
    // absolute clean path, so that a later import of the same folder by its
    // absolute path finds every song already there.
    void toolStoresAbsoluteCleanPaths() {
        touch(tree(QStringLiteral("songs/A - Song.zip")));
        CloseDatabase(); // the tool opens the catalogue itself
        const kvtest::ChildResult first =
            kvtest::runTool({"import", "./songs/../songs/", "--convention", "1"}, 60000, tree());
        QCOMPARE(first.exitCode, 0);
        const kvtest::ChildResult again = kvtest::runTool({"import", tree("songs"), "--convention", "1"});
        QCOMPARE(again.exitCode, 0);
        QVERIFY2(again.out.contains("new 0"), again.out.constData());
        QVERIFY(OpenDatabase());
        QCOMPARE(catalogue(QStringLiteral("TrackPath")),
                 QStringList{tree(QStringLiteral("songs/A - Song.zip"))});
    }

    // A folder that cannot be opened is reported, and the run still ends:
    // the next press of the button imports rather than asking to cancel.
    void unreadableFolderEndsTheRun() {
        touch(tree(QStringLiteral("locked/A - B.zip")));
        touch(tree(QStringLiteral("open/C - D.zip")));
        QVERIFY(QFile::setPermissions(tree(QStringLiteral("locked")), QFileDevice::Permissions()));
        {
            WithoutFileRights rights;
            m_run->GetTracks(tree(QStringLiteral("locked")), 1);
        }
        QVERIFY(QFile::setPermissions(tree(QStringLiteral("locked")), QFileDevice::ReadOwner |
                                                                          QFileDevice::WriteOwner |
                                                                          QFileDevice::ExeOwner));
        QCOMPARE(m_prompts->boxTitles(), QStringList{QStringLiteral("Application Error")});
        QVERIFY(!m_run->ImportRunning);
        m_run->GetTracks(tree(QStringLiteral("open")), 1);
        QCOMPARE(m_prompts->countTitle(QStringLiteral("Cancel Import")), 0);
        QCOMPARE(trackCount(), 1);
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
        QVERIFY(!m_run->ImportRunning);
    }
};

KV_TEST_CLASS(TestImportRun)
#include "tst_importrun.moc"
