#include "core/settings.h"
#include "history/historycsv.h"
#include "history/historylistmodel.h"
#include "history/ui/frmhistory.h"
#include "historyfixture.h"
#include "queue/queuemodel.h"
#include "queue/queuestore.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTest>

using namespace historytest;

class TestFrmHistory : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<QueueModel> m_queueModel;
    std::unique_ptr<QueueModelHistoryQueue> m_queue;

    static void seed() {
        add("Ann", "Abba", "Waterloo", 2, "/s/waterloo.zip");
        add("Ann", "Abba", "Waterloo", 2, "/s/waterloo.zip");
        add("Ann", "Adele", "Hello", -1, "/s/hello.zip");
        add("Bob", "Blur", "Song 2", 0, "/s/song2.zip");
        add("O'Neil", "Queen", "Bicycle", 3, "/s/bike.zip");
    }
    std::unique_ptr<frmHistory> open() { return std::make_unique<frmHistory>(*m_queue); }
    // The screen over the seeded history, "(All)" first.
    std::unique_ptr<frmHistory> openSeeded() {
        settings::writeText(keys::AutoSelectAllInHistory, "1");
        seed();
        return open();
    }

    static QStringList comboEntries(const frmHistory& f) {
        QStringList out;
        for (int i = 0; i < f.cboSingers->count(); ++i)
            out << f.cboSingers->itemText(i);
        return out;
    }
    static QStringList queueRows(const QueueModel& m) {
        QStringList out;
        for (const QueueModel::Row& r : m.items())
            out << r.cells.join('|') + "|" + r.tag;
        return out;
    }
    static QStringList savedQueue() {
        QSqlQuery q = ExecuteSql("SELECT PerformerName || '|' || ArtistName || '|' || TrackName || '|' || "
                                 "SongKey || '|' || TrackPath FROM tblQueue ORDER BY QueuePos");
        QStringList out;
        while (q.next())
            out << q.value(0).toString();
        return out;
    }
    static int rowOf(const frmHistory& f, const QString& title) {
        for (int r = 0; r < f.model()->rowCount(); ++r)
            if (f.model()->historyRow(r).Title == title)
                return r;
        return -1;
    }

