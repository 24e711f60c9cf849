#include "catalogue/compactrowstore.h"
#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songsearch.h"
#include "core/kverror.h"
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
    void fetchesInBlocks() {
        TestWorkspace ws;
        addNumberedSongs(600);
        SearchResultsModel model;
        model.setBlockSize(256);
        model.load(dbConnection(), SongSearch::loadAllSql());
        QCOMPARE(model.rowCount(), 256);
        QVERIFY(model.canFetchMore());
        QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
        model.fetchMore();
        QCOMPARE(model.rowCount(), 512);
        model.fetchMore();
        QCOMPARE(model.rowCount(), 600);
        QVERIFY(!model.canFetchMore());
        model.fetchMore(); // at the end: nothing happens
        QCOMPARE(model.rowCount(), 600);
        QCOMPARE(inserted.count(), 2);
        // The statement's order, case-blind, across the blocks.
        for (int r = 0; r < 600; ++r)
            QCOMPARE(model.data(model.index(r, 1)).toString().mid(7),
                     QStringLiteral("%1").arg(r, 4, 10, QLatin1Char('0')));
    }

    void fetchUpTo_data() {
        QTest::addColumn<int>("upTo");
        QTest::addColumn<int>("rows");
        QTest::newRow("inside the first block") << 10 << 100;
        QTest::newRow("a later row") << 349 << 350;
        QTest::newRow("past the end") << 5000 << 1000;
        QTest::newRow("to the end") << -1 << 1000;
    }
    void fetchUpTo() {
        QFETCH(int, upTo);
        QFETCH(int, rows);
        TestWorkspace ws;
        addNumberedSongs(1000);
        SearchResultsModel model;
        model.setBlockSize(100);
        model.load(dbConnection(), SongSearch::loadAllSql());
        model.fetchUpTo(upTo);
        QCOMPARE(model.rowCount(), rows);
        QCOMPARE(model.canFetchMore(), rows < 1000);
    }

    void cells() {
        TestWorkspace ws;
        const auto ids = ws.addSongs({QStringLiteral("Zoë - Über"), QStringLiteral("ABBA - Waterloo")});
        SearchResultsModel model;
        model.load(dbConnection(), SongSearch::loadAllSql());
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.trackId(0), ids[1]);
        QCOMPARE(model.data(model.index(0, 0)).toLongLong(), ids[1]);
        QCOMPARE(model.data(model.index(1, 1)).toString(), QStringLiteral("Zoë"));
        QCOMPARE(model.data(model.index(1, 2)).toString(), QStringLiteral("Über"));
        QCOMPARE(model.data(model.index(1, 3)).toString(), QStringLiteral("DISC"));
        QCOMPARE(model.data(model.index(1, 4)).toString(), QStringLiteral("01"));
    }

    void rowEdits() {
        TestWorkspace ws;
        const auto ids =
            ws.addSongs({QStringLiteral("A - One"), QStringLiteral("B - Two"), QStringLiteral("C - Three")});
        SearchResultsModel model;
        model.load(dbConnection(), SongSearch::loadAllSql());
        model.setCellText(1, 1, QStringLiteral("Two"));
        model.setCellText(1, 2, QStringLiteral("B"));
        QCOMPARE(model.data(model.index(1, 1)).toString(), QStringLiteral("Two"));
        QCOMPARE(model.data(model.index(1, 2)).toString(), QStringLiteral("B"));
        QCOMPARE(model.trackId(1), ids[1]);
        model.removeTrackRow(0);
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.trackId(0), ids[1]);
        QCOMPARE(model.trackId(1), ids[2]);
        QVERIFY_THROWS_EXCEPTION(KvError, model.trackId(-1));
        QVERIFY_THROWS_EXCEPTION(KvError, model.trackId(2));
    }

    void failingStatementLeavesItEmpty() {
        TestWorkspace ws;
        ws.addSongs({QStringLiteral("A - One")});
        SearchResultsModel model;
        model.load(dbConnection(), SongSearch::loadAllSql());
        QCOMPARE(model.rowCount(), 1);
        QString description;
        try {
            model.load(dbConnection(), QStringLiteral("Select Nonsense From tblKaraokeTracks;"));
        } catch (const KvError& e) {
            description = e.description();
        }
        QVERIFY2(description.contains(QStringLiteral("Nonsense")), qPrintable(description));
        QCOMPARE(model.rowCount(), 0);
        QVERIFY(!model.canFetchMore());
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

    void compactStore_data() {
        QTest::addColumn<qint64>("id");
        QTest::addColumn<QString>("text");
        QTest::newRow("plain") << qint64(1) << "ABBA";
        QTest::newRow("empty") << qint64(0) << "";
        QTest::newRow("largest id") << std::numeric_limits<qint64>::max() << "y";
        QTest::newRow("smallest id") << std::numeric_limits<qint64>::min() << "z";
        QTest::newRow("not latin") << qint64(300) << QString::fromUtf8("Björk – 東京 🎤");
        QTest::newRow("larger than a block") << qint64(7) << QString(3 << 20, QLatin1Char('q'));
    }
    void compactStore() {
        QFETCH(qint64, id);
        QFETCH(QString, text);
        CompactRowStore store;
        store.append(11, {QStringLiteral("before"), {}, {}, QStringLiteral("b")});
        store.append(id, {text, QStringLiteral("t2"), text, QString()});
        store.append(12, {QStringLiteral("after"), {}, {}, QStringLiteral("a")});
        QCOMPARE(store.size(), 3);
        QCOMPARE(store.id(1), id);
        QCOMPARE(store.text(1, 0), text);
        QCOMPARE(store.text(1, 1), QStringLiteral("t2"));
        QCOMPARE(store.text(1, 2), text);
        QCOMPARE(store.text(1, 3), QString());
        QCOMPARE(store.text(2, 0), QStringLiteral("after"));
        QCOMPARE(store.text(0, 3), QStringLiteral("b"));
        store.replace(1, {QStringLiteral("new"), text, {}, {}});
        QCOMPARE(store.id(1), id);
        QCOMPARE(store.text(1, 1), text);
        store.removeAt(0);
        QCOMPARE(store.id(0), id);
        QCOMPARE(store.id(1), qint64(12));
    }
};

KV_TEST_CLASS(TestSearchResultsModel)
#include "tst_searchresultsmodel.moc"
