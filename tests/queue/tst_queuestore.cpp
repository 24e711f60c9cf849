#include "catalogue/database.h"
#include "queue/queuemodel.h"
#include "queue/queuestore.h"
#include "queuefakes.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QTest>

using namespace queuetest;

class TestQueueStore : public QObject {
    Q_OBJECT
    struct Rig {
        ScriptedPrompts prompts;
        TestWorkspace ws;
    };
    std::unique_ptr<Rig> m_rig;

private slots:
    void init() { m_rig = std::make_unique<Rig>(); }
    void cleanup() { m_rig.reset(); }

    void roundTripsAwkwardTexts_data() {
        QTest::addColumn<QString>("performer");
        QTest::addColumn<QString>("key");
        QTest::addColumn<qint64>("savedKey");
        const auto row = [](const char* name, const QString& performer, const char* key, qint64 savedKey) {
            QTest::newRow(name) << performer << QString(key) << savedKey;
        };
        row("apostrophes", "Sinéad O'Connor's ''pal''", "3", 3);
        row("sql-looking", "x'); DROP TABLE tblQueue; --", "1", 1);
        row("key not a number", "Bob", "three", 0);
        row("key with blanks", "Bob", " 4 ", 4);
    }
    void roundTripsAwkwardTexts() {
        QFETCH(QString, performer);
        QFETCH(QString, key);
        QFETCH(qint64, savedKey);
        QueueModel m;
        m.addItem({QString(), performer, performer + QStringLiteral("A"), QStringLiteral("T'x"), key},
                  QStringLiteral("/songs/it's ü.zip"));
        QVERIFY(SaveQueue(m));
        QCOMPARE(
            savedRows(),
            QStringList{QStringLiteral("0|%1|%1A|T'x|%2|/songs/it's ü.zip").arg(performer).arg(savedKey)});
        QueueModel back;
        RestoreQueue(back);
        QCOMPARE(modelRows(back), savedRows());
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // Rows written by other hands: NULL cells, gaps and disorder in QueuePos.
    void restoresNullsAndGapsInOrder() {
        ExecuteSql(QStringLiteral("INSERT INTO tblQueue VALUES (7, 'Seventh', 'A7', 'T7', 2, '/s/7.zip')"));
        ExecuteSql(QStringLiteral("INSERT INTO tblQueue VALUES (2, NULL, NULL, NULL, NULL, NULL)"));
        ExecuteSql(
            QStringLiteral("INSERT INTO tblQueue VALUES (40, 'Fortieth', 'A40', 'T40', -1, '/s/40.zip')"));
        QueueModel m;
        RestoreQueue(m);
        QCOMPARE(performers(m), QStringList({"", "Seventh", "Fortieth"}));
        // The hidden cell keeps the stored number; a NULL reads as empty.
        QCOMPARE(m.cellText(0, QueueModel::ColNo), QStringLiteral("2"));

        // The next save numbers the rows from 0 without gaps, whatever cell 0 says.
        QVERIFY(SaveQueue(m));
        QCOMPARE(savedRows(),
                 QStringList({"0||||0|", "1|Seventh|A7|T7|2|/s/7.zip", "2|Fortieth|A40|T40|-1|/s/40.zip"}));
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    void failedInsertKeepsOldSnapshot() {
        QueueModel m;
        addRows(m, {"A", "B", "C"});
        QVERIFY(SaveQueue(m));
        const QStringList before = savedRows();
        ExecuteSql(
            QStringLiteral("CREATE TRIGGER refuseBoom BEFORE INSERT ON tblQueue WHEN NEW.PerformerName = "
                           "'Boom' BEGIN SELECT RAISE(ABORT, 'refused by test'); END"));
        addRows(m, {"Boom"});
        m.moveItem(3, 0);
        QVERIFY(!SaveQueue(m));
        QCOMPARE(savedRows(), before);
        QCOMPARE(TestWorkspace::errorLogRecords(), 1);
        QVERIFY(TestWorkspace::errorLog().contains(QStringLiteral("refused by test")));
        QCOMPARE(m_rig->prompts.countTitle(QStringLiteral("Korvane Error")), 1);
        // The list is untouched, and the next save that can succeed repairs the table.
        QCOMPARE(m.rowCount(), 4);
        m.removeItem(0);
        m.moveItem(2, 0);
        QVERIFY(SaveQueue(m));
        QCOMPARE(savedRows(), modelRows(m));
    }

    void restoreFailureIsLogged() {
        ExecuteSql(QStringLiteral("DROP TABLE tblQueue"));
        QueueModel m;
        addRows(m, {"A"});
        RestoreQueue(m);
        QVERIFY(!SaveQueue(m));
        QCOMPARE(m.rowCount(), 1);
        QCOMPARE(TestWorkspace::errorLog().count(QStringLiteral("KvApp.frmMain.RestoreQueue")), 1);
        QCOMPARE(TestWorkspace::errorLogRecords(), 2);
    }
};

KV_TEST_CLASS(TestQueueStore)
#include "tst_queuestore.moc"
