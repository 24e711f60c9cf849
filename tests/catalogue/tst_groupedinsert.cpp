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
        QTest::addColumn<QString>("rule");  // the rule the refused row breaks
        QTest::addColumn<bool>("orIgnore");
        QTest::newRow("none") << 0 << -1 << "" << false;
        QTest::newRow("one short group") << 3 << -1 << "" << false;
        QTest::newRow("exactly one group") << 4 << -1 << "" << false;
        QTest::newRow("groups and a tail") << 11 << -1 << "" << false;
        QTest::newRow("ignored in a full group") << 11 << 2 << "NOT NULL" << true;
        QTest::newRow("ignored in the tail") << 11 << 9 << "NOT NULL" << true;
        QTest::newRow("a twin ignored") << 11 << 6 << "UNIQUE" << true;
        QTest::newRow("a check ignored") << 11 << 3 << "CHECK" << true;
        QTest::newRow("refused in a full group") << 11 << 5 << "NOT NULL" << false;
        QTest::newRow("refused in the tail") << 11 << 10 << "NOT NULL" << false;
        QTest::newRow("a twin refused") << 11 << 1 << "UNIQUE" << false;
    }
    void rowsLandInOrder() {
        QFETCH(int, rows);
        QFETCH(int, refusedAt);
        QFETCH(QString, rule);
        QFETCH(bool, orIgnore);
        TestWorkspace ws;
        ExecuteSql("CREATE TABLE tblGroups (N INTEGER NOT NULL, Name TEXT UNIQUE, "
                   "Note TEXT CHECK (Note IS NULL OR length(Note) < 3))");
        GroupedInsert insert(NativeHandle(dbConnection()),
                             orIgnore ? "INSERT OR IGNORE INTO tblGroups (N, Name, Note) Values"
                                      : "INSERT INTO tblGroups (N, Name, Note) Values",
                             3, 4);
        QVERIFY(insert.ok());
        bool allTaken = true;
        QStringList expected;
        const auto nameOf = [](int i) { return "name " + QByteArray::number(i) + " ä'\""; };
        for (int i = 0; i < rows; ++i) {
            const bool refused = i == refusedAt;
            const QByteArray name = nameOf(refused && rule == "UNIQUE" ? 0 : i);
            if (refused && rule == "NOT NULL")
                insert.addNull();
            else
                insert.add(i);
            insert.add(name);
            if (refused && rule == "CHECK")
                insert.add("long");
            else
                insert.addNull();
            allTaken = insert.endRow() && allTaken;
            const bool groupRefused = refusedAt >= 0 && !orIgnore && i / 4 == refusedAt / 4;
            if (!refused && !groupRefused)
                expected << QString::number(i) + '|' + QString::fromUtf8(name);
        }
        allTaken = insert.finish() && allTaken;
        QCOMPARE(allTaken, refusedAt < 0 || orIgnore);
        QCOMPARE(!allTaken && insert.error().contains(rule), !allTaken);
        if (!allTaken) {
            // The refused group is there to read again, row by row.
            const int first = refusedAt / 4 * 4;
            QCOMPARE(insert.refusedRows(), qMin(4, rows - first));
            for (int r = 0; r < insert.refusedRows(); ++r) {
                QCOMPARE(insert.refusedInteger(r, 0),
                         first + r == refusedAt && rule == "NOT NULL" ? 0 : first + r);
                QCOMPARE(insert.refusedText(r, 1).toByteArray(),
                         nameOf(first + r == refusedAt && rule == "UNIQUE" ? 0 : first + r));
            }
        }
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
