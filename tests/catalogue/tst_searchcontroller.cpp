#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/ui/searchcontroller.h"
#include "catalogue/ui/searchresultslist.h"
#include "core/appsettings.h"
#include "core/kverror.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <memory>

namespace {

// The search frame as the main window builds it, with a second text box to
// take the focus away from the search box.
struct SearchFrame {
    QWidget window;
    QLineEdit* txtSearch = new QLineEdit(&window);
    QLineEdit* txtOther = new QLineEdit(&window);
    QTableView* olvSearchResults = new QTableView(&window);
    QTimer* tmrSearch = new QTimer(&window);
    std::unique_ptr<SearchController> search = std::make_unique<SearchController>(SearchWidgets{
        txtSearch, new QPushButton(&window), new QPushButton(&window), olvSearchResults, tmrSearch});

    SearchFrame() {
        txtSearch->setObjectName(QStringLiteral("txtSearch"));
    } // the key hook looks for the name
    ~SearchFrame() { search.reset(); }
    int rows() const { return search->model()->rowCount(); }
    bool showAndFocus(QWidget* w) {
        window.show();
        QApplication::setActiveWindow(&window);
        if (!QTest::qWaitForWindowActive(&window))
            return false;
        w->setFocus();
        return QTest::qWaitFor([w] { return QApplication::focusWidget() == w; });
    }
};

const QStringList kSongs = {
    QStringLiteral("ABBA - Dancing Queen"),      QStringLiteral("Abba - Waterloo"),
    QStringLiteral("Queen - Bohemian Rhapsody"), QStringLiteral("Blondie - Call Me"),
    QStringLiteral("ABBA - Broken Song"),        QStringLiteral("Guns N' Roses - Don't Cry")};

} // namespace

class TestSearchController : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_boxes;
    std::unique_ptr<TestWorkspace> m_ws;
    QList<qint64> m_ids;
    std::unique_ptr<SearchFrame> m_f;

private slots:
    void init() {
        Cfg = AppSettings{};
        Cfg.InteractiveSearch = true;
        m_boxes = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>();
        m_ids = m_ws->addSongs(kSongs);
        // The last song is marked as faulty.
        ExecuteSql(
            QStringLiteral("Update tblKaraokeTracks Set Error = 1 Where KaraokeTrackID = %1").arg(m_ids[4]));
        m_f = std::make_unique<SearchFrame>();
    }
    void cleanup() {
        m_f.reset();
        m_ws.reset();
        m_boxes.reset();
        Cfg = AppSettings{};
    }

    // A search from Enter (no floor) or from the tick of search as you type
    // (from four characters counted after leading blanks; only blanks clear the
    // list, fewer characters leave it). No search lists the faulty song, and
    // IncludeSongPath is read live.
    void search_data() {
        QTest::addColumn<int>("how"); // 0 Enter, 1 tick, 2 tick with search as you type off
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("wholePath");
        QTest::addColumn<int>("rows");
        const auto row = [](const char* tag, int how, const char* text, int rows, bool wholePath = false) {
            QTest::newRow(tag) << how << QString(text) << wholePath << rows;
        };
        row("Enter: two of three", 0, "abba", 2);
        row("Enter: one letter", 0, "q", 2);
        row("Enter: the faulty song alone", 0, "broken", 0);
        row("Enter: path word, file name only", 0, "songs", 0);
        row("Enter: path word, whole path", 0, "songs", 5, true);
        row("Enter: apostrophe matches literally", 0, "don't", 1);
        QTest::newRow("Enter: 10,000 apostrophes") << 0 << QString(10000, QLatin1Char('\'')) << false << 0;
        row("tick: three letters, rows stay", 1, "abb", 6);
        row("tick: four letters", 1, "abba", 2);
        row("tick: three letters and a blank", 1, "abb ", 2);
        row("tick: a leading blank does not count", 1, " abb", 6);
        row("tick: only blanks clear", 1, "    ", 0);
        row("tick: search as you type off", 2, "abba", 6);
    }
    void search() {
        QFETCH(int, how);
        QFETCH(QString, text);
        QFETCH(bool, wholePath);
        Cfg.IncludeSongPath = wholePath;
        Cfg.InteractiveSearch = how != 2;
        m_f->search->LoadAllSongs(); // the whole list, the faulty song too
        QCOMPARE(m_f->rows(), 6);
        m_f->txtSearch->setText(text);
        if (how == 0)
            m_f->search->FilterIt();
        else
            m_f->search->tmrSearch_Timer();
        QTEST(m_f->rows(), "rows");
        for (int r = 0; m_f->rows() < 6 && r < m_f->rows(); ++r)
            QVERIFY(m_f->search->GetSelectedSong(r) != m_ids[4]);
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // The key table, called as the hook calls it.
    void keyTable_data() {
        QTest::addColumn<QString>("focus");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("shift");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("keyAfter");
        QTest::addColumn<bool>("timer");
        QTest::addColumn<int>("rows");
        QTest::newRow("Enter searches, swallowed") << "txtSearch" << 13 << 0 << "abba" << 0 << false << 2;
        QTest::newRow("Enter elsewhere") << "txtOther" << 13 << 0 << "abba" << 13 << false << 6;
        QTest::newRow("Delete clears") << "txtSearch" << 46 << 0 << "" << 46 << true << 0;
        QTest::newRow("minus") << "txtSearch" << 189 << 0 << "abba-" << 0 << true << 6;
        QTest::newRow("Shift minus") << "txtSearch" << 189 << 1 << "abba_" << 0 << true << 6;
        QTest::newRow("Ctrl+A") << "txtSearch" << 65 << 2 << "abba" << 65 << false << 6;
    }
    void keyTable() {
        QFETCH(QString, focus);
        QFETCH(int, key);
        QFETCH(int, shift);
        QFETCH(int, keyAfter);
        QVERIFY(m_f->showAndFocus(focus == QLatin1String("txtSearch") ? m_f->txtSearch : m_f->txtOther));
        m_f->search->LoadAllSongs();
        m_f->txtSearch->setText(QStringLiteral("abba"));
        m_f->txtSearch->setCursorPosition(1);
        m_f->tmrSearch->stop();
        int code = key;
        m_f->search->oKeyboard_KeyDown(code, shift);
        QCOMPARE(code, keyAfter);
        QTEST(m_f->txtSearch->text(), "text");
        QTEST(m_f->tmrSearch->isActive(), "timer");
        QTEST(m_f->rows(), "rows");
        if (key == 189 && keyAfter == 0)
            QCOMPARE(m_f->txtSearch->cursorPosition(), 5);
    }

    // A failing statement is logged under the procedure's name, without the
    // box, and leaves an empty list that still redraws.
    void failingQueryIsLoggedQuietly() {
        m_f->search->LoadAllSongs();
        CloseDatabase();
        m_f->txtSearch->setText(QStringLiteral("abba"));
        m_f->search->FilterIt();
        QCOMPARE(TestWorkspace::errorLog().count(QStringLiteral("KvApp.frmMain.FilterIt")), 1);
        QCOMPARE(m_boxes->countTitle(QStringLiteral("Korvane Error")) + m_f->rows(), 0);
        QVERIFY(!m_f->search->list()->updateHold());
        QVERIFY(OpenDatabase());
    }
};

KV_TEST_CLASS(TestSearchController)
#include "tst_searchcontroller.moc"
