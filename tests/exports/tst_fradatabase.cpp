#include "exports/deduplist.h"
#include "exports/exportfile.h"
#include "exports/songlist.h"
#include "exports/songlistmodel.h"
#include "exports/ui/fradatabase.h"
#include "exports/ui/frmexportforwebapp.h"
#include "exportsfixture.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QTest>

using namespace exportstest;

namespace {

// The catalogue of these tests: a duplicate by case, an error, awkward names.
void addCatalogue() {
    addSongs({{"O'Brien, \"Pat\"", "Ärger", "D1", "01", "/s/o.zip"},
              {"Cher", "Believe", "D2", "01", "/s/c.zip", true},
              {"cher", "BELIEVE", "D3", "01", "/s/c2.zip"},
              {"Zed", "Song", "Rock 'n' Roll", "01", "/s/z.zip", true}});
}

QString desktopFile(const QString& name) {
    return QDir(desktopFolder()).filePath(name);
}

Rows listRows(const fraDatabase& page) {
    Rows rows;
    const SongListModel* m = page.exportModel();
    QStringList header;
    for (int c = 0; c < m->columnCount(); ++c)
        header << m->headerData(c, Qt::Horizontal).toString();
    rows << header;
    for (int r = 0; r < m->rowCount(); ++r) {
        QStringList row;
        for (int c = 0; c < m->columnCount(); ++c)
            row << m->cell(r, c);
        rows << row;
    }
    return rows;
}

void show(fraDatabase& page, int kind) {
    page.cboManageOptions->setCurrentIndex(kind);
    page.cmdShowExport->click();
}

// Fills the songbook dialog and presses its Export button; then cancels it
// if it stayed open (the page would otherwise wait for it).
fraDatabase::DialogRunner answerDialog(const QString& title, bool allowEmail, const QString& email,
                                       int* shown = nullptr) {
    return [=](frmExportForWebApp& d) {
        if (shown)
            ++*shown;
        d.txtSongBookTitle->setText(title);
        if (allowEmail)
            d.chkUseEmailAddressForRequests->click();
        d.txtEmailAddress->setText(email);
        d.cmdExportForMobile->click();
        if (d.result() != QDialog::Accepted)
            d.btnCancel->click();
    };
}

} // namespace

class TestDatabasePage : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_boxes;

