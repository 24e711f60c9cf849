#include "catalogue/database.h"
#include "core/csvreader.h"
#include "exports/deduplist.h"
#include "exports/exportfile.h"
#include "exports/songlist.h"
#include "exports/songlistmodel.h"
#include "exports/ui/fradatabase.h"
#include "exports/ui/frmexportforwebapp.h"
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
#include <QSqlQuery>
#include <QTableView>
#include <QTest>

using Rows = QList<QStringList>;

namespace {

void addSong(const QString& artist, const QString& title, const QString& disc, const QString& path,
             bool error = false) {
    QSqlQuery q(dbConnection());
    q.prepare("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, DiscName, TrackNo, TrackPath, Error) "
              "VALUES (?, ?, ?, '01', ?, ?)");
    for (const QVariant& v :
         {QVariant(artist), QVariant(title), QVariant(disc), QVariant(path), QVariant(error ? -1 : 0)})
        q.addBindValue(v);
    QVERIFY(q.exec());
}

// The catalogue of these tests: a duplicate by case, an error, awkward names.
void addCatalogue() {
    addSong("O'Brien, \"Pat\"", "Ärger", "D1", "/s/o.zip");
    addSong("Cher", "Believe", "D2", "/s/c.zip", true);
    addSong("cher", "BELIEVE", "D3", "/s/c2.zip");
    addSong("Zed", "Song", "Rock 'n' Roll", "/s/z.zip", true);
}

Rows readCsv(const QString& path) {
    Rows rows;
    const auto r = CsvReader::readFile(path, [&](const QStringList& row) {
        rows << row;
        return true;
    });
    return r.ok ? rows : Rows{{"<unreadable>", r.error}};
}

QByteArray fileBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("<missing>");
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

QStringList kbdRows(const QString& path, const QString& sql) {
    QStringList out;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "readKbd");
        db.setDatabaseName(path);
        if (db.open()) {
            QSqlQuery q(db);
            q.exec(sql);
            while (q.next())
                out << q.value(0).toString();
        }
        db.close();
    }
    QSqlDatabase::removeDatabase("readKbd");
    return out;
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

    void controlsAtLoad() {
        fraDatabase page;
        QCOMPARE(page.cboManageOptions->count(), 3);
        QCOMPARE(page.cboManageOptions->currentText(), QString("All Songs"));
        QVERIFY(page.optCase[0]->isChecked());
        QCOMPARE(page.cmdExportForMobile->text(), QString("Export for Carolist App"));
        QCOMPARE(page.exportModel()->rowCount(), 0);
    }

    // What "Show" lists, and what "Export List Above" then writes.
    void showAndExportList_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<Rows>("expected");
        const QStringList header{"Artist", "Track", "Disc", "TrackNo", "Location"};
        QTest::newRow("all songs") << 0
                                   << Rows{header,
                                           {"O'Brien, \"Pat\"", "Ärger", "D1", "01", "/s/o.zip"},
                                           {"Cher", "Believe", "D2", "01", "/s/c.zip"},
                                           {"cher", "BELIEVE", "D3", "01", "/s/c2.zip"},
                                           {"Zed", "Song", "Rock 'n' Roll", "01", "/s/z.zip"}};
        QTest::newRow("no duplicates: four columns, case-blind, apostrophe disc dropped")
            << 1
            << Rows{{"Artist", "Track", "Disc", "TrackNo"},
                    {"O'Brien, \"Pat\"", "Ärger", "D1", "01"},
                    {"Cher", "Believe", "D2", "01"}};
        QTest::newRow("songs with errors") << 2
                                           << Rows{header,
                                                   {"Cher", "Believe", "D2", "01", "/s/c.zip"},
                                                   {"Zed", "Song", "Rock 'n' Roll", "01", "/s/z.zip"}};
    }
    void showAndExportList() {
        QFETCH(int, kind);
        QFETCH(Rows, expected);
        fraDatabase page;
        page.optCase[1]->setChecked(true); // no effect on this file
        show(page, kind);
        QCOMPARE(listRows(page), expected);
        page.btnExportAll->click();
        QCOMPARE(readCsv(desktopFile("SongExport.csv")), expected);
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

    void dedupExport_data() {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QByteArray>("expected");
        QTest::newRow("leave alone") << 0
                                     << QByteArray("2,\"Cher\",\"Believe\",\"D2\",\"01\"\r\n"
                                                   "1,\"O'Brien, \"Pat\"\",\"Ärger\",\"D1\",\"01\"\r\n");
        QTest::newRow("upper case") << 1
                                    << QByteArray("\"2\",\"CHER\",\"BELIEVE\",\"D2\",\"01\"\r\n"
                                                  "\"1\",\"O'BRIEN, \"PAT\"\",\"ÄRGER\",\"D1\",\"01\"\r\n");
        QTest::newRow("lower case") << 2
                                    << QByteArray("\"2\",\"cher\",\"believe\",\"d2\",\"01\"\r\n"
                                                  "\"1\",\"o'brien, \"pat\"\",\"ärger\",\"d1\",\"01\"\r\n");
    }
    void dedupExport() {
        QFETCH(int, mode);
        QFETCH(QByteArray, expected);
        fraDatabase page;
        page.optCase[size_t(mode)]->setChecked(true);
        QFile old(desktopFile("depexport(dedup).csv"));
        QDir().mkpath(desktopFolder());
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("an older list that is longer than the new one, to be replaced whole");
        old.close();
        page.btnExportDedup->click();
        QCOMPARE(fileBytes(desktopFile("depexport(dedup).csv")), expected);
        QCOMPARE(m_boxes->calls.last().text,
                 QString("Export Of depexport(dedup).csv to Desktop Completed Successfully"));
        QCOMPARE(ExecuteSql("SELECT COUNT(*) FROM tblDedup").next(), true);
        QSqlQuery left = ExecuteSql("SELECT COUNT(*) FROM tblDedup");
        QVERIFY(left.next());
        QCOMPARE(left.value(0).toInt(), 0);
        QVERIFY(page.btnExportAll->isEnabled() && page.cmdExportForMobile->isEnabled());
    }

    void setExportButtons_data() {
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("enabled"); // All, Dedup, Mobile
        QTest::newRow("list") << 0 << "1,0,0";
        QTest::newRow("dedup") << 1 << "0,1,0";
        QTest::newRow("songbook") << 2 << "0,0,1";
    }
    void setExportButtons() {
        QFETCH(int, state);
        QFETCH(QString, enabled);
        fraDatabase page;
        page.SetExportButtons(state);
        QCOMPARE(QStringList({QString::number(page.btnExportAll->isEnabled()),
                              QString::number(page.btnExportDedup->isEnabled()),
                              QString::number(page.cmdExportForMobile->isEnabled())})
                     .join(','),
                 enabled);
        page.EnableExportButtons();
        QVERIFY(page.btnExportAll->isEnabled() && page.btnExportDedup->isEnabled() &&
                page.cmdExportForMobile->isEnabled());
    }

    // The error menu acts on the catalogue and leaves the list as it is.
    void errorMenu_data() {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QStringList>("catalogue");
        QTest::newRow("remove error mark")
            << "mnuErrorRemoveMark" << QStringList{"/s/c.zip:0", "/s/c2.zip:0", "/s/o.zip:0", "/s/z.zip:-1"};
        QTest::newRow("delete from database")
            << "mnuErrorRemove" << QStringList{"/s/c2.zip:0", "/s/o.zip:0", "/s/z.zip:-1"};
    }
    void errorMenu() {
        QFETCH(QString, entry);
        QFETCH(QStringList, catalogue);
        fraDatabase page;
        page.resize(600, 400);
        show(page, 2);
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        const QRect first = page.lvExport->visualRect(page.exportModel()->index(0, 0));
        QTest::mouseClick(page.lvExport->viewport(), Qt::RightButton, {}, first.center());
        QTRY_VERIFY(page.mnuError->isVisible());
        page.mnuError->hide();
        page.findChild<QAction*>(entry)->trigger();
        QSqlQuery q = ExecuteSql("SELECT TrackPath || ':' || Error FROM tblKaraokeTracks ORDER BY 1");
        QStringList rows;
        while (q.next())
            rows << q.value(0).toString();
        QCOMPARE(rows, catalogue);
        QCOMPARE(page.exportModel()->rowCount(), 2);
    }

    void errorMenuOnlyOnTheErrorList() {
        fraDatabase page;
        page.resize(600, 400);
        show(page, 0);
        page.show();
        QVERIFY(QTest::qWaitForWindowExposed(&page));
        const QRect first = page.lvExport->visualRect(page.exportModel()->index(0, 0));
        QTest::mouseClick(page.lvExport->viewport(), Qt::RightButton, {}, first.center());
        QTest::qWait(50);
        QVERIFY(!page.mnuError->isVisible());
    }

    // The list reads the catalogue a block at a time.
    void listFetchesAsNeeded() {
        for (int i = 0; i < 600; ++i)
            addSong(QString("Artist %1").arg(i), "T", "D", QString("/many/%1.zip").arg(i));
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

    // The songbook dialog's checks, each a box; the dialog stays open.
    void songbookDialog_data() {
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("allowEmail");
        QTest::addColumn<QString>("email");
        QTest::addColumn<QString>("box"); // empty: accepted
        QTest::newRow("accepted") << "My Book" << false << ""
                                  << "";
        QTest::newRow("blank title") << "   " << false << ""
                                     << "Blank Songbook Title";
        QTest::newRow("blank address while allowed") << "Book" << true << "  "
                                                     << "Blank Email Address";
        QTest::newRow("a slash in the title") << "../Book" << false << ""
                                              << "Songbook Title";
        QTest::newRow("two dots in the title") << "My..Book" << false << ""
                                               << "Songbook Title";
    }
    void songbookDialog() {
        QFETCH(QString, title);
        QFETCH(bool, allowEmail);
        QFETCH(QString, email);
        QFETCH(QString, box);
        frmExportForWebApp d;
        QVERIFY(!d.txtEmailAddress->isEnabled());
        d.txtSongBookTitle->setText(title);
        if (allowEmail)
            d.chkUseEmailAddressForRequests->click();
        QCOMPARE(d.txtEmailAddress->isEnabled(), allowEmail);
        d.txtEmailAddress->setText(email);
        d.cmdExportForMobile->click();
        QCOMPARE(m_boxes->boxTitles(), box.isEmpty() ? QStringList{} : QStringList{box});
        QCOMPARE(d.result() == QDialog::Accepted, box.isEmpty());
        QCOMPARE(d.songBookTitle(), title);
        QVERIFY(!d.Cancelled());
    }

    void useMobileUnticksEmail() {
        frmExportForWebApp d;
        d.chkUseEmailAddressForRequests->click();
        QVERIFY(d.useEmailForRequests());
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
        QCOMPARE(kbdRows(path, "pragma integrity_check"), QStringList{"ok"});
        QCOMPARE(kbdRows(path, "SELECT EmailAddress FROM HostDetails"), QStringList{"o'neil@example.com"});
        QCOMPARE(kbdRows(path, "SELECT SearchCriteria FROM KaraokeSongs ORDER BY rowid"),
                 (QStringList{"O'Brien, \"Pat\" Ärger D1", "Cher Believe D2", "cher BELIEVE D3",
                              "Zed Song Rock 'n' Roll"}));
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

    void songbookCancelledOrRefused_data() {
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("cancelled with an empty title") << "" << QStringList{"Blank Songbook Title"};
        QTest::newRow("a title that leaves the folder") << "../../escape" << QStringList{"Songbook Title"};
    }
    void songbookCancelledOrRefused() {
        QFETCH(QString, title);
        QFETCH(QStringList, boxes);
        fraDatabase page;
        page.setDialogRunner(answerDialog(title, false, {}));
        page.cmdExportForMobile->click();
        QCOMPARE(m_boxes->boxTitles(), boxes);
        QCOMPARE(QDir(m_ws->documentsFolder()).entryList({"*.kbd"}, QDir::Files), QStringList{});
        QCOMPARE(QDir(m_ws->documentsFolder() + "../..").entryList({"*.kbd"}, QDir::Files), QStringList{});
        // The flag stands even so: the next click only clears it.
        QVERIFY(page.exporting());
        QCOMPARE(page.cmdExportForMobile->text(), QString("Export for Carolist App"));
    }

    void scratchTableEmptiedWithThePage() {
        {
            fraDatabase page;
            show(page, 1);
        }
        QSqlQuery left = ExecuteSql("SELECT COUNT(*) FROM tblDedup");
        QVERIFY(left.next());
        QCOMPARE(left.value(0).toInt(), 0);
    }
};

KV_TEST_CLASS(TestDatabasePage)
#include "tst_fradatabase.moc"
