#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songsearch.h"
#include "catalogue/ui/searchoptionsmenu.h"
#include "catalogue/ui/searchresultslist.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QAction>
#include <QMenu>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>

namespace {

// The menu as the main window makes it: entries found by name.
QMenu* makeMenu(QWidget* owner) {
    auto* menu = new QMenu(QStringLiteral("Search Options"), owner);
    for (const char* name : {"mnuSearchOptionsSwap", "mnuSearchOptionsComma", "mnuSearchOptionMarkError",
                             "mnuSearchOptionRemove", "mnuSearchOptionRename"})
        menu->addAction(QString::fromLatin1(name))->setObjectName(QLatin1String(name));
    return menu;
}

QStringList catalogueRows() {
    QSqlQuery q = ExecuteSql("SELECT ArtistName || '|' || TrackName || '|' || Error || '|' || "
                             "ifnull(Notes, '') FROM tblKaraokeTracks ORDER BY KaraokeTrackID");
    QStringList rows;
    while (q.next())
        rows << q.value(0).toString();
    return rows;
}

} // namespace

class TestSearchOptionsMenu : public QObject {
    Q_OBJECT

    struct Fixture {
        TestWorkspace ws;
        ScriptedPrompts boxes;
        QWidget window;
        QTableView* view = new QTableView(&window);
        SearchResultsList* list = new SearchResultsList(view, &window);
        QMenu* menu = makeMenu(&window);
        SearchOptionsMenu repairs{menu, list};

        explicit Fixture(const QStringList& songs) {
            ws.addSongs(songs);
            list->loadFromSql(dbConnection(), SongSearch::loadAllSql());
        }
        QStringList listRows() const {
            QStringList rows;
            for (int r = 0; r < list->rowCount(); ++r)
                rows << list->model()->index(r, 1).data().toString() + "|" +
                            list->model()->index(r, 2).data().toString();
            return rows;
        }
        void trigger(const char* name) { menu->findChild<QAction*>(QLatin1String(name))->trigger(); }
    };

private slots:
    // Each entry on the selected row (the list is by artist): what the list
    // shows afterwards, what the catalogue holds, and the boxes asked.
    void entries_data() {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QVariantList>("answers");
        QTest::addColumn<QStringList>("listAfter");
        QTest::addColumn<QStringList>("catalogueAfter");
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("swap") << "mnuSearchOptionsSwap" << QVariantList{}
                              << QStringList{"Abba|SOS", "Pat's Song|O'Brien, Pat"}
                              << QStringList{"Pat's Song|O'Brien, Pat|0|", "Abba|SOS|0|"} << QStringList{};
        QTest::newRow("first name first, refused for the apostrophe; the list keeps it")
            << "mnuSearchOptionsComma" << QVariantList{} << QStringList{"Abba|SOS", "Pat O'Brien|Pat's Song"}
            << QStringList{"O'Brien, Pat|Pat's Song|0|", "Abba|SOS|0|"} << QStringList{"Korvane Error"};
        QTest::newRow("mark as error, notes with a quote")
            << "mnuSearchOptionMarkError" << QVariantList{Prompts::Ok, "won't play"}
            << QStringList{"Abba|SOS", "O'Brien, Pat|Pat's Song"}
            << QStringList{"O'Brien, Pat|Pat's Song|-1|won't play", "Abba|SOS|0|"}
            << QStringList{"Mark the song as having errors"};
        QTest::newRow("mark as error, cancelled")
            << "mnuSearchOptionMarkError" << QVariantList{Prompts::Cancel}
            << QStringList{"Abba|SOS", "O'Brien, Pat|Pat's Song"}
            << QStringList{"O'Brien, Pat|Pat's Song|0|", "Abba|SOS|0|"}
            << QStringList{"Mark the song as having errors"};
        QTest::newRow("remove") << "mnuSearchOptionRemove" << QVariantList{Prompts::Ok}
                                << QStringList{"Abba|SOS"} << QStringList{"Abba|SOS|0|"}
                                << QStringList{"Remove Song From Database"};
        QTest::newRow("remove, cancelled") << "mnuSearchOptionRemove" << QVariantList{Prompts::Cancel}
                                           << QStringList{"Abba|SOS", "O'Brien, Pat|Pat's Song"}
                                           << QStringList{"O'Brien, Pat|Pat's Song|0|", "Abba|SOS|0|"}
                                           << QStringList{"Remove Song From Database"};
    }
    void entries() {
        QFETCH(QString, entry);
        QFETCH(QVariantList, answers);
        QFETCH(QStringList, listAfter);
        QFETCH(QStringList, catalogueAfter);
        QFETCH(QStringList, boxes);
        Fixture f({"O'Brien, Pat - Pat's Song", "Abba - SOS"});
        for (const QVariant& a : answers)
            f.boxes.answer(a);
        f.list->setSelectedRow(1);
        f.trigger(entry.toLatin1().constData());
        QCOMPARE(f.listRows(), listAfter);
        QCOMPARE(catalogueRows(), catalogueAfter);
        QCOMPARE(f.boxes.boxTitles(), boxes);
    }

    void commaWithoutApostropheReachesCatalogue() {
        Fixture f({"Smith, John & Jane - Duet"});
        f.list->setSelectedRow(0);
        f.trigger("mnuSearchOptionsComma");
        QCOMPARE(catalogueRows(), QStringList{"John Smith & Jane|Duet|0|"});
        QVERIFY(f.boxes.calls.isEmpty());
    }

    void nothingSelectedDoesNothing() {
        Fixture f({"Smith, John - Song"});
        f.list->setSelectedRow(-1);
        for (const char* e : {"mnuSearchOptionsSwap", "mnuSearchOptionsComma", "mnuSearchOptionMarkError",
                              "mnuSearchOptionRemove", "mnuSearchOptionRename"})
            f.trigger(e);
        QCOMPARE(catalogueRows(), QStringList{"Smith, John|Song|0|"});
        QVERIFY(f.boxes.calls.isEmpty());
    }

    void removeSelectsTheRowAtTheSamePlace() {
        Fixture f({"A - 1", "B - 2", "C - 3"});
        f.boxes.answer(Prompts::Ok);
        f.list->setSelectedRow(1);
        f.trigger("mnuSearchOptionRemove");
        QCOMPARE(f.listRows(), (QStringList{"A|1", "C|3"}));
        QCOMPARE(f.list->selectedRow(), 1);
    }
};

KV_TEST_CLASS(TestSearchOptionsMenu)
#include "tst_searchoptionsmenu.moc"
