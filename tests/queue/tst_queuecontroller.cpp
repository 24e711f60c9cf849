#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "queue/queuemodel.h"
#include "queue/queuestore.h"
#include "queue/ui/queuecontroller.h"
#include "queuefakes.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QHeaderView>
#include <QMimeData>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>

using namespace queuetest;

namespace {

// The first five are the queue buttons' indexes.
enum Action {
    ActMoveToTop,
    ActMoveUp,
    ActRemove,
    ActMoveDown,
    ActMoveToBottom,
    ActChangeSinger,
    ActAddFromSearch,
    ActKamikaze,
    ActAddFromFile,
    ActSortByHeader
};

// The queue's controller over a list view, its dialogs scripted.
struct ControllerRig {
    ScriptedPrompts prompts;
    TestWorkspace ws;
    QTableView list;
    FakePerformerPrompt dialogs;
    FakeHook hook;
    QueueController queue;
    ControllerRig() {
        queue.attachList(&list);
        queue.setPerformerPrompt(&dialogs);
        queue.setKeyboardHook(&hook);
    }
};

} // namespace

class TestQueueController : public QObject {
    Q_OBJECT
    std::unique_ptr<ControllerRig> m_rig;

    QueueModel& model() { return *m_rig->queue.model(); }

    // A saved queue of four rows, as start-up brings it back.
    void startWithSavedQueue() {
        QueueModel seed;
        addRows(seed, {"A", "B", "C", "D"});
        QVERIFY(SaveQueue(seed));
        m_rig->queue.RestoreQueue();
    }

private slots:
    void init() {
        Cfg = AppSettings{};
        m_rig = std::make_unique<ControllerRig>();
    }
    void cleanup() { m_rig.reset(); }

