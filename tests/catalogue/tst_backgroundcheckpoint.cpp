#include "catalogue/backgroundcheckpoint.h"
#include "catalogue/database.h"
#include "testrunner.h"
#include "workspace.h"

#include <QFileInfo>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <sqlite3.h>

namespace {

// A catalogue-like file with a write-ahead log that nothing folds by itself.
struct LoggedFile {
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("t.db"));
    sqlite3* db = nullptr;

    LoggedFile() {
        sqlite3_open(path.toUtf8().constData(), &db);
        exec("PRAGMA journal_mode = WAL");
        exec("PRAGMA wal_autocheckpoint = 0");
        exec("CREATE TABLE t (v BLOB)");
    }
    ~LoggedFile() { sqlite3_close(db); }
    bool exec(const char* sql) { return sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK; }
    // One commit of 100 rows of 1,000 bytes: some 25 pages of log.
    bool commitRows() {
        return exec("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100) "
                    "INSERT INTO t SELECT randomblob(1000) FROM n");
    }
    qint64 fileSize() const { return QFileInfo(path).size(); }
    qint64 rows() {
        sqlite3_stmt* st = nullptr;
        sqlite3_prepare_v2(db, "SELECT count(*) FROM t", -1, &st, nullptr);
        const qint64 n = sqlite3_step(st) == SQLITE_ROW ? sqlite3_column_int64(st, 0) : -1;
        sqlite3_finalize(st);
        return n;
    }
};

int synchronousLevel() {
    QSqlQuery q = ExecuteSql(QStringLiteral("PRAGMA synchronous"));
    return q.next() ? q.value(0).toInt() : -1;
}

} // namespace

class TestBackgroundCheckpoint : public QObject {
    Q_OBJECT

private slots:
    // While the writer commits, the log reaches the file itself, on the
    // other thread; every row is there afterwards, and the writer's commit
    // hook is its own again.
    void foldsWhileTheWriterGoesOn() {
        LoggedFile f;
        const qint64 emptySize = f.fileSize();
        {
            BackgroundCheckpoint folding(f.db, 20);
            for (int i = 0; i < 40; ++i)
                QVERIFY(f.commitRows());
            QTRY_VERIFY(folding.folds() > 0);
            // The folds copied the pages: the file holds most of the rows.
            QTRY_VERIFY(f.fileSize() > emptySize + 2'000'000);
        }
        QVERIFY(sqlite3_wal_hook(f.db, nullptr, nullptr) == nullptr);
        QVERIFY(f.commitRows());
        QCOMPARE(f.rows(), 4100);
    }

    // The writer done: its hook is its own again at once, and one last fold
    // follows on the thread, with the rows in the file.
    void lastFoldOnceTheWriterIsDone() {
        LoggedFile f;
        const qint64 emptySize = f.fileSize();
        BackgroundCheckpoint folding(f.db, 1'000'000); // no fold while it writes
        for (int i = 0; i < 10; ++i)
            QVERIFY(f.commitRows());
        QCOMPARE(folding.folds(), 0);
        folding.lastFoldThenEnd();
        QVERIFY(sqlite3_wal_hook(f.db, nullptr, nullptr) == nullptr);
        QTRY_COMPARE(folding.folds(), 1);
        QVERIFY(f.fileSize() > emptySize + 900'000);
        QCOMPARE(f.rows(), 1000);
    }

    // A connection without a file, and a writer closed under it, leave
    // nothing running and nothing hooked.
    void withoutAFileOrAfterTheWriterCloses() {
        sqlite3* memory = nullptr;
        sqlite3_open(":memory:", &memory);
        {
            BackgroundCheckpoint folding(memory, 1);
            QCOMPARE(sqlite3_exec(memory, "CREATE TABLE t (v); INSERT INTO t VALUES (1)", nullptr, nullptr,
                                  nullptr),
                     SQLITE_OK);
            QCOMPARE(folding.folds(), 0);
        }
        sqlite3_close(memory);

        auto f = std::make_unique<LoggedFile>();
        BackgroundCheckpoint folding(f->db, 1);
        QVERIFY(f->commitRows());
        QTRY_VERIFY(folding.folds() > 0);
        folding.writerClosed();
        f.reset();
    }

    // Bulk writes nest: an inner one ending leaves the outer one's way of
    // writing in place until the outer one ends.
    void bulkWritesNest() {
        TestWorkspace ws;
        QCOMPARE(synchronousLevel(), 2);
        {
            const BulkWrites outer;
            QCOMPARE(synchronousLevel(), 1);
            { const BulkWrites inner; }
            QCOMPARE(synchronousLevel(), 1);
        }
        QCOMPARE(synchronousLevel(), 2);
    }
};

KV_TEST_CLASS(TestBackgroundCheckpoint)
#include "tst_backgroundcheckpoint.moc"
