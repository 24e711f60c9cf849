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

    // What the strip is told: a song start or the Update button announces the
    // next singer (the strip reset, then the text at once and for the next
    // pass); Clear puts the welcome back, only on a strip that is shown.
    void announcements_data() {
        QTest::addColumn<QString>("action"); // "start <row>", "update" or "clear"
        QTest::addColumn<int>("rows");       // the first of Jo (A), Al (B) and Bo (C)
        QTest::addColumn<int>("selected");
        QTest::addColumn<bool>("nextPerformerPosition");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<QString>("text"); // empty: the strip is not touched
        const auto row = [](const char* tag, const char* action, int rows, int selected, bool position,
                            bool shown, const char* text) {
            QTest::newRow(tag) << QString(action) << rows << selected << position << shown << QString(text);
        };
        row("a song started: the next singer", "start 1", 2, -1, true, true, "Could Al singing B please");
        row("a song started, empty queue", "start 0", 0, -1, true, true, "");
        row("update, empty queue", "update", 0, 0, true, true, "");
        row("update: the selected row, position on", "update", 3, 2, true, true, "Could Bo singing C please");
        row("update: position off, the top", "update", 3, 2, false, true, "Could Jo singing A please");
        row("update: nothing selected, empty names", "update", 3, -1, true, true, "Could  singing  please");
        row("clear: the welcome", "clear", 0, -1, true, true, "Welcome all");
        row("clear, strip hidden", "clear", 0, -1, true, false, "");
    }
    void announcements() {
        QFETCH(QString, action);
        QFETCH(int, rows);
        QFETCH(QString, text);
        FakeQueue q;
        q.rows = QList<SelectedSong>{song("Jo", "x", "A"), song("Al", "y", "B"), song("Bo", "z", "C")}.mid(
            0, rows);
        QFETCH(int, selected);
        q.selected = selected;
        FakeStrip strip;
        QFETCH(bool, shown);
        strip.shown = shown;
        Cfg.ScrollerText = "Could %p singing %t please";
        Cfg.ScrollerStartupText = "Welcome all";
        QFETCH(bool, nextPerformerPosition);
        Cfg.NextPerformerPosition = nextPerformerPosition;
        NextPerformerAnnouncer a(q, strip);
        if (action.startsWith("start"))
            a.UpdateNextPerformer(action.mid(6).toInt());
        else
            action == "update" ? a.btnUpdateNP_Click() : a.btnClearNP_Click();
        QStringList journal;
        if (!text.isEmpty())
            journal = QStringList{"text:" + text, "pending:" + text};
        if (!text.isEmpty() && action != "clear")
            journal.prepend("reset");
        QCOMPARE(strip.journal, journal);
    }
};

KV_TEST_CLASS(TestNextPerformer)
#include "tst_nextperformer.moc"
