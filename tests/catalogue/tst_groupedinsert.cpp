#include "catalogue/database.h"
#include "catalogue/groupedinsert.h"
#include "testrunner.h"
#include "workspace.h"

#include <QSqlQuery>
#include <QTest>

class TestGroupedInsert : public QObject {
    Q_OBJECT

private slots:
    // Every row lands once, in order, whatever its place in a group; an "or
    // ignore" statement passes over the refused rows only, a plain one
    // refuses the group that holds one and says why.
    void rowsLandInOrder_data() {
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("refusedAt"); // -1: none
        QTest::addColumn<bool>("orIgnore");
        QTest::newRow("none") << 0 << -1 << false;
        QTest::newRow("one short group") << 3 << -1 << false;
        QTest::newRow("exactly one group") << 4 << -1 << false;
        QTest::newRow("groups and a tail") << 11 << -1 << false;
        QTest::newRow("ignored in a full group") << 11 << 2 << true;
        QTest::newRow("ignored in the tail") << 11 << 9 << true;
        QTest::newRow("refused in a full group") << 11 << 5 << false;
        QTest::newRow("refused in the tail") << 11 << 10 << false;
    }
    void rowsLandInOrder() {
        QFETCH(int, rows);
        QFETCH(int, refusedAt);
        QFETCH(bool, orIgnore);
        TestWorkspace ws;
        ExecuteSql("CREATE TABLE tblGroups (N INTEGER NOT NULL, Name TEXT, Note TEXT)");
        GroupedInsert insert(NativeHandle(dbConnection()),
                             orIgnore ? "INSERT OR IGNORE INTO tblGroups (N, Name, Note) Values"
                                      : "INSERT INTO tblGroups (N, Name, Note) Values",
                             3, 4);
        QVERIFY(insert.ok());
        bool allTaken = true;
        QStringList expected;
        for (int i = 0; i < rows; ++i) {
            const QByteArray name = "name " + QByteArray::number(i) + " ä'\"";
            if (i == refusedAt)
                insert.addNull();
            else
                insert.add(i);
            insert.add(name);
            insert.addNull();
            allTaken = insert.endRow() && allTaken;
            const bool groupRefused = refusedAt >= 0 && !orIgnore && i / 4 == refusedAt / 4;
            if (i != refusedAt && !groupRefused)
                expected << QString::number(i) + '|' + QString::fromUtf8(name);
        }
        allTaken = insert.finish() && allTaken;
        QCOMPARE(allTaken, refusedAt < 0 || orIgnore);
        QCOMPARE(insert.error().contains("NOT NULL"), !allTaken);
        QStringList landed;
        QSqlQuery q = ExecuteSql("SELECT N, Name, Note IS NULL FROM tblGroups ORDER BY rowid");
        while (q.next()) {
            QVERIFY(q.value(2).toBool());
            landed << q.value(0).toString() + '|' + q.value(1).toString();
        }
        QCOMPARE(landed, expected);
        QCOMPARE(insert.inserted(), qint64(expected.size()));
    }
};

KV_TEST_CLASS(TestGroupedInsert)
#include "tst_groupedinsert.moc"
