#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "queue/queuecontroller.h"
#include "queue/queuemodel.h"
#include "queue/queuestore.h"
#include "queuefakes.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QAction>
#include <QHeaderView>
#include <QMenu>
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
    ActSortByHeader,
    ActSortingOn,
};

} // namespace

class TestQueueController : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<QTableView> m_list;
    std::unique_ptr<QueueController> m_queue;
    FakePerformerPrompt m_dialogs;
    FakeHook m_hook;

    QueueModel& model() { return *m_queue->model(); }
    static QString storedWidths() {
        return settingsfile::readText(QStringLiteral("QueueColumns"), QString());
    }

    // A saved queue of four rows, as start-up brings it back.
    void startWithSavedQueue() {
        QueueModel seed;
        addRows(seed, {"A", "B", "C", "D"});
        QVERIFY(SaveQueue(seed));
        m_queue->RestoreQueue();
        QCOMPARE(performers(model()), QStringList({"A", "B", "C", "D"}));
    }

private slots:
    void init() {
        Cfg = AppSettings{};
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>();
        m_list = std::make_unique<QTableView>();
        m_list->setObjectName(QStringLiteral("OsenXPListBox1"));
        m_queue = std::make_unique<QueueController>();
        m_queue->attachList(m_list.get());
        m_queue->setPerformerPrompt(&m_dialogs);
        m_queue->setKeyboardHook(&m_hook);
        m_dialogs = FakePerformerPrompt{};
        m_hook = FakeHook{};
    }
    void cleanup() {
        m_queue.reset();
        m_list.reset();
        m_ws.reset();
        m_prompts.reset();
    }

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
        // Switching sorting on names no column, so it does not reorder the queue.
        QTest::newRow("sorting on after a move")
            << int(ActSortingOn) << QStringList{"A", "C", "B", "D"} << false;
    }
    void savingRules() {
        QFETCH(int, action);
        QFETCH(bool, saves);
        startWithSavedQueue();
        const QStringList before = savedRows();
        m_queue->setSelectedIndex(2);
        const QList<qint64> ids = m_ws->addSongs({"Kami - Kaze"});
        switch (Action(action)) {
        case ActMoveToTop:
        case ActMoveUp:
        case ActRemove:
        case ActMoveDown:
        case ActMoveToBottom:
            m_queue->btnQueueOptions_Click(action);
            break;
        case ActChangeSinger:
            m_dialogs.ok(QStringLiteral("Zoe"), 2);
            m_queue->ChangeSingerOnQueueRow();
            break;
        case ActAddFromSearch:
            m_dialogs.ok(QStringLiteral("Eve"), 1);
            m_queue->AddSongToQueue(ids.first());
            break;
        case ActKamikaze:
            ExecuteSql(QStringLiteral("UPDATE tblKaraokeTracks SET Kamikaze = 1"));
            m_dialogs.ok(QStringLiteral("Kim"), 0);
            m_queue->LoadKamikazeTrack();
            break;
        case ActAddFromFile:
            m_dialogs.fileAnswers.enqueue(
                {QStringLiteral("Art"), QStringLiteral("Tit"), QStringLiteral("Fay"), 2, false});
            m_queue->AddSongFromFileSystem(QStringLiteral("/music/x.mp3"));
            break;
        case ActSortByHeader:
            m_queue->setSortingAllowed(true);
            m_list->horizontalHeader()->setSortIndicator(QueueModel::ColPerformer, Qt::DescendingOrder);
            break;
        case ActSortingOn:
            m_queue->MoveUp();
            m_queue->setSortingAllowed(true);
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
        QTest::newRow("up on top row") << 1 << 0 << QStringList{"A", "B", "C", "D"} << 0;
        QTest::newRow("down on last row") << 3 << 3 << QStringList{"A", "B", "C", "D"} << 3;
        QTest::newRow("top on top row") << 0 << 0 << QStringList{"A", "B", "C", "D"} << 0;
        QTest::newRow("bottom on last row") << 4 << 3 << QStringList{"A", "B", "C", "D"} << 3;
        QTest::newRow("up from 1") << 1 << 1 << QStringList{"B", "A", "C", "D"} << 0;
        QTest::newRow("down from 2") << 3 << 2 << QStringList{"A", "B", "D", "C"} << 3;
        QTest::newRow("bottom from 0") << 4 << 0 << QStringList{"B", "C", "D", "A"} << 3;
        QTest::newRow("top from last") << 0 << 3 << QStringList{"D", "A", "B", "C"} << 0;
        for (int b = 0; b < 5; ++b)
            QTest::addRow("button %d with nothing selected", b)
                << b << -1 << QStringList{"A", "B", "C", "D"} << -1;
        QTest::newRow("unknown button index") << 5 << 1 << QStringList{"A", "B", "C", "D"} << 1;
        QTest::newRow("negative button index") << -1 << 1 << QStringList{"A", "B", "C", "D"} << 1;
    }
    void movesAtEdges() {
        QFETCH(int, button);
        QFETCH(int, selected);
        startWithSavedQueue();
        m_queue->setSelectedIndex(selected);
        m_queue->btnQueueOptions_Click(button);
        QTEST(performers(model()), "order");
        QTEST(m_queue->selectedIndex(), "selectedAfter");
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    void clearQueue_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<int>("rowsLeft");
        QTest::newRow("ok") << int(Prompts::Ok) << 0;
        QTest::newRow("cancel") << int(Prompts::Cancel) << 4;
    }
    void clearQueue() {
        QFETCH(int, answer);
        QFETCH(int, rowsLeft);
        startWithSavedQueue();
        m_prompts->answer(answer);
        QPushButton btnClearQueue;
        m_queue->attachClearQueueButton(&btnClearQueue);
        btnClearQueue.click();
        QCOMPARE(m_prompts->calls.size(), 1);
        QCOMPARE(m_prompts->calls.first().style, Prompts::OkCancel | Prompts::Question);
        QCOMPARE(model().rowCount(), rowsLeft);
        QCOMPARE(savedRows().size(), rowsLeft);
    }

    void detailsOfRows() {
        model().addItem({QStringLiteral("9"), QStringLiteral("Sam"), QStringLiteral("Art"),
                         QStringLiteral("Song"), QStringLiteral("-3")},
                        QStringLiteral("/s/a.zip"));
        const QueueEntryDetails d = m_queue->GetDetailsFromRow(0);
        QCOMPARE(d.PerformerName, QStringLiteral("Sam"));
        QCOMPARE(d.ArtistName, QStringLiteral("Art"));
        QCOMPARE(d.TrackName, QStringLiteral("Song"));
        QCOMPARE(d.TrackPath, QStringLiteral("/s/a.zip"));
        QCOMPARE(d.Key, -3);
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);

        for (int row : {-1, 1, 99}) {
            const QueueEntryDetails none = m_queue->GetDetailsFromRow(row);
            QVERIFY(none.PerformerName.isEmpty() && none.TrackPath.isEmpty());
            QCOMPARE(none.Key, 0);
        }
        QCOMPARE(TestWorkspace::errorLogRecords(), 3);
        QVERIFY(TestWorkspace::errorLog().contains(QStringLiteral("KvApp.frmMain.GetDetailsFromRow")));
    }

    void menus() {
        QMenu* q = m_queue->mnuQueue();
        QMenu* r = m_queue->QueueResetMenu();
        // The right button offers the reset alone on an empty list.
        QCOMPARE(m_queue->menuForRightClick(), r);
        startWithSavedQueue();
        QCOMPARE(m_queue->menuForRightClick(), q);

        m_queue->setSelectedIndex(2);
        q->findChild<QAction*>(QStringLiteral("mnuQueueTop"))->trigger();
        QCOMPARE(performers(model()), QStringList({"C", "A", "B", "D"}));
        QCOMPARE(savedRows(), modelRows(model()));
    }

    void rightButtonReleaseOpensMenu() {
        m_list->resize(400, 300);
        m_list->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_list.get()));
        QTest::mouseRelease(m_list->viewport(), Qt::RightButton, {}, QPoint(50, 50));
        QTRY_VERIFY(m_queue->QueueResetMenu()->isVisible());
        m_queue->QueueResetMenu()->hide();
    }

    void doubleClickAsksForPlay_data() {
        QTest::addColumn<bool>("allowed");
        QTest::newRow("allowed") << true;
        QTest::newRow("off") << false;
    }
    void doubleClickAsksForPlay() {
        QFETCH(bool, allowed);
        Cfg.AllowDoubleClicks = allowed;
        startWithSavedQueue();
        m_list->resize(500, 300);
        m_list->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_list.get()));
        QSignalSpy spy(m_queue.get(), &QueueController::playRequested);
        const QRect cell = m_list->visualRect(model().index(1, QueueModel::ColArtist));
        // A double click as the window system delivers it: press and release, then the second press.
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(m_list->viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(spy.size(), allowed ? 1 : 0);
        if (allowed)
            QCOMPARE(spy.first().first().toInt(), 1);
    }

    void columnWidths_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("afterRetrieve");
        QTest::newRow("absent: default") << QString() << "0;95;200;190;45";
        QTest::newRow("first element forced to 0") << "120;80;100;110;40"
                                                   << "0;80;100;110;40";
        QTest::newRow("bad elements leave the column") << "0;abc;-5;150;"
                                                       << "0;100;100;150;30";
        QTest::newRow("short list") << "0;60"
                                    << "0;60;100;100;30";
    }
    void columnWidths() {
        QFETCH(QString, stored);
        QFETCH(QString, afterRetrieve);
        if (!stored.isNull())
            settingsfile::writeText(QStringLiteral("QueueColumns"), stored);
        QSignalSpy refresh(m_queue.get(), &QueueController::searchListRefreshRequested);
        m_queue->RetrieveQueueColumns();
        QCOMPARE(refresh.size(), 1);
        QVERIFY(m_list->isColumnHidden(0));
        m_queue->SaveQueueColumns();
        QCOMPARE(storedWidths(), afterRetrieve);

        // The reset uses its own widths and writes nothing until the next save.
        m_queue->QueueResetMenu()->actions().first()->trigger();
        QCOMPARE(storedWidths(), afterRetrieve);
        m_queue->SaveQueueColumns();
        QCOMPARE(storedWidths(), QStringLiteral("0;95;150;150;45"));
    }

    void saveColumnsWithoutListWritesDefault() {
        QueueController bare;
        settingsfile::writeText(QStringLiteral("QueueColumns"), QStringLiteral("1;2;3;4;5"));
        bare.SaveQueueColumns();
        QCOMPARE(storedWidths(), QStringLiteral("0;95;200;190;45"));
    }

    void startupSwitches_data() {
        QTest::addColumn<bool>("drag");
        QTest::addColumn<bool>("sort");
        QTest::newRow("both on") << true << true;
        QTest::newRow("drag off, sort on") << false << true;
    }
    void startupSwitches() {
        QFETCH(bool, drag);
        QFETCH(bool, sort);
        Cfg.AllowDragAndDrop = drag;
        Cfg.AllowSortingOnQueue = sort;
        m_queue->applyStartupSwitches();
        QCOMPARE(m_list->dragEnabled(), drag);
        QCOMPARE(m_list->dragDropMode(),
                 drag ? QAbstractItemView::InternalMove : QAbstractItemView::NoDragDrop);
        // A stored "on" does not switch sorting on at start-up.
        QVERIFY(!m_list->isSortingEnabled());
        // The options screen does, at once, and back off.
        m_queue->setSortingAllowed(true);
        QVERIFY(m_list->isSortingEnabled());
        m_queue->setSortingAllowed(false);
        QVERIFY(!m_list->isSortingEnabled());
        m_queue->setDragAndDropAllowed(true);
        QVERIFY(m_list->dragEnabled());
    }

    void buttonsAreWired() {
        startWithSavedQueue();
        QPushButton b[5];
        m_queue->attachQueueButtons({&b[0], &b[1], &b[2], &b[3], &b[4]});
        m_queue->setSelectedIndex(3);
        b[1].click();
        QCOMPARE(performers(model()), QStringList({"A", "B", "D", "C"}));
        QCOMPARE(m_queue->selectedIndex(), 2);
        b[2].click();
        QCOMPARE(performers(model()), QStringList({"A", "B", "C"}));
    }

    // Drops from outside the list, or of rows the model does not have, are refused.
    void foreignDropsRefused() {
        startWithSavedQueue();
        QueueModel other;
        addRows(other, {"X"});
        std::unique_ptr<QMimeData> foreign(other.mimeData({other.index(0, 1)}));
        QVERIFY(!model().canDropMimeData(foreign.get(), Qt::MoveAction, 0, 0, {}));
        QMimeData text;
        text.setText(QStringLiteral("hello"));
        QVERIFY(!model().canDropMimeData(&text, Qt::MoveAction, 0, 0, {}));
        model().dropMimeData(foreign.get(), Qt::MoveAction, 0, 0, {});
        QCOMPARE(performers(model()), QStringList({"A", "B", "C", "D"}));
    }

    void dropPositions_data() {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("gap");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("to the top") << 3 << 0 << QStringList{"D", "A", "B", "C"};
        QTest::newRow("below the last") << 0 << -1 << QStringList{"B", "C", "D", "A"};
        QTest::newRow("into the gap below itself") << 1 << 2 << QStringList{"A", "B", "C", "D"};
        QTest::newRow("down two") << 0 << 3 << QStringList{"B", "C", "A", "D"};
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
