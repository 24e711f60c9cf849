#include "audience/nextperformer.h"
#include "core/appsettings.h"
#include "testrunner.h"

#include <QTest>

namespace {
struct FakeQueue : QueueAccess {
    QList<SelectedSong> rows;
    int selected = -1;
    int rowCount() const override { return int(rows.size()); }
    SelectedSong detailsFromRow(int row) const override {
        return row >= 0 && row < rows.size() ? rows[row] : SelectedSong{};
    }
    int selectedRow() const override { return selected; }
    void removeRow(int row) override { rows.removeAt(row); }
    void saveQueue() override {}
};

struct FakeStrip : AudienceStrip {
    bool shown = true;
    QStringList journal;
    bool isShown() const override { return shown; }
    void resetStrip() override { journal << "reset"; }
    void setStripText(const QString& t) override { journal << "text:" + t; }
    void setPendingText(const QString& t) override { journal << "pending:" + t; }
};

SelectedSong song(const QString& p, const QString& a, const QString& t) {
    return SelectedSong{p, "/songs/" + t + ".zip", a, t, 0};
}
} // namespace

class TestNextPerformer : public QObject {
    Q_OBJECT
private slots:
    void init() { Cfg = AppSettings{}; }

    // The placeholders are replaced in turn, %p first, then %a, then %t,
    // case-sensitively.
    void fillTemplate_data() {
        QTest::addColumn<QString>("tmpl");
        QTest::addColumn<QStringList>("names"); // performer, artist, title
        QTest::addColumn<QString>("text");
        QTest::newRow("every placeholder, more than once")
            << "%p %a %t / %p" << QStringList{"Jo", "Abba", "SOS"} << "Jo Abba SOS / Jo";
        QTest::newRow("a performer holding %a and %t is replaced in turn")
            << "Next: %p" << QStringList{"Al %a and %t", "Queen", "Bohemian"}
            << "Next: Al Queen and Bohemian";
        QTest::newRow("an artist holding %p is not: %p went first")
            << "%a sings %t" << QStringList{"Jo", "The %p Band", "Hey"} << "The %p Band sings Hey";
        QTest::newRow("an artist holding %t is") << "%a" << QStringList{"Jo", "Mr %t", "Jive"} << "Mr Jive";
        QTest::newRow("case-sensitive: %P and %T stay")
            << "%P %p %T" << QStringList{"Jo", "A", "T"} << "%P Jo %T";
        QTest::newRow("empty template: empty") << "" << QStringList{"Jo", "A", "T"} << "";
    }
    void fillTemplate() {
        QFETCH(QString, tmpl);
        QFETCH(QStringList, names);
        QFETCH(QString, text);
        QCOMPARE(NextPerformerAnnouncer::fillTemplate(tmpl, song(names[0], names[1], names[2])), text);
    }

    // After the song from row r starts, n rows being left in the queue.
    void announcedRow_data() {
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("nextPerformerPosition");
        QTest::addColumn<int>("row");
        QTest::newRow("removed, position on: the song that stood below") << 1 << 3 << true << 1;
        QTest::newRow("removed, position on, the last row played: wraps to the top") << 3 << 3 << true << 0;
        QTest::newRow("removed, position off: the top") << 1 << 3 << false << 0;
        QTest::newRow("kept, position on: the singer on stage") << 2 << 4 << true << 2;
        QTest::newRow("kept, position off: the top") << 2 << 4 << false << 0;
        QTest::newRow("one row left: row 0 whatever the position") << 0 << 1 << true << 0;
        QTest::newRow("one row left, position past it: row 0") << 1 << 1 << true << 0;
        QTest::newRow("no selection, position on: row -1") << -1 << 3 << true << -1;
        QTest::newRow("no selection, position off: the top") << -1 << 3 << false << 0;
    }
    void announcedRow() {
        QFETCH(int, position);
        QFETCH(int, rows);
        QFETCH(bool, nextPerformerPosition);
        QFETCH(int, row);
        QCOMPARE(NextPerformerAnnouncer::announcedRow(position, rows, nextPerformerPosition), row);
    }

    void anAnnouncementCutsInAtOnceAndStays() {
        FakeQueue q;
        q.rows = {song("Jo", "Abba", "SOS"), song("Al", "Queen", "Radio")};
        FakeStrip strip;
        Cfg.ScrollerText = "Next: %p with %t";
        NextPerformerAnnouncer a(q, strip);
        a.UpdateNextPerformer(1);
        QCOMPARE(strip.journal,
                 (QStringList{"reset", "text:Next: Al with Radio", "pending:Next: Al with Radio"}));
    }

    void nothingForAnEmptyQueue() {
        FakeQueue q;
        FakeStrip strip;
        NextPerformerAnnouncer a(q, strip);
        a.UpdateNextPerformer(0);
        a.btnUpdateNP_Click();
        QVERIFY(strip.journal.isEmpty());
    }

    void updateByHandTakesTheSelectedRow_data() {
        QTest::addColumn<int>("selected");
        QTest::addColumn<bool>("nextPerformerPosition");
        QTest::addColumn<QString>("text");
        QTest::newRow("selected, position on") << 2 << true << "Could Bo singing C please";
        QTest::newRow("selected, position off: the top") << 2 << false << "Could Jo singing A please";
        QTest::newRow("nothing selected, position on: empty names") << -1 << true << "Could  singing  please";
    }
    void updateByHandTakesTheSelectedRow() {
        QFETCH(int, selected);
        QFETCH(bool, nextPerformerPosition);
        QFETCH(QString, text);
        FakeQueue q;
        q.rows = {song("Jo", "x", "A"), song("Al", "y", "B"), song("Bo", "z", "C")};
        q.selected = selected;
        FakeStrip strip;
        Cfg.ScrollerText = "Could %p singing %t please";
        Cfg.NextPerformerPosition = nextPerformerPosition;
        NextPerformerAnnouncer a(q, strip);
        a.btnUpdateNP_Click();
        QCOMPARE(strip.journal.value(1), "text:" + text);
    }

    void clearPutsTheStartupTextBackOnlyWhenShown_data() {
        QTest::addColumn<bool>("shown");
        QTest::addColumn<QStringList>("journal");
        QTest::newRow("shown") << true << QStringList{"text:Welcome all", "pending:Welcome all"};
        QTest::newRow("hidden") << false << QStringList{};
    }
    void clearPutsTheStartupTextBackOnlyWhenShown() {
        QFETCH(bool, shown);
        QFETCH(QStringList, journal);
        FakeQueue q;
        FakeStrip strip;
        strip.shown = shown;
        Cfg.ScrollerStartupText = "Welcome all";
        NextPerformerAnnouncer a(q, strip);
        a.btnClearNP_Click();
        QCOMPARE(strip.journal, journal);
    }
};

KV_TEST_CLASS(TestNextPerformer)
#include "tst_nextperformer.moc"
