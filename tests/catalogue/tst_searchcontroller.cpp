#include "catalogue/database.h"
#include "catalogue/searchcontroller.h"
#include "catalogue/searchresultslist.h"
#include "catalogue/searchresultsmodel.h"
#include "core/appsettings.h"
#include "core/kverror.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QApplication>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>
#include <memory>

using IntList = QList<int>;

namespace {

// The search frame as the main window builds it, with a second text box to
// take the focus away from the search box.
struct SearchFrame {
    QWidget window;
    QLineEdit* txtSearch = new QLineEdit(&window);
    QLineEdit* txtOther = new QLineEdit(&window);
    QPushButton* btnSearch = new QPushButton(QStringLiteral("Search"), &window);
    QPushButton* btnClearSearch = new QPushButton(QStringLiteral("&Clear"), &window);
    QTableView* olvSearchResults = new QTableView(&window);
    QTimer* tmrSearch = new QTimer(&window);
    std::unique_ptr<SearchController> search;

    SearchFrame() {
        txtSearch->setObjectName(QStringLiteral("txtSearch"));
        txtOther->setObjectName(QStringLiteral("txtOther"));
        auto* layout = new QVBoxLayout(&window);
        for (QWidget* w : std::initializer_list<QWidget*>{txtSearch, txtOther, btnSearch, btnClearSearch,
                                                          olvSearchResults})
            layout->addWidget(w);
        window.resize(700, 500);
        tmrSearch->setInterval(500);
        search = std::make_unique<SearchController>(
            SearchWidgets{txtSearch, btnSearch, btnClearSearch, olvSearchResults, tmrSearch});
    }
    ~SearchFrame() { search.reset(); }

    int rows() const { return search->model()->rowCount(); }
    QList<qint64> ids() const {
        QList<qint64> found;
        for (int r = 0; r < rows(); ++r)
            found << search->GetSelectedSong(r);
        return found;
    }
    void searchFor(const QString& text) {
        txtSearch->setText(text);
        search->FilterIt();
    }
    bool showAndFocus(QWidget* w) {
        window.show();
        QApplication::setActiveWindow(&window);
        if (!QTest::qWaitForWindowActive(&window))
            return false;
        w->setFocus();
        return QTest::qWaitFor([w] { return QApplication::focusWidget() == w; });
    }
    // Runs the ticks that search as you type would run, until the timer rests.
    void runTicks() {
        for (int i = 0; i < 50 && tmrSearch->isActive(); ++i)
            search->tmrSearch_Timer();
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

    int errorBoxes() const { return m_boxes->countTitle(QStringLiteral("Korvane Error")); }

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

    // Search as you type: the tick searches from four characters counted after
    // leading blanks, clears the list on an empty text and leaves it otherwise.
    void typingFloor_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("interactive");
        QTest::addColumn<int>("rows");
        QTest::newRow("three letters: rows stay") << "abb" << true << 6;
        QTest::newRow("four letters") << "abba" << true << 2;
        QTest::newRow("three letters and a blank") << "abb " << true << 2;
        QTest::newRow("a leading blank does not count") << " abb" << true << 6;
        QTest::newRow("only blanks: cleared") << "    " << true << 0;
        QTest::newRow("empty: cleared") << "" << true << 0;
        QTest::newRow("words in any order") << "me call" << true << 1;
        QTest::newRow("search as you type off") << "abba" << false << 6;
    }
    void typingFloor() {
        QFETCH(QString, text);
        QFETCH(bool, interactive);
        m_f->search->LoadAllSongs(); // the whole list, the faulty song too
        QCOMPARE(m_f->rows(), 6);
        QVERIFY(m_f->ids().contains(m_ids[4]));
        Cfg.InteractiveSearch = interactive;
        m_f->txtSearch->setText(text);
        m_f->search->tmrSearch_Timer();
        QTEST(m_f->rows(), "rows");
        QVERIFY(!m_f->tmrSearch->isActive());
    }

    void changeRestartsTheWait() {
        m_f->txtSearch->setText(QStringLiteral("a"));
        QVERIFY(m_f->tmrSearch->isActive());
        QTest::qWait(250);
        m_f->txtSearch->setText(QStringLiteral("ab"));
        QVERIFY(m_f->tmrSearch->remainingTime() > 350);

        Cfg.InteractiveSearch = false;
        m_f->tmrSearch->stop();
        m_f->txtSearch->setText(QStringLiteral("abc"));
        QVERIFY(!m_f->tmrSearch->isActive());
    }

