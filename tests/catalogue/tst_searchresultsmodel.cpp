#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songsearch.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QSignalSpy>
#include <QSqlQuery>
#include <QTest>

namespace {

// Fills the catalogue with `n` songs in one transaction; artists are numbered so
// that their order is known ("Artist 0000", "artist 0001", ... mixed case).
void addNumberedSongs(int n) {
    QSqlDatabase db = dbConnection();
    QVERIFY(db.transaction());
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, DiscName, TrackNo, FileName, "
                       "TrackPath) VALUES (?, ?, 'D', '1', ?, ?)"));
    // Inserted backwards so that the statement's order, not the insert order, shows.
    for (int i = n - 1; i >= 0; --i) {
        const QString artist = (i % 2 ? QStringLiteral("artist ") : QStringLiteral("Artist ")) +
                               QStringLiteral("%1").arg(i, 4, 10, QLatin1Char('0'));
        q.addBindValue(artist);
        q.addBindValue(QStringLiteral("Title %1").arg(i));
        q.addBindValue(artist + QStringLiteral(".zip"));
        q.addBindValue(QStringLiteral("/songs/") + artist + QStringLiteral(".zip"));
        QVERIFY(q.exec());
    }
    QVERIFY(db.commit());
}

} // namespace

class TestSearchResultsModel : public QObject {
    Q_OBJECT

private slots:
    // Blocks of rows in the statement's order (case-blind), and fetchUpTo
    // reading only as far as asked.
    void fetchesInBlocks() {
        TestWorkspace ws;
        addNumberedSongs(600);
        SearchResultsModel model;
        model.setBlockSize(256);
        model.load(dbConnection(), SongSearch::loadAllSql());
        QCOMPARE(model.rowCount(), 256);
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        model.fetchUpTo(299);
        QCOMPARE(model.rowCount(), 300);
        model.fetchUpTo(10);
        QCOMPARE(model.rowCount(), 300);
        model.fetchUpTo(-1);
        QCOMPARE(model.rowCount(), 600);
        QVERIFY(!model.canFetchMore());
        model.fetchMore(); // at the end: nothing happens
        QCOMPARE(inserted.count(), 2);
        for (int r = 0; r < 600; ++r)
            QCOMPARE(model.data(model.index(r, 1)).toString().mid(7),
                     QStringLiteral("%1").arg(r, 4, 10, QLatin1Char('0')));
    }

    // The catalogue may close under an open list (a compaction): the list keeps
    // what it has and reads no more.
    void connectionClosedWhileFetching() {
        ScriptedPrompts boxes;
        TestWorkspace ws;
        addNumberedSongs(300);
        SearchResultsModel model;
        model.setBlockSize(100);
        model.load(dbConnection(), SongSearch::loadAllSql());
        CloseDatabase();
        model.fetchMore();
        QCOMPARE(model.rowCount(), 100);
        QVERIFY(!model.canFetchMore());
        QVERIFY(OpenDatabase());
        model.load(dbConnection(), SongSearch::loadAllSql());
        QCOMPARE(model.rowCount(), 100);
    }
};

KV_TEST_CLASS(TestSearchResultsModel)
#include "tst_searchresultsmodel.moc"
