#include "core/kverror.h"
#include "history/historylistmodel.h"
#include "historyfixture.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QTest>

using namespace historytest;

class TestHistoryStore : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;

    // Ann sang one song twice in key 2 and once in key 3; Bob and O'Neil once.
    static void seed() {
        add("Ann", "Abba", "Waterloo", 2, "/s/waterloo.zip");
        add("Bob", "Blur", "Song 2", 0, "/s/song2.zip");
        add("Ann", "Abba", "Waterloo", 2, "/s/waterloo.zip");
        add("O'Neil", "Queen", "Bicycle", -1, "/s/bike.zip");
        add("Ann", "Abba", "Waterloo", 3, "/s/waterloo.zip");
        add("Ann", "Adele", "Hello", 0, "/s/hello.zip");
    }

    static QStringList shown(HistoryListModel& m) {
        m.fetchUpTo(-1);
        QStringList out;
        for (int r = 0; r < m.rowCount(); ++r) {
            const HistoryRow h = m.historyRow(r);
            out << QStringLiteral("%1|%2|%3").arg(h.SingerName, h.Title).arg(h.Key);
        }
        return out;
    }

private slots:
    void init() {
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>();
    }
    void cleanup() {
        m_ws.reset();
        m_prompts.reset();
    }

    // The list's four statements: singer or all, with or without the rows that
    // repeat on all five columns; a song in two keys is two rows either way.
    void list_data() {
        QTest::addColumn<QString>("singer");
        QTest::addColumn<bool>("noDups");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("all, no dups") << "(All)" << true
                                      << QStringList{"Ann|Waterloo|2", "Ann|Waterloo|3", "Ann|Hello|0",
                                                     "Bob|Song 2|0", "O'Neil|Bicycle|-1"};
        QTest::newRow("all, every row")
            << "(All)" << false << QStringList{"Ann|Waterloo|2", "Ann|Waterloo|2", "Ann|Waterloo|3",
                                               "Ann|Hello|0",    "Bob|Song 2|0",   "O'Neil|Bicycle|-1"};
        QTest::newRow("singer, no dups")
            << "Ann" << true << QStringList{"Ann|Waterloo|2", "Ann|Waterloo|3", "Ann|Hello|0"};
        QTest::newRow("singer, every row")
            << "Ann" << false
            << QStringList{"Ann|Waterloo|2", "Ann|Waterloo|2", "Ann|Waterloo|3", "Ann|Hello|0"};
        QTest::newRow("singer case-blind")
            << "ann" << true << QStringList{"Ann|Waterloo|2", "Ann|Waterloo|3", "Ann|Hello|0"};
        QTest::newRow("apostrophe") << "O'Neil" << true << QStringList{"O'Neil|Bicycle|-1"};
        QTest::newRow("unknown singer") << "Nobody" << true << QStringList{};
        QTest::newRow("empty combo") << "" << true << QStringList{};
    }
    void list() {
        QFETCH(QString, singer);
        QFETCH(bool, noDups);
        QFETCH(QStringList, rows);
        seed();
        HistoryListModel m;
        m.load({singer, noDups, false});
        QStringList got = shown(m);
        // Within one singer and artist the statement fixes no order.
        QStringList want = rows;
        got.sort();
        want.sort();
        QCOMPARE(got, want);
        // Singers come in order.
        QStringList singers;
        for (int r = 0; r < m.rowCount(); ++r)
            singers << m.historyRow(r).SingerName;
        QStringList sorted = singers;
        std::sort(sorted.begin(), sorted.end(),
                  [](const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) < 0; });
        QCOMPARE(singers, sorted);
    }

    void singerCombo_data() {
        QTest::addColumn<bool>("seeded");
        QTest::addColumn<bool>("withAll");
        QTest::addColumn<QStringList>("entries");
        QTest::newRow("with (All) first") << true << true << QStringList{"(All)", "Ann", "Bob", "O'Neil"};
        QTest::newRow("without (All)") << true << false << QStringList{"Ann", "Bob", "O'Neil"};
        QTest::newRow("empty history, with") << false << true << QStringList{};
        QTest::newRow("empty history, without") << false << false << QStringList{};
    }
    void singerCombo() {
        QFETCH(bool, seeded);
        QFETCH(bool, withAll);
        if (seeded)
            seed();
        QStringList got = HistoryStore::singersForCombo(withAll);
        if (!withAll)
            got.sort(); // that statement fixes no order
        QTEST(got, "entries");
    }

    // Remove Song takes every performance of the song by that singer, in all
    // keys, and nobody else's.
    void removeSongTakesEveryKey() {
        seed();
        add("Bob", "Abba", "Waterloo", 2, "/s/waterloo.zip");
        HistoryStore::removeSong("Ann", "/s/waterloo.zip");
        HistoryListModel m;
        m.load({"(All)", false, false});
        QCOMPARE(shown(m),
                 (QStringList{"Ann|Hello|0", "Bob|Waterloo|2", "Bob|Song 2|0", "O'Neil|Bicycle|-1"}));
    }

    // Quotes and the markers' own text in a name or path do no harm.
    void removeSongWithAwkwardValues() {
        add("%TrackPath%", "a", "t", 0, "/s/it's %SingerName%.zip");
        add("%TrackPath%", "a", "t", 0, "/s/other.zip");
        HistoryStore::removeSong("%TrackPath%", "/s/it's %SingerName%.zip");
        QCOMPARE(allRows(), QStringList{"%TrackPath%|a|t|0|/s/other.zip"});
    }

    // A clear takes one singer's rows or all; the list after a clear shows
    // every singer with repeats, under "(All)".
    void clearOneOrAll() {
        seed();
        HistoryStore::clear("O'Neil");
        QCOMPARE(HistoryStore::singersAfterClear(), (QStringList{"(All)", "Ann", "Bob"}));
        HistoryFilter f;
        f.singer = "(All)";
        f.afterClear = true;
        HistoryListModel m;
        m.load(f);
        QCOMPARE(shown(m).size(), 5);
        HistoryStore::clear("(All)");
        QCOMPARE(HistoryStore::rowCount(), 0);
        QCOMPARE(HistoryStore::singersAfterClear(), QStringList{});
    }

    void queueAllIsDistinctAndRefusesAnApostrophe() {
        seed();
        QList<HistoryRow> rows = HistoryStore::songsOfSinger("Ann");
        QCOMPARE(rows.size(), 3);
        for (const HistoryRow& r : rows)
            QCOMPARE(r.SingerName, QStringLiteral("Ann"));
        QVERIFY_THROWS_EXCEPTION(KvError, HistoryStore::songsOfSinger("O'Neil"));
    }

    // The list holds only the rows a view has asked for.
    void listFetchesByBlocks() {
        ExecuteSql("BEGIN");
        for (int i = 0; i < 1000; ++i)
            add(QStringLiteral("S%1").arg(i % 7), "a", QString::number(i), i % 5, "/p");
        ExecuteSql("COMMIT");
        HistoryListModel m;
        m.setBlockSize(100);
        m.load({"(All)", false, false});
        QCOMPARE(m.rowCount(), 100);
        QVERIFY(m.canFetchMore());
        m.fetchMore();
        QCOMPARE(m.rowCount(), 200);
        m.fetchUpTo(450);
        QCOMPARE(m.rowCount(), 451);
        m.fetchUpTo(-1);
        QCOMPARE(m.rowCount(), 1000);
        QVERIFY(!m.canFetchMore());
        QVERIFY_THROWS_EXCEPTION(KvError, m.historyRow(1000));
    }
};

KV_TEST_CLASS(TestHistoryStore)
#include "tst_historystore.moc"