    // A refused character: each pass cuts the last character and searches
    // nothing; the change brings the next pass until none is left.
    void refusedCharactersAreCut_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("finalText");
        QTest::addColumn<int>("rows");
        const auto row = [](const char* name, const char* text, const char* finalText, int rows) {
            QTest::newRow(name) << QString(text) << QString(finalText) << rows;
        };
        row("two letters and a star", "ab*", "ab", 6);
        row("star in second place, pasted", "a*bc", "a", 6);
        row("bar after a word: then it searches", "abba|", "abba", 2);
        row("brackets to nothing: cleared", "[x]", "", 0);
    }
    void refusedCharactersAreCut() {
        QFETCH(QString, text);
        m_f->search->LoadAllSongs();
        m_f->txtSearch->setText(text);
        m_f->runTicks();
        QTEST(m_f->txtSearch->text(), "finalText");
        QTEST(m_f->rows(), "rows");
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    void refusedPassKeepsTheHold() {
        Cfg.InteractiveSearch = false;
        m_f->searchFor(QStringLiteral("abba*"));
        QCOMPARE(m_f->txtSearch->text(), QStringLiteral("abba"));
        QVERIFY(m_f->search->list()->updateHold());
        QVERIFY(!m_f->olvSearchResults->updatesEnabled());
        m_f->search->FilterIt(); // Enter again: now it searches
        QCOMPARE(m_f->rows(), 2);
        QVERIFY(!m_f->search->list()->updateHold());
        QVERIFY(m_f->olvSearchResults->updatesEnabled());
    }

    // Enter and the button search from one character; the list hides its id
    // column after every load.
    void buttonSearchHasNoFloor() {
        m_f->olvSearchResults->setColumnWidth(0, 80);
        m_f->txtSearch->setText(QStringLiteral("q"));
        m_f->btnSearch->click();
        QCOMPARE(m_f->rows(), 2);
        QCOMPARE(m_f->olvSearchResults->columnWidth(0), 0);
    }

    // A typed search never lists the faulty song; IncludeSongPath is read live.
    void typedSearch_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("wholePath");
        QTest::addColumn<int>("rows");
        QTest::newRow("two of three") << "abba" << false << 2;
        QTest::newRow("the faulty song alone") << "broken" << false << 0;
        QTest::newRow("path word, file name only") << "songs" << false << 0;
        QTest::newRow("path word, whole path") << "songs" << true << 5;
        QTest::newRow("apostrophe matches literally") << "don't" << false << 1;
    }
    void typedSearch() {
        QFETCH(QString, text);
        QFETCH(bool, wholePath);
        Cfg.IncludeSongPath = wholePath;
        m_f->searchFor(text);
        QTEST(m_f->rows(), "rows");
        QVERIFY(!m_f->ids().contains(m_ids[4]));
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    void clearButton_data() {
        QTest::addColumn<bool>("viewAll");
        QTest::addColumn<int>("rows");
        QTest::newRow("empty list") << false << 0;
        QTest::newRow("whole catalogue") << true << 6;
    }
    void clearButton() {
        QFETCH(bool, viewAll);
        QFETCH(int, rows);
        Cfg.ViewAllSongsAtStartup = viewAll;
        QVERIFY(m_f->showAndFocus(m_f->txtOther));
        m_f->searchFor(QStringLiteral("abba"));
        m_f->btnClearSearch->click();
        QCOMPARE(m_f->txtSearch->text(), QString());
        QCOMPARE(m_f->rows(), rows);
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(m_f->txtSearch));
        // The emptied text starts the wait again: a second clear follows.
        QVERIFY(m_f->tmrSearch->isActive());
        m_f->search->tmrSearch_Timer();
        QCOMPARE(m_f->rows(), rows);
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
        QTest::newRow("Ctrl minus") << "txtSearch" << 189 << 2 << "abba_" << 0 << true << 6;
        QTest::newRow("minus elsewhere") << "txtOther" << 189 << 0 << "abba" << 189 << false << 6;
        QTest::newRow("letter") << "txtSearch" << 65 << 0 << "abba" << 65 << true << 6;
        QTest::newRow("digit") << "txtSearch" << 48 << 0 << "abba" << 48 << true << 6;
        QTest::newRow("space") << "txtSearch" << 32 << 0 << "abba" << 32 << true << 6;
        QTest::newRow("Ctrl+A") << "txtSearch" << 65 << 2 << "abba" << 65 << false << 6;
        QTest::newRow("Alt+1") << "txtSearch" << 49 << 4 << "abba" << 49 << false << 6;
        QTest::newRow("Backspace") << "txtSearch" << 8 << 0 << "abba" << 8 << false << 6;
        QTest::newRow("F5") << "txtSearch" << 116 << 0 << "abba" << 116 << false << 6;
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
        int state = shift;
        m_f->search->oKeyboard_KeyDown(code, state);
        QCOMPARE(code, keyAfter);
        QTEST(m_f->txtSearch->text(), "text");
        QTEST(m_f->tmrSearch->isActive(), "timer");
        QTEST(m_f->rows(), "rows");
        if (key == 189 && keyAfter == 0)
            QCOMPARE(m_f->txtSearch->cursorPosition(), 5);
    }

