#include "catalogue/ui/searchcontroller.h"
#include "history/historylistmodel.h"
#include "history/ui/frmhistory.h"
#include "historyfixture.h"
#include "mainwindowstart.h"
#include "queue/queuemodel.h"
#include "queue/ui/queuecontroller.h"
#include "screens/colorschemes.h"
#include "screens/frmmain.h"
#include "screens/mainparts.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QApplication>
#include <QFrame>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>

// The main window's History button: the screen opens modally over the queue,
// with the keyboard filter released while it is up, and what it queues lands
// in the main window's queue.
class TestHistoryFromMain : public QObject {
    Q_OBJECT

private slots:
    void init() { kvtest::seedMainWorkspace({{"AutoSelectAllInHistory", "1"}}); }
    void cleanup() { TestWorkspace::wipe(); }

    void opensOverTheQueue() {
        ScriptedPrompts boxes;
        frmMain w;
        QVERIFY(kvtest::startMainWindow(w));
        historytest::add("Ann", "Abba", "Waterloo", 2, "/k/a1.zip");
        QVERIFY(w.parts().search().keyboardHook() != nullptr);

        bool seen = false;
        bool hookReleased = false;
        QPoint at, expected;
        QColor face;
        QTimer::singleShot(0, this, [&] {
            auto* f = qobject_cast<frmHistory*>(QApplication::activeModalWidget());
            if (!f)
                return;
            seen = true;
            hookReleased = w.parts().search().keyboardHook() == nullptr;
            at = f->frameGeometry().topLeft();
            const QImage button = f->cmdClose->grab().toImage();
            face = button.pixelColor(button.width() / 2, button.height() / 2);
            const QPoint origin = w.frameGeometry().topLeft();
            expected = {origin.x() + w.fraQueue->mapTo(&w, QPoint()).x(),
                        origin.y() + w.fraPlayControl->mapTo(&w, QPoint()).y()};
            f->olvHistory->selectRow(0);
            f->cmdAddSingleSong->click();
            f->cmdClose->click();
        });
        w.btnHistory->click();
        QVERIFY(seen);
        QVERIFY(hookReleased);
        QCOMPARE(at, expected);
        QCOMPARE(face, colorschemes::colours(Cfg.ColorScheme).button);
        QVERIFY(w.parts().search().keyboardHook() != nullptr);
        QueueModel* queue = w.parts().queue().model();
        QCOMPARE(queue->rowCount(), 1);
        QCOMPARE(QStringList({queue->cellText(0, QueueModel::ColPerformer),
                              queue->cellText(0, QueueModel::ColKey), queue->itemTag(0)}),
                 QStringList({"Ann", "2", "/k/a1.zip"}));
        w.close();
    }
};

KV_TEST_CLASS(TestHistoryFromMain)
#include "tst_historyfrommain.moc"
