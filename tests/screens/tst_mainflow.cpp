#include "catalogue/database.h"
#include "mainwindowstart.h"
#include "queue/performerprompt.h"
#include "queue/queuemodel.h"
#include "queue/ui/queuecontroller.h"
#include "screens/frmmain.h"
#include "screens/mainparts.h"
#include "scriptedprompts.h"
#include "testrunner.h"

#include <QApplication>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

namespace {

// The singer dialog answered with one name and key.
class AnsweringPerformer : public PerformerPrompt {
public:
    PerformerAnswer choosePerformer(const QString&, qint32) override {
        return PerformerAnswer{QString::fromUtf8("Zo\xc3\xab"), -2, false};
    }
    PerformerAnswer changePerformer(const QString& name, qint32 key) override { return {name, key, true}; }
    FileSongAnswer addFromFileSystem(const QString&) override { return {}; }
};

} // namespace

// The host's way through the main window: type, find, double-click, give a
// singer, see the row in the queue, and find it again after a restart.
class TestMainFlow : public QObject {
    Q_OBJECT

private slots:
    void init() { kvtest::seedMainWorkspace({{"InteractiveSearch", "1"}}); }
    void cleanup() { TestWorkspace::wipe(); }

    void typeFindQueueAndComeBack() {
        ScriptedPrompts boxes;
        AnsweringPerformer singer;
        {
            frmMain w;
            QVERIFY(kvtest::startMainWindow(w));
            ExecuteSql("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, FileName, TrackPath) VALUES "
                       "('Abba', 'Waterloo', 'Abba - Waterloo.zip', '/k/a1.zip'), "
                       "('Queen', 'Bohemian Rhapsody', 'Queen - Bohemian Rhapsody.zip', '/k/q1.zip')");
            w.parts().queue().setPerformerPrompt(&singer);

            QApplication::setActiveWindow(&w);
            w.txtSearch->setFocus();
            QTest::keyClicks(w.txtSearch, "queen");
            // Half a second after the last key the list shows the song.
            QTRY_COMPARE_WITH_TIMEOUT(w.olvSearchResults->model()->rowCount(), 1, 3000);

            const QRect cell = w.olvSearchResults->visualRect(w.olvSearchResults->model()->index(0, 2));
            QTest::mouseClick(w.olvSearchResults->viewport(), Qt::LeftButton, {}, cell.center());
            QTest::mouseDClick(w.olvSearchResults->viewport(), Qt::LeftButton, {}, cell.center());
            w.close();
        }
        // The queue was saved with the add, and comes back at the next start.
        frmMain again;
        QVERIFY(kvtest::startMainWindow(again));
        QueueModel* queue = again.parts().queue().model();
        QCOMPARE(queue->rowCount(), 1);
        QCOMPARE(QStringList({queue->cellText(0, QueueModel::ColPerformer),
                              queue->cellText(0, QueueModel::ColKey), queue->itemTag(0)}),
                 QStringList({QString::fromUtf8("Zo\xc3\xab"), "-2", "/k/q1.zip"}));
        QCOMPARE(boxes.calls.size(), 0);
        again.close();
    }
};

KV_TEST_CLASS(TestMainFlow)
#include "tst_mainflow.moc"