    // Real key events through the hook, as the key table numbers them, and the
    // box's own key handling once the hook is gone.
    void keysThroughTheHook() {
        QVERIFY(m_f->showAndFocus(m_f->txtSearch));
        QSignalSpy searches(m_f->btnSearch, &QAbstractButton::clicked);
        QSignalSpy returns(m_f->txtSearch, &QLineEdit::returnPressed);
        m_f->search->createKeyboardHook();
        QVERIFY(m_f->search->keyboardHook());

        // Delete empties the whole box wherever the caret stands.
        m_f->txtSearch->setText(QStringLiteral("abcdef"));
        m_f->txtSearch->setCursorPosition(2);
        QTest::keyClick(m_f->txtSearch, Qt::Key_Delete);
        QCOMPARE(m_f->txtSearch->text(), QString());

        // Shift and the minus key: one "_" at the end, not at the caret.
        m_f->txtSearch->setText(QStringLiteral("ab"));
        m_f->txtSearch->setCursorPosition(1);
        QTest::keyClick(m_f->txtSearch, Qt::Key_Underscore, Qt::ShiftModifier);
        QCOMPARE(m_f->txtSearch->text(), QStringLiteral("ab_"));
        QTest::keyClick(m_f->txtSearch, Qt::Key_Minus);
        QCOMPARE(m_f->txtSearch->text(), QStringLiteral("ab_-"));

        // Enter: one search, and the box never sees the key.
        m_f->txtSearch->setText(QStringLiteral("abba"));
        QTest::keyClick(m_f->txtSearch, Qt::Key_Return);
        QCOMPARE(searches.count(), 1);
        QCOMPARE(returns.count(), 0);
        QCOMPARE(m_f->rows(), 2);

        // Released: Delete is the box's own again, and Enter and Escape reach
        // the search box's own handling, which searches and clears.
        m_f->search->releaseKeyboardHook();
        QVERIFY(!m_f->search->keyboardHook());
        m_f->txtSearch->setCursorPosition(0);
        QTest::keyClick(m_f->txtSearch, Qt::Key_Delete);
        QCOMPARE(m_f->txtSearch->text(), QStringLiteral("bba"));
        m_f->txtSearch->setText(QStringLiteral("q"));
        QTest::keyClick(m_f->txtSearch, Qt::Key_Enter);
        QCOMPARE(searches.count(), 2);
        QCOMPARE(returns.count(), 0);
        QCOMPARE(m_f->rows(), 2);
        QTest::keyClick(m_f->txtSearch, Qt::Key_Escape);
        QCOMPARE(m_f->txtSearch->text(), QString());
        QCOMPARE(m_f->rows(), 0);
    }