private slots:
    void init() {
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>();
        m_queueModel = std::make_unique<QueueModel>();
        m_queue = std::make_unique<QueueModelHistoryQueue>(*m_queueModel);
    }
    void cleanup() {
        m_queue.reset();
        m_queueModel.reset();
        m_ws.reset();
        m_prompts.reset();
    }

    // The combo at load: "(All)" first only when AutoSelectAllInHistory is
    // 1, never on an empty history; else the list shows the first singer's
    // songs. The screen opens with No Dups on.
    void opening_data() {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<bool>("seeded");
        QTest::addColumn<bool>("withAll");
        QTest::newRow("all on") << "1" << true << true;
        QTest::newRow("not a 1") << "2" << true << false;
        QTest::newRow("empty history") << "1" << false << false;
    }
    void opening() {
        QFETCH(QString, setting);
        QFETCH(bool, seeded);
        QFETCH(bool, withAll);
        settings::writeText(keys::AutoSelectAllInHistory, setting);
        if (seeded)
            seed();
        auto f = open();
        QVERIFY(f->NoDups && f->chkNoDups->isChecked());
        QCOMPARE(comboEntries(*f).contains("(All)"), withAll);
        QCOMPARE(f->cboSingers->count(), seeded ? 3 + int(withAll) : 0);
        QCOMPARE(f->model()->rowCount(),
                 withAll ? 4 : int(HistoryStore::songsOfSinger(f->cboSingers->currentText()).size()));
        QVERIFY(f->olvHistory->isColumnHidden(HistoryListModel::ColTrackPath));
    }

    // The widths come from HistoryColumns; the path column stays hidden even
    // when the setting gives it a width, and the widths go back at unload.
    // No Dups off reloads the list with the repeats.
    void columnWidthsAndNoDups() {
        settings::writeText(keys::HistoryColumns, "80;120;130;140;60");
        seed();
        auto f = open();
        QVERIFY(f->olvHistory->isColumnHidden(0));
        QCOMPARE(f->olvHistory->columnWidth(2), 130);
        f->olvHistory->setColumnWidth(4, 44);
        QCOMPARE(f->model()->rowCount(), 2); // Ann's songs, each once
        f->chkNoDups->click();
        QVERIFY(!f->NoDups);
        QCOMPARE(f->model()->rowCount(), 3);
        QVERIFY(f->olvHistory->isColumnHidden(0)); // a reload keeps the path hidden
        f->cmdClose->click();
        QCOMPARE(settings::readText(keys::HistoryColumns), QStringLiteral("0;120;130;140;44"));
    }

    // Queue Selected and a double click each add the row with its singer and
    // key at the end of the queue, save the queue, and keep the history row.
    void queueSelectedAndDoubleClick() {
        m_queueModel->addItem({"", "Zed", "Z", "Z", "0"}, "/z");
        auto f = openSeeded();
        f->show();
        QVERIFY(QTest::qWaitForWindowExposed(f.get()));
        f->cmdAddSingleSong->click(); // nothing selected: nothing happens
        QCOMPARE(m_queueModel->rowCount(), 1);
        f->olvHistory->selectRow(rowOf(*f, "Hello"));
        f->cmdAddSingleSong->click();
        const QModelIndex bike = f->model()->index(rowOf(*f, "Bicycle"), 2);
        f->olvHistory->scrollTo(bike);
        const QRect cell = f->olvHistory->visualRect(bike);
        QTest::mouseClick(f->olvHistory->viewport(), Qt::LeftButton, {}, cell.center());
        QTest::mouseDClick(f->olvHistory->viewport(), Qt::LeftButton, {}, cell.center());
        QCOMPARE(queueRows(*m_queueModel), (QStringList{"|Zed|Z|Z|0|/z", "|Ann|Adele|Hello|-1|/s/hello.zip",
                                                        "|O'Neil|Queen|Bicycle|3|/s/bike.zip"}));
        QCOMPARE(savedQueue().size(), 3);
        QCOMPARE(HistoryStore::rowCount(), 5);
        QVERIFY(f->isVisible()); // the screen stays open
    }

    void queueAll() {
        m_queueModel->addItem({"", "Zed", "Z", "Z", "0"}, "/z");
        QVERIFY(SaveQueue(*m_queueModel));
        auto f = openSeeded();
        // "(All)": the message only.
        f->btnLoad->click();
        QCOMPARE(m_prompts->boxTitles(), QStringList{"Select Singer/Playlist"});
        QCOMPARE(m_queueModel->rowCount(), 1);
        // A singer: her distinct songs go into the saved queue behind the
        // rows there, and the list gets every saved row behind its own.
        f->cboSingers->setCurrentText("Ann");
        f->btnLoad->click();
        QStringList saved = savedQueue();
        QCOMPARE(saved.size(), 3);
        QCOMPARE(saved.first(), QStringLiteral("Zed|Z|Z|0|/z"));
        saved.removeFirst();
        saved.sort();
        QCOMPARE(saved,
                 (QStringList{"Ann|Abba|Waterloo|2|/s/waterloo.zip", "Ann|Adele|Hello|-1|/s/hello.zip"}));
        QCOMPARE(m_queueModel->rowCount(), 4);
        QCOMPARE(m_queueModel->cellText(1, QueueModel::ColPerformer), QStringLiteral("Zed"));
        // An apostrophe in the name fails the statement: logged, nothing queued.
        const int logged = TestWorkspace::errorLogRecords();
        f->cboSingers->setCurrentText("O'Neil");
        f->btnLoad->click();
        QCOMPARE(TestWorkspace::errorLogRecords(), logged + 1);
        QVERIFY(TestWorkspace::errorLog().contains("KvApp.frmHistory.AddSongToQueue"));
        QCOMPARE(savedQueue().size(), 3);
        QCOMPARE(m_queueModel->rowCount(), 4);
    }

    // A right click opens the menu when the list has rows; Remove Song takes
    // every performance of the song by the singer, whatever No Dups shows.
    void removeSong() {
        add("Bob", "Abba", "Waterloo", 2, "/s/waterloo.zip");
        auto f = openSeeded();
        f->show();
        QVERIFY(QTest::qWaitForWindowExposed(f.get()));
        f->cboSingers->setCurrentText("Ann");
        const int row = rowOf(*f, "Waterloo");
        const QRect cell = f->olvHistory->visualRect(f->model()->index(row, 1));
        QVERIFY(f->olvHistory_RightClick(cell.center()));
        QVERIFY(f->mnuHistoryOptions->isVisible());
        f->mnuHistoryOptions->hide();
        f->mnuHistoryOptionsRemove->trigger();
        QCOMPARE(f->model()->rowCount(), 1);
        QCOMPARE(HistoryStore::rowCount(), 4);
        f->cboSingers->setCurrentIndex(-1);
        f->GetHistory();
        QVERIFY(!f->olvHistory_RightClick({5, 5}));
    }

    void clearHistory() {
        settings::writeText(keys::AutoSelectAllInHistory, "0");
        seed();
        auto f = open();
        f->cboSingers->setCurrentText("Bob");
        m_prompts->answer(Prompts::No);
        f->cmdClearHistory->click();
        QCOMPARE(HistoryStore::rowCount(), 5);
        QCOMPARE(m_prompts->calls.last().text,
                 QStringLiteral("Are you sure you want to remove all the history for the singer Bob"));
        QCOMPARE(m_prompts->calls.last().style, Prompts::YesNo + Prompts::Question);
        m_prompts->answer(Prompts::Yes);
        f->cmdClearHistory->click();
        QCOMPARE(HistoryStore::rowCount(), 4);
        // After a clear "(All)" heads the combo whatever the setting says.
        QCOMPARE(comboEntries(*f), (QStringList{"(All)", "Ann", "O'Neil"}));
        QCOMPARE(f->model()->rowCount(), 3);
        m_prompts->answer(Prompts::Yes);
        f->cmdClearHistory->click();
        QCOMPARE(HistoryStore::rowCount(), 0);
        QVERIFY(comboEntries(*f).isEmpty());
        QCOMPARE(f->model()->rowCount(), 0);
    }

    // Export writes what the list shows to the desktop; import adds a file's
    // rows, says so, and leaves the list as it was until the screen reopens.
    void exportAndImport() {
        const QString desktop = HistoryCsv::desktopFolder();
        QDir(desktop).removeRecursively();
        QVERIFY(QDir().mkpath(desktop));
        auto f = openSeeded();
        f->cboSingers->setCurrentText("Ann");
        m_prompts->answer(Prompts::Cancel);
        f->cmdExport->click();
        QVERIFY(QDir(desktop).isEmpty());
        f->cmdExport->click(); // the first button: OK
        const QString file = QDir(desktop).filePath("Ann History.csv");
        QVERIFY(QFile::exists(file));
        QCOMPARE(m_prompts->calls.size(), 2);

        m_prompts->answer(file);
        f->cmdImport->click();
        QCOMPARE(m_prompts->calls.at(2).title, QStringLiteral("Select an csv File"));
        QCOMPARE(m_prompts->boxTitles().last(), QStringLiteral("Import Completed"));
        QCOMPARE(HistoryStore::rowCount(), 7); // Ann's two distinct rows, once more
        QCOMPARE(f->model()->rowCount(), 2);

        // A bad file: the rows before the error stay, the error is logged, and
        // the completion message still shows.
        QFile bad(QDir(desktop).filePath("bad.csv"));
        QVERIFY(bad.open(QIODevice::WriteOnly) && bad.write("h\r\n/x,Cy,C,V,1\r\n/y,Di,D,W,\r\n") > 0);
        bad.close();
        const int logged = TestWorkspace::errorLogRecords();
        m_prompts->answer(bad.fileName());
        f->cmdImport->click();
        QCOMPARE(TestWorkspace::errorLogRecords(), logged + 1);
        QVERIFY(TestWorkspace::errorLog().contains(HistoryCsv::kImportSource));
        QCOMPARE(m_prompts->boxTitles().last(), QStringLiteral("Import Completed"));
        QCOMPARE(HistoryStore::rowCount(), 8);

        // No desktop folder: a clear message and nothing written.
        QDir(desktop).removeRecursively();
        f->cmdExport->click();
        QCOMPARE(m_prompts->calls.last().style, int(Prompts::Exclamation));
        QVERIFY(m_prompts->calls.last().text.contains("does not exist"));
        QVERIFY(!QFileInfo::exists(desktop));
    }
};

KV_TEST_CLASS(TestFrmHistory)
#include "tst_frmhistory.moc"