    // Which changes reach tblQueue at once, and which wait for the next save.
    void savingRules_data() {
        QTest::addColumn<int>("action");
        QTest::addColumn<QStringList>("order");
        QTest::addColumn<bool>("saves");
        QTest::newRow("MoveToTop") << int(ActMoveToTop) << QStringList{"C", "A", "B", "D"} << true;
        QTest::newRow("MoveUp") << int(ActMoveUp) << QStringList{"A", "C", "B", "D"} << false;
        QTest::newRow("RemoveFromQueue") << int(ActRemove) << QStringList{"A", "B", "D"} << true;
        QTest::newRow("MoveDown") << int(ActMoveDown) << QStringList{"A", "B", "D", "C"} << false;
        QTest::newRow("MoveToBottom") << int(ActMoveToBottom) << QStringList{"A", "B", "D", "C"} << false;
        QTest::newRow("change singer") << int(ActChangeSinger) << QStringList{"A", "B", "Zoe", "D"} << true;
        QTest::newRow("add from search")
            << int(ActAddFromSearch) << QStringList{"A", "B", "C", "D", "Eve"} << true;
        QTest::newRow("kamikaze") << int(ActKamikaze) << QStringList{"A", "B", "C", "D", "Kim"} << true;
        QTest::newRow("add from file")
            << int(ActAddFromFile) << QStringList{"A", "B", "C", "D", "Fay"} << false;
        QTest::newRow("sort by header") << int(ActSortByHeader) << QStringList{"D", "C", "B", "A"} << false;
    }
    void savingRules() {
        QFETCH(int, action);
        QFETCH(bool, saves);
        startWithSavedQueue();
        const QStringList before = savedRows();
        m_rig->queue.setSelectedIndex(2);
        const QList<qint64> ids = m_rig->ws.addSongs({"Kami - Kaze"});
        switch (Action(action)) {
        default: // the five queue buttons
            m_rig->queue.btnQueueOptions_Click(action);
            break;
        case ActChangeSinger:
            m_rig->dialogs.ok(QStringLiteral("Zoe"), 2);
            m_rig->queue.ChangeSingerOnQueueRow();
            break;
        case ActAddFromSearch:
            m_rig->dialogs.ok(QStringLiteral("Eve"), 1);
            m_rig->queue.AddSongToQueue(ids.first());
            break;
        case ActKamikaze:
            ExecuteSql(QStringLiteral("UPDATE tblKaraokeTracks SET Kamikaze = 1"));
            m_rig->dialogs.ok(QStringLiteral("Kim"), 0);
            m_rig->queue.LoadKamikazeTrack();
            break;
        case ActAddFromFile:
            m_rig->dialogs.fileAnswers.enqueue(
                {QStringLiteral("Art"), QStringLiteral("Tit"), QStringLiteral("Fay"), 2, false});
            m_rig->queue.AddSongFromFileSystem(QStringLiteral("/music/x.mp3"));
            break;
        case ActSortByHeader:
            m_rig->queue.setSortingAllowed(true);
            m_rig->list.horizontalHeader()->setSortIndicator(QueueModel::ColPerformer, Qt::DescendingOrder);
            break;
        }
        QTEST(performers(model()), "order");
        QCOMPARE(savedRows(), saves ? modelRows(model()) : before);
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // The moves at the edges of the list and with nothing selected.
    void movesAtEdges_data() {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("selected");
        QTest::addColumn<QStringList>("order");
        QTest::addColumn<int>("selectedAfter");
        QTest::newRow("down on last row") << 3 << 3 << QStringList{"A", "B", "C", "D"} << 3;
        for (int b = 0; b < 5; ++b)
            QTest::addRow("button %d with nothing selected", b)
                << b << -1 << QStringList{"A", "B", "C", "D"} << -1;
        QTest::newRow("unknown button index") << 5 << 1 << QStringList{"A", "B", "C", "D"} << 1;
    }
    void movesAtEdges() {
        QFETCH(int, button);
        QFETCH(int, selected);
        startWithSavedQueue();
        m_rig->queue.setSelectedIndex(selected);
        m_rig->queue.btnQueueOptions_Click(button);
        QTEST(performers(model()), "order");
        QTEST(m_rig->queue.selectedIndex(), "selectedAfter");
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    void clearQueueAsksFirst() {
        startWithSavedQueue();
        QPushButton btnClearQueue;
        m_rig->queue.attachClearQueueButton(&btnClearQueue);
        for (int answer : {int(Prompts::Cancel), int(Prompts::Ok)}) {
            m_rig->prompts.answer(answer);
            btnClearQueue.click();
            const int left = answer == Prompts::Ok ? 0 : 4;
            QCOMPARE((QList<int>{model().rowCount(), int(savedRows().size())}), (QList<int>{left, left}));
        }
    }

    void detailsOfRows() {
        model().addItem({"9", "Sam", "Art", "Song", "-3"}, QStringLiteral("/s/a.zip"));
        const auto details = [this](int row) {
            const QueueEntryDetails d = m_rig->queue.GetDetailsFromRow(row);
            return QStringList{d.PerformerName, d.ArtistName, d.TrackName, d.TrackPath,
                               QString::number(d.Key)};
        };
        QCOMPARE(details(0), QStringList({"Sam", "Art", "Song", "/s/a.zip", "-3"}));
        // A row that is not there: empty details, logged, no crash.
        QCOMPARE(details(1), QStringList({"", "", "", "", "0"}));
        QCOMPARE(TestWorkspace::errorLog().count(QStringLiteral("KvApp.frmMain.GetDetailsFromRow")), 1);
    }

    void dropPositions_data() {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("gap");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("to the top") << 3 << 0 << QStringList{"D", "A", "B", "C"};
        QTest::newRow("below the last") << 0 << -1 << QStringList{"B", "C", "D", "A"};
    }
    // A drop moves the row and saves the queue.
    void dropPositions() {
        QFETCH(int, from);
        QFETCH(int, gap);
        startWithSavedQueue();
        QSignalSpy dropped(&model(), &QueueModel::itemDragDropped);
        std::unique_ptr<QMimeData> data(model().mimeData({model().index(from, 2)}));
        QVERIFY(model().canDropMimeData(data.get(), Qt::MoveAction, gap, 0, {}));
        model().dropMimeData(data.get(), Qt::MoveAction, gap, 0, {});
        QTEST(performers(model()), "order");
        QCOMPARE(dropped.size(), 1);
        QCOMPARE(savedRows(), modelRows(model()));
    }
};

KV_TEST_CLASS(TestQueueController)
#include "tst_queuecontroller.moc"