    // The widths read at start-up, and saved after a search has hidden the id column.
    void columnWidths_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<IntList>("widths");
        QTest::addColumn<QString>("saved");
        QTest::newRow("absent: id column 198, fifth keeps 100")
            << QString() << IntList{198, 196, 84, 48, 100} << "0;196;84;48;100";
        QTest::newRow("saved five") << "0;150;150;80;40" << IntList{0, 150, 150, 80, 40} << "0;150;150;80;40";
        QTest::newRow("a word stops the rest")
            << "0;abc;10;10;10" << IntList{0, 100, 100, 100, 100} << "0;100;100;100;100";
        QTest::newRow("a sixth is passed over")
            << "10;20;30;40;50;60" << IntList{10, 20, 30, 40, 50} << "0;20;30;40;50";
    }
    void columnWidths() {
        QFETCH(QString, stored);
        QFETCH(QString, saved);
        if (!stored.isNull())
            settingsfile::writeText(QStringLiteral("SearchColumns"), stored);
        m_f->search->RetrieveSearchColumns();
        IntList actual;
        for (int c = 0; c < 5; ++c)
            actual << m_f->olvSearchResults->columnWidth(c);
        QTEST(actual, "widths");
        m_f->searchFor(QStringLiteral("abba"));
        m_f->search->SaveSearchColumns();
        QCOMPARE(settingsfile::readText(QStringLiteral("SearchColumns"), QString()), saved);
        // And back.
        m_f->olvSearchResults->setColumnWidth(2, 5);
        m_f->search->RetrieveSearchColumns();
        QCOMPARE(m_f->olvSearchResults->columnWidth(2), saved.section(QLatin1Char(';'), 2, 2).toInt());
    }

    // A failing statement is logged under the procedure's name, without the box.
    void failingQueryIsLoggedQuietly_data() {
        QTest::addColumn<bool>("typed");
        QTest::addColumn<QString>("source");
        QTest::newRow("FilterIt") << true << "KvApp.frmMain.FilterIt";
        QTest::newRow("LoadAllSongs") << false << "KvApp.frmMain.LoadAllSongs";
    }
    void failingQueryIsLoggedQuietly() {
        QFETCH(bool, typed);
        QFETCH(QString, source);
        m_f->search->LoadAllSongs();
        CloseDatabase();
        if (typed)
            m_f->searchFor(QStringLiteral("abba"));
        else
            m_f->search->LoadAllSongs();
        QCOMPARE(TestWorkspace::errorLogRecords(), 1);
        QVERIFY(TestWorkspace::errorLog().contains(source));
        QCOMPARE(errorBoxes(), 0);
        QCOMPARE(m_f->rows(), 0);
        QVERIFY(!m_f->search->list()->updateHold());
        QVERIFY(OpenDatabase());
        // Boxes that are not the error box still reach the host.
        QCOMPARE(prompts().msgBox(QStringLiteral("t"), 0, QStringLiteral("Other")), int(Prompts::Ok));
        QCOMPARE(m_boxes->countTitle(QStringLiteral("Other")), 1);
    }

    void longSearchText_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("one word of 10,000 characters") << QString(10000, QLatin1Char('x'));
        QTest::newRow("5,000 words") << QStringLiteral("a ").repeated(5000);
        QTest::newRow("10,000 apostrophes") << QString(10000, QLatin1Char('\''));
    }
    void longSearchText() {
        QFETCH(QString, text);
        m_f->txtSearch->setText(text);
        QCOMPARE(m_f->txtSearch->text().size(), text.size());
        m_f->search->FilterIt();
        QVERIFY(m_f->rows() <= 5);
        QCOMPARE(errorBoxes(), 0);
        // The list still works afterwards.
        m_f->searchFor(QStringLiteral("abba"));
        QCOMPARE(m_f->rows(), 2);
    }

    void mouseOnTheResults() {
        QVERIFY(m_f->showAndFocus(m_f->txtSearch));
        QSignalSpy adds(m_f->search.get(), &SearchController::addSongRequested);
        QSignalSpy menus(m_f->search.get(), &SearchController::searchOptionsRequested);
        QWidget* viewport = m_f->olvSearchResults->viewport();
        // An empty list: no menu.
        QTest::mouseClick(viewport, Qt::RightButton, {}, QPoint(20, 10));
        QCOMPARE(menus.count(), 0);

        m_f->searchFor(QStringLiteral("abba"));
        QCOMPARE(m_f->search->list()->selectedRow(), -1);
        QVERIFY_THROWS_EXCEPTION(KvError, m_f->search->GetSelectedSong(2)); // past the end
        const QPoint second = m_f->olvSearchResults->visualRect(m_f->search->model()->index(1, 1)).center();
        QVERIFY(second.y() > 0);
        // A double click as the system delivers it: press, release, then the double click.
        QTest::mouseClick(viewport, Qt::LeftButton, {}, second);
        QTest::mouseDClick(viewport, Qt::LeftButton, {}, second);
        QCOMPARE(adds.count(), 1);
        QCOMPARE(adds.first().at(0).toInt(), 1);
        QCOMPARE(adds.first().at(1).toLongLong(), m_f->search->model()->trackId(1));
        QTest::mouseClick(viewport, Qt::RightButton, {}, second);
        QCOMPARE(menus.count(), 1);
        QCOMPARE(m_f->search->list()->selectedRow(), 1);
    }
};

KV_TEST_CLASS(TestSearchController)
#include "tst_searchcontroller.moc"
