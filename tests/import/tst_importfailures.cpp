#include "catalogue/database.h"
#include "childprocess.h"
#include "smalldisk.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QFile>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sqlite3.h>
#include <sys/resource.h>

namespace {

void makeSongs(const QString& folder, int count) {
    for (int i = 0; i < count; ++i) {
        QFile f(folder +
                QStringLiteral("/Some Artist Of Many Words - A Rather Long Song Title %1.zip").arg(i));
        QVERIFY(f.open(QIODevice::WriteOnly));
    }
}

qint64 rows() {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks"));
    return q.next() ? q.value(0).toLongLong() : -1;
}

// The number after "new " in the tool's output.
qint64 printedNew(const QByteArray& out) {
    for (const QByteArray& line : out.split('\n'))
        if (line.startsWith("new "))
            return line.mid(4).toLongLong();
    return -1;
}

} // namespace

// An import stops at the first row the catalogue refuses for any reason but a
// duplicate, says what happened, and korvane-tool exits with a failure; the
// count it prints is what the catalogue really holds.
class TestImportFailures : public QObject {
    Q_OBJECT

private slots:
    void init() { TestWorkspace::wipe(); }
    void cleanup() { TestWorkspace::wipe(); }

    // Another program holds the catalogue's write lock: the import gives up
    // at the first file instead of waiting at every one.
    void lockedCatalogueStopsTheImport() {
        TestWorkspace ws;
        CloseDatabase();
        QTemporaryDir songs;
        makeSongs(songs.path(), 10);
        sqlite3* other = nullptr;
        QCOMPARE(sqlite3_open(QFile::encodeName(ws.catalogueFile()).constData(), &other), SQLITE_OK);
        QCOMPARE(sqlite3_exec(other, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr), SQLITE_OK);
        const kvtest::ChildResult r = kvtest::runTool({"import", songs.path(), "--convention", "1"}, 15000);
        sqlite3_exec(other, "ROLLBACK", nullptr, nullptr, nullptr);
        sqlite3_close(other);
        QVERIFY2(r.finished, "the import waited at every file");
        QVERIFY(r.exitCode > 0);
        QVERIFY2(r.err.contains("Import Stopped") && r.err.contains("database is locked"), r.err.constData());
        QCOMPARE(printedNew(r.out), 0);
        QVERIFY(OpenDatabase());
        QCOMPARE(rows(), 0);
    }

    // The disk fills at the first batch: nothing is claimed that was not
    // stored, and the catalogue stays whole. The error log on the same full
    // disk cannot be written, and says so on standard error.
    void fullDiskStopsTheImport() {
        QTemporaryDir songs;
        makeSongs(songs.path(), 4000);
        SmallDisk disk(TestWorkspace::workingFolder(), 256);
        TestWorkspace ws(false);
        std::function<void()> limit;
        if (!disk.mounted()) {
            // Without the right to mount, the child's files are capped in size instead.
            limit = [] {
                const rlimit cap{256 * 1024, 256 * 1024};
                ::setrlimit(RLIMIT_FSIZE, &cap);
                ::signal(SIGXFSZ, SIG_IGN);
            };
        }
        const kvtest::ChildResult r =
            kvtest::runTool({"import", songs.path(), "--convention", "1"}, 60000, {}, limit);
        QVERIFY(r.finished);
        QVERIFY(r.exitCode > 0);
        QVERIFY2(r.err.contains("Import Stopped"), r.err.constData());
        if (disk.mounted())
            QVERIFY2(r.err.contains("database or disk is full") &&
                         r.err.contains("KVError.log cannot be written"),
                     r.err.constData());
        QVERIFY(OpenDatabase());
        QCOMPARE(rows(), printedNew(r.out));
        QSqlQuery check = ExecuteSql(QStringLiteral("PRAGMA integrity_check"));
        QVERIFY(check.next());
        QCOMPARE(check.value(0).toString(), "ok");
        CloseDatabase();
    }
};

KV_TEST_CLASS(TestImportFailures)
#include "tst_importfailures.moc"
