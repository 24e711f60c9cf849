#include "catalogue/backgroundrows.h"
#include "catalogue/database.h"
#include "catalogue/sqlitestatement.h"
#include "testrunner.h"
#include "workspace.h"

#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTest>

namespace {

constexpr char kRows[] =
    "SELECT KaraokeTrackID, ArtistName, DiscName FROM tblKaraokeTracks ORDER BY ArtistName";

// Every row as text, NULL shown as "<null>", read with `next`.
template <typename Reader, typename Next> QStringList allRows(Reader& rows, Next next) {
    QStringList out;
    while (next()) {
        QString line = QString::number(rows.integer(0));
        for (int c = 1; c < 3; ++c)
            line += QLatin1Char('|') + (rows.isNull(c) ? QStringLiteral("<null>")
                                                       : QString::fromUtf8(rows.text(c).toByteArray()));
        out << line;
    }
    return out;
}

} // namespace

class TestBackgroundRows : public QObject {
    Q_OBJECT

private slots:
    // The rows read away from the caller are the statement's, in its order,
    // across many batches; inside an open transaction they are read on the
    // spot, uncommitted rows included.
    void sameRowsAsTheStatement_data() {
        QTest::addColumn<int>("songs");
        QTest::addColumn<bool>("inTransaction");
        QTest::newRow("none") << 0 << false;
        QTest::newRow("one batch") << 10 << false;
        QTest::newRow("many batches") << 5000 << false;
        QTest::newRow("inside a transaction") << 5000 << true;
    }
    void sameRowsAsTheStatement() {
        QFETCH(int, songs);
        QFETCH(bool, inTransaction);
        TestWorkspace ws;
        QStringList names;
        for (int i = 0; i < songs; ++i)
            names << QStringLiteral("Ärtist %1 - Title").arg((i * 7919) % songs, 5, 10, QLatin1Char('0'));
        ws.addSongs(names);
        // Every third song without a disc, to carry NULLs.
        ExecuteSql("UPDATE tblKaraokeTracks SET DiscName = CASE WHEN KaraokeTrackID % 3 = 0 THEN NULL "
                   "ELSE 'D' || KaraokeTrackID END");
        if (inTransaction) {
            QVERIFY(dbConnection().transaction());
            ws.addSongs({"Zed - Uncommitted"});
        }
        sqlite3* db = NativeHandle(dbConnection());
        SqliteStatement plain(db, kRows);
        const QStringList expected = allRows(plain, [&] { return plain.next(); });
        plain.reset();
        BackgroundRows rows(db, kRows);
        QCOMPARE(rows.inBackground(), !inTransaction);
        QCOMPARE(allRows(rows, [&] { return rows.next([] { return true; }); }), expected);
        QVERIFY(!rows.failed());
        QCOMPARE(expected.size(), songs + (inTransaction ? 1 : 0));
        if (inTransaction)
            QVERIFY(dbConnection().commit());
    }

    // A caller that stops waiting, or drops the rows before asking for one,
    // ends the reading, a sort under way too; a statement that cannot run
    // says so.
    void stopsAndFailures_data() {
        QTest::addColumn<QByteArray>("sql");
        QTest::addColumn<int>("looks"); // -1: dropped before the first row
        QTest::addColumn<bool>("failed");
        const QByteArray longSort("WITH RECURSIVE n(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM n WHERE x < "
                                  "50000000) SELECT x, 'a', 'b' FROM n ORDER BY -x");
        QTest::newRow("dropped before its first row") << longSort << -1 << false;
        QTest::newRow("stopped in a long sort") << longSort << 3 << false;
        QTest::newRow("no such table") << QByteArray("SELECT 1, 2, 3 FROM tblMissing") << 1000 << true;
    }
    void stopsAndFailures() {
        QFETCH(QByteArray, sql);
        QFETCH(int, looks);
        QFETCH(bool, failed);
        TestWorkspace ws;
        QElapsedTimer t;
        t.start();
        {
            BackgroundRows rows(NativeHandle(dbConnection()), sql);
            if (looks >= 0) {
                int looked = 0;
                QVERIFY(!rows.next([&] { return ++looked < looks; }));
                QCOMPARE(rows.failed(), failed);
            }
        }
        // Fifty million rows take far longer than this to sort.
        QVERIFY(t.elapsed() < 5000);
    }
};

KV_TEST_CLASS(TestBackgroundRows)
#include "tst_backgroundrows.moc"