private slots:
    void init() {
        m_ws = std::make_unique<TestWorkspace>();
        m_boxes = std::make_unique<ScriptedPrompts>();
        addCatalogue();
        QDir(desktopFolder()).removeRecursively();
    }
    void cleanup() {
        m_boxes.reset();
        m_ws.reset();
    }

    // What "Show" lists for each entry of the combo, and that "Export List
    // Above" writes just that; the case buttons are for the other file only.
    void showAndExportList_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QStringList>("artists");
        QTest::addColumn<int>("columns");
        QTest::newRow("all songs") << 0 << QStringList{"O'Brien, \"Pat\"", "Cher", "cher", "Zed"} << 5;
        QTest::newRow("no duplicates, by artist") << 1 << QStringList{"Cher", "O'Brien, \"Pat\""} << 4;
        QTest::newRow("songs with errors") << 2 << QStringList{"Cher", "Zed"} << 5;
    }
    void showAndExportList() {
        QFETCH(int, kind);
        QFETCH(QStringList, artists);
        QFETCH(int, columns);
        fraDatabase page;
        page.optCase[1]->setChecked(true);
        show(page, kind);
        const Rows listed = listRows(page);
        QStringList firstColumn;
        for (const QStringList& row : listed.mid(1))
            firstColumn << row.value(0);
        QCOMPARE(firstColumn, artists);
        QCOMPARE(listed.first().size(), columns);
        page.btnExportAll->click();
        QCOMPARE(readCsv(desktopFile("SongExport.csv")), listed);
        QCOMPARE(m_boxes->boxTitles(), QStringList{"Export Completed"});
        QCOMPARE(m_boxes->calls.last().text,
                 QString("Export Of SongExport.csv to Desktop Completed Successfully"));
        QVERIFY(page.btnExportDedup->isEnabled() && page.cmdExportForMobile->isEnabled());
    }

    void unfilledListExportsEmptyFile() {
        fraDatabase page;
        page.btnExportAll->click();
        QCOMPARE(fileBytes(desktopFile("SongExport.csv")), QByteArray());
    }

    // The list without duplicates is read again for the file after a DeDup
    // export emptied its table.
    void listWithoutDuplicatesSurvivesDedupExport() {
        fraDatabase page;
        show(page, 1);
        page.btnExportDedup->click();
        page.btnExportAll->click();
        QCOMPARE(readCsv(desktopFile("SongExport.csv")).size(), 3);
    }

    // The chosen case reaches the file, which replaces a longer older one whole.
    void dedupExport() {
        fraDatabase page;
        page.optCase[1]->setChecked(true);
        QDir().mkpath(desktopFolder());
        QVERIFY(writeBytes(desktopFile("depexport(dedup).csv"),
                           "an older list that is longer than the new one, to be replaced whole"));
        page.btnExportDedup->click();
        QCOMPARE(fileBytes(desktopFile("depexport(dedup).csv")),
                 QByteArray("\"2\",\"CHER\",\"BELIEVE\",\"D2\",\"01\"\r\n"
                            "\"1\",\"O'BRIEN, \"PAT\"\",\"ÄRGER\",\"D1\",\"01\"\r\n"));
        QCOMPARE(m_boxes->calls.last().text,
                 QString("Export Of depexport(dedup).csv to Desktop Completed Successfully"));
        QVERIFY(page.btnExportAll->isEnabled() && page.cmdExportForMobile->isEnabled());
    }

    // A right click on the list of faulty songs (and on no other list) offers
    // a menu that acts on the catalogue and leaves the list as it is.
    void errorMenu_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("entry"); // empty: no menu
        QTest::addColumn<QStringList>("catalogue");
        const QStringList untouched{"/s/c.zip:-1", "/s/c2.zip:0", "/s/o.zip:0", "/s/z.zip:-1"};
        QTest::newRow("remove error mark")
            << 2 << "mnuErrorRemoveMark"
            << QStringList{"/s/c.zip:0", "/s/c2.zip:0", "/s/o.zip:0", "/s/z.zip:-1"};
        QTest::newRow("delete from database")
            << 2 << "mnuErrorRemove" << QStringList{"/s/c2.zip:0", "/s/o.zip:0", "/s/z.zip:-1"};
        QTest::newRow("all songs: no menu") << 0 << "" << untouched;
    }
    void errorMenu() {
        QFETCH(int, kind);
        QFETCH(QString, entry);
        QFETCH(QStringList, catalogue);
        fraDatabase page;
        page.resize(600, 400);
        show(page, kind);
        const int listed = page.exportModel()->rowCount();
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        const QRect first = page.lvExport->visualRect(page.exportModel()->index(0, 0));
        QTest::mouseClick(page.lvExport->viewport(), Qt::RightButton, {}, first.center());
        if (entry.isEmpty()) {
            QTest::qWait(50);
            QVERIFY(!page.mnuError->isVisible());
        } else {
            QTRY_VERIFY(page.mnuError->isVisible());
            page.mnuError->hide();
            page.findChild<QAction*>(entry)->trigger();
        }
        QCOMPARE(column("SELECT TrackPath || ':' || Error FROM tblKaraokeTracks ORDER BY 1"), catalogue);
        QCOMPARE(page.exportModel()->rowCount(), listed);
    }

    // The list reads the catalogue a block at a time.
    void listFetchesAsNeeded() {
        QList<Song> many;
        for (int i = 0; i < 600; ++i)
            many.append({QString("Artist %1").arg(i), "T", "D", "01", QString("/many/%1.zip").arg(i)});
        addSongs(many);
        SongListModel model;
        model.setBlockSize(100);
        model.load(SongList::statement(SongList::AllSongs));
        QCOMPARE(model.rowCount(), 100);
        QVERIFY(model.canFetchMore());
        while (model.canFetchMore())
            model.fetchMore();
        QCOMPARE(model.rowCount(), 604);
        QCOMPARE(model.cell(603, 4), QString("/many/599.zip"));
    }

    // The songbook dialog's checks: each refusal is a box and the dialog
    // stays open (it is cancelled here); no songbook is written anywhere, and
    // the page's flag stands even so: the next click only clears it.
    void songbookRefused_data() {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("email"); // empty: requests by email not allowed
        QTest::addColumn<QString>("box");
        QTest::newRow("blank title") << "   " << QString() << "Blank Songbook Title";
        QTest::newRow("blank address while allowed") << "Book" << QString("  ") << "Blank Email Address";
        QTest::newRow("a title that leaves the folder") << "../../escape" << QString() << "Songbook Title";
        QTest::newRow("two dots in the title") << "My..Book" << QString() << "Songbook Title";
    }
    void songbookRefused() {
        QFETCH(QString, title);
        QFETCH(QString, email);
        QFETCH(QString, box);
        fraDatabase page;
        page.setDialogRunner(answerDialog(title, !email.isEmpty(), email));
        page.cmdExportForMobile->click();
        QCOMPARE(m_boxes->boxTitles(), QStringList{box});
        QCOMPARE(QDir(m_ws->documentsFolder()).entryList({"*.kbd"}, QDir::Files), QStringList{});
        QCOMPARE(QDir(m_ws->documentsFolder() + "../..").entryList({"*.kbd"}, QDir::Files), QStringList{});
        QVERIFY(page.exporting());
        QCOMPARE(page.cmdExportForMobile->text(), QString("Export for Carolist App"));
    }

    void useMobileUnticksEmail() {
        frmExportForWebApp d;
        QVERIFY(!d.txtEmailAddress->isEnabled());
        d.chkUseEmailAddressForRequests->click();
        QVERIFY(d.useEmailForRequests() && d.txtEmailAddress->isEnabled());
        d.chkUseMobileForRequests->click();
        QVERIFY(!d.chkUseEmailAddressForRequests->isChecked());
        QVERIFY(!d.useEmailForRequests());
        QVERIFY(!d.txtEmailAddress->isEnabled());
    }

    // Export, then a click that only clears the flag, then the dialog again.
    void songbookTwoClickRhythm() {
        fraDatabase page;
        int shown = 0;
        page.setDialogRunner(answerDialog(" Ann's Book ", true, "o'neil@example.com", &shown));
        page.cmdExportForMobile->click();
        QCOMPARE(shown, 1);
        const QString path = m_ws->documentsFolder() + " Ann's Book .kbd";
        QCOMPARE(sqliteColumn(path, "pragma integrity_check"), QStringList{"ok"});
        QCOMPARE(sqliteColumn(path, "SELECT EmailAddress FROM HostDetails"),
                 QStringList{"o'neil@example.com"});
        QCOMPARE(sqliteColumn(path, "SELECT COUNT(*) FROM KaraokeSongs"), QStringList{"4"});
        QCOMPARE(page.lblExport->text(), QString("Export Completed"));
        QCOMPARE(page.cmdExportForMobile->text(), QString("Export for Carolist App"));
        QVERIFY(page.btnExportAll->isEnabled() && page.btnExportDedup->isEnabled());
        QVERIFY(page.exporting());

        page.cmdExportForMobile->click();
        QCOMPARE(shown, 1);
        QVERIFY(!page.exporting());
        page.cmdExportForMobile->click();
        QCOMPARE(shown, 2);
    }

    void scratchTableEmptiedWithThePage() {
        {
            fraDatabase page;
            show(page, 1);
        }
        QCOMPARE(column("SELECT COUNT(*) FROM tblDedup"), QStringList{"0"});
    }
};

KV_TEST_CLASS(TestDatabasePage)
#include "tst_fradatabase.moc"
