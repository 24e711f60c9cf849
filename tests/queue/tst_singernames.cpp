#include "catalogue/database.h"
#include "queue/propercase.h"
#include "queue/singernames.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QTest>

class TestSingerNames : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;

    void history(const QStringList& names) {
        for (const QString& n : names)
            ExecuteSql(QStringLiteral(
                           "INSERT INTO tblKaraokeTrackHistory (SingerName, Artist, Title, [Key], TrackPath) "
                           "VALUES ('%1', 'a', 't', 0, '/p')")
                           .arg(MakeSafeSql(n)));
    }

private slots:
    void init() {
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>();
        SingerNames.clear();
    }
    void cleanup() {
        m_ws.reset();
        m_prompts.reset();
    }

    // With k history names the lists show the empty entry, the default and k - 1 names.
    void listStopsOneShort_data() {
        QTest::addColumn<QStringList>("history");
        QTest::addColumn<QStringList>("listed");
        QTest::addColumn<int>("arraySize");
        QTest::newRow("no history") << QStringList{} << QStringList{"", "No Name"} << 3;
        QTest::newRow("one") << QStringList{"Ann"} << QStringList{"", "No Name"} << 3;
        QTest::newRow("three") << QStringList{"Ann", "Bob", "Cy"} << QStringList{"", "No Name", "Ann", "Bob"}
                               << 5;
        QTest::newRow("duplicates once")
            << QStringList{"Ann", "Ann", "Bob"} << QStringList{"", "No Name", "Ann"} << 4;
    }
    void listStopsOneShort() {
        QFETCH(QStringList, history);
        this->history(history);
        InitSingerNames(QStringLiteral("No Name"));
        LoadSingerNames();
        QStringList sorted = SingerNamesForList();
        // The history's order is the database's; compare as sets beyond the first two.
        std::sort(sorted.begin() + 2, sorted.end());
        QTEST(sorted, "listed");
        QTEST(int(SingerNames.size()), "arraySize");
    }

    void addToListArray_data() {
        QTest::addColumn<QStringList>("history");
        QTest::addColumn<QStringList>("added");
        QTest::addColumn<QStringList>("array");
        QTest::newRow("first name, no history")
            << QStringList{} << QStringList{"Dee"} << QStringList{"", "Def", "Dee", ""};
        QTest::newRow("overwrites last history name")
            << QStringList{"Ann", "Bob"} << QStringList{"Dee"} << QStringList{"", "Def", "Ann", "Dee", ""};
        QTest::newRow("known name not added")
            << QStringList{"Ann", "Bob"} << QStringList{"Ann"} << QStringList{"", "Def", "Ann", "Bob"};
        QTest::newRow("the default is known")
            << QStringList{} << QStringList{"Def"} << QStringList{"", "Def", ""};
        QTest::newRow("compare is case-exact")
            << QStringList{"Ann", "Bob"} << QStringList{"ann"} << QStringList{"", "Def", "Ann", "ann", ""};
        // The first empty name lands in index 2, where the second one finds it.
        QTest::newRow("empty name added")
            << QStringList{} << QStringList{"", ""} << QStringList{"", "Def", "", ""};
        QTest::newRow("the hidden top slot is not compared")
            << QStringList{"Ann", "Bob"} << QStringList{"Bob", "Bob"}
            << QStringList{"", "Def", "Ann", "Bob", ""};
    }
    void addToListArray() {
        QFETCH(QStringList, history);
        QFETCH(QStringList, added);
        InitSingerNames(QStringLiteral("Def"));
        // The history's names, in the order LoadSingerNames would give them.
        for (int i = 0; i < history.size(); ++i) {
            SingerNames.resize(2 + i + 1);
            SingerNames[2 + i] = history.at(i);
        }
        for (const QString& n : added)
            AddToListArray(n);
        QTEST(SingerNames, "array");
    }

    void initKeepsLaterSlots() {
        SingerNames = {"x", "y", "Ann", "Bob"};
        InitSingerNames(QStringLiteral("Def"));
        QCOMPARE(SingerNames, QStringList({"", "Def", "Ann", "Bob"}));
    }

    void loadFailureIsLogged() {
        ExecuteSql(QStringLiteral("DROP TABLE tblKaraokeTrackHistory"));
        InitSingerNames(QStringLiteral("Def"));
        LoadSingerNames();
        QCOMPARE(SingerNames, QStringList({"", "Def", ""}));
        QCOMPARE(TestWorkspace::errorLogRecords(), 1);
    }

    void properCase_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const char* typed, const char* expected) {
            QTest::newRow(name) << QString::fromUtf8(typed) << QString::fromUtf8(expected);
        };
        row("lower", "john smith", "John Smith");
        row("upper", "JOHN SMITH", "John Smith");
        row("hyphen", "mary-jane", "Mary-Jane");
        row("irish", "sinead o'connor", "Sinead O'Connor");
        row("contraction", "don't stop", "Don't Stop");
        row("non-ascii", "élodie ÖZTÜRK", "Élodie Öztürk");
        row("blanks kept", "  two  spaces ", "  Two  Spaces ");
        row("digits", "dj 2nd", "Dj 2nd");
        row("brackets", "ann (the voice)", "Ann (The Voice)");
        row("empty", "", "");
    }
    void properCase() {
        QFETCH(QString, typed);
        QTEST(ProperCase(typed), "expected");
    }
};

KV_TEST_CLASS(TestSingerNames)
#include "tst_singernames.moc"
