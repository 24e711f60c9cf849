#include "audience/scrollermodel.h"
#include "scrollerfakes.h"
#include "testrunner.h"

#include <QTest>

class TestScrollerModel : public QObject {
    Q_OBJECT
    FakeMeasure m_measure;

    std::unique_ptr<ScrollerModel> make(int type, double w, double h, const QString& text, double amount) {
        auto m = std::make_unique<ScrollerModel>(&m_measure);
        m->setFont(twelvePoint());
        m->setScrollType(type);
        m->setAmount(amount);
        m->setText(text);
        m->setControlSize(w, h);
        return m;
    }
    static QString along(const ScrollerModel& m) {
        const float v = m.ScrollType() <= 2 ? m.boxTop() : m.boxLeft();
        return QString::number(double(v));
    }

private slots:
    void init() { m_measure = FakeMeasure{}; }

    // After Reset, each tick's position along the way of travel, with the events between.
    void ticks_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("amount");
        QTest::addColumn<double>("lineHeight");
        QTest::addColumn<bool>("stopAfterOne");
        QTest::addColumn<QStringList>("journal");
        // Text "abc" is 360 twips wide; a line is 240 high unless the row says otherwise.
        QTest::newRow("up: wraps once its bottom has passed the top")
            << 1 << 3000.0 << 50.0 << "abc" << 100.0 << 240.0 << false
            << QStringList{"-50", "-150", "-250", "complete", "50", "-50"};
        QTest::newRow("down: from above the control until its top reaches the bottom")
            << 2 << 3000.0 << 300.0 << "abc" << 100.0 << 240.0 << false
            << QStringList{"-140", "-40", "60", "160", "260", "360", "complete", "-240", "-140"};
        QTest::newRow("left: until its right edge has passed the left edge")
            << 3 << 500.0 << 600.0 << "abc" << 200.0 << 240.0 << false
            << QStringList{"300", "100", "-100", "-300", "-500", "complete", "500", "300"};
        QTest::newRow("right: the first tick completes a pass at once")
            << 4 << 500.0 << 600.0 << "abc" << 200.0 << 240.0 << false
            << QStringList{"complete", "-360", "-160", "40", "240", "440", "640", "complete", "-360"};
        QTest::newRow("right, one pass only: stopped after the event, resting at the wrap place")
            << 4 << 500.0 << 600.0 << "abc" << 200.0 << 240.0 << true
            << QStringList{"complete", "stop", "-360", "-160"};
        QTest::newRow("a computed place of exactly -1 is not applied: the text stands still")
            << 1 << 3000.0 << 24.0 << "abc" << 25.0 << 240.0 << false << QStringList{"24", "24", "24"};
        QTest::newRow("a wrap place of -1 is not applied either")
            << 2 << 3000.0 << 2.0 << "abc" << 1.0 << 1.0 << false
            << QStringList{"0", "1", "2", "complete", "2", "complete", "2"};
        QTest::newRow("amounts round to whole twips, halves to even")
            << 3 << 500.0 << 600.0 << "abc" << 12.5 << 240.0 << false << QStringList{"488", "476", "464"};
        QTest::newRow("a scroll type outside 1 to 4 does nothing")
            << 7 << 500.0 << 600.0 << "abc" << 25.0 << 240.0 << false << QStringList{"0", "0"};
    }
    void ticks() {
        QFETCH(int, type);
        QFETCH(double, width);
        QFETCH(double, height);
        QFETCH(QString, text);
        QFETCH(double, amount);
        QFETCH(double, lineHeight);
        QFETCH(bool, stopAfterOne);
        QFETCH(QStringList, journal);
        m_measure.lineHeight = lineHeight;
        auto m = make(type, width, height, text, amount);
        m->setStopAfterOneScroll(stopAfterOne);
        m->Reset();
        QStringList seen;
        journalEvents(*m, seen);
        if (stopAfterOne)
            m->setScrolling(true);
        while (seen.size() < journal.size()) {
            m->tick();
            seen << along(*m);
        }
        QCOMPARE(seen.mid(0, journal.size()), journal);
    }

    void sizeTextBox_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<float>("width");
        QTest::addColumn<float>("height");
        QTest::addColumn<QString>("textAfter");
        // The control is 500 twips wide.
        QTest::newRow("one line, sideways: as wide as the text, wider than the control")
            << 3 << "abcdefghij" << 1200.0f << 240.0f << "abcdefghij";
        QTest::newRow("one line, upwards: as wide as the control") << 1 << "abc" << 500.0f << 240.0f << "abc";
        QTest::newRow("lines, sideways, the longest narrower than the control")
            << 4 << "ab\r\nabcd" << 480.0f << 480.0f << "ab\r\nabcd";
        QTest::newRow("lines, sideways, the longest as wide as the control or wider: clamped")
            << 3 << "ab\r\nabcdefg" << 500.0f << 480.0f << "ab\r\nabcdefg";
        QTest::newRow("the longest line by characters, not by measure")
            << 3 << "WW\r\niii" << 360.0f << 480.0f << "WW\r\niii";
        QTest::newRow("on a tie of characters the first line stays")
            << 3 << "ab\r\nWW" << 240.0f << 480.0f << "ab\r\nWW";
        QTest::newRow("a trailing CR LF is cut from the text: three lines")
            << 3 << "a\r\nb\r\nc\r\n"
            << 120.0f << 720.0f << "a\r\nb\r\nc";
        QTest::newRow("only CR LF: one empty line") << 3 << "\r\n" << 0.0f << 240.0f << "";
        QTest::newRow("empty: one line, no width sideways") << 3 << "" << 0.0f << 240.0f << "";
        QTest::newRow("a lone LF is no line break") << 3 << "ab\ncd" << 600.0f << 240.0f << "ab\ncd";
    }
    void sizeTextBox() {
        QFETCH(int, type);
        QFETCH(QString, text);
        QFETCH(float, width);
        QFETCH(float, height);
        QFETCH(QString, textAfter);
        auto m = make(type, 500, 600, text, 25);
        QCOMPARE(m->boxWidth(), width);
        QCOMPARE(m->boxHeight(), height);
        QCOMPARE(m->text(), textAfter);
    }

    void acrossTheWay_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<double>("height");
        QTest::addColumn<QString>("text");
        QTest::addColumn<float>("left");
        QTest::addColumn<float>("top");
        QTest::newRow("sideways: centred across") << 3 << 600.0 << "abc" << 500.0f << 180.0f;
        QTest::newRow("sideways: taller than the control, at the top")
            << 4 << 300.0 << "a\r\nb" << 500.0f << 0.0f;
        QTest::newRow("up: at the left, below the control") << 1 << 600.0 << "abc" << 0.0f << 600.0f;
        QTest::newRow("down: at the left, above the control") << 2 << 600.0 << "a\r\nb" << 0.0f << -480.0f;
    }
    void acrossTheWay() {
        QFETCH(int, type);
        QFETCH(double, height);
        QFETCH(QString, text);
        QFETCH(float, left);
        QFETCH(float, top);
        auto m = make(type, 500, height, text, 25);
        m->Reset();
        QCOMPARE(m->boxLeft(), left);
        QCOMPARE(m->boxTop(), top);
    }

    // A text written while the strip runs keeps its place; one written in
    // the completion event starts from the wrap place.
    void aNewTextKeepsItsPlaceOrStartsFromTheWrapPlace() {
        auto m = make(3, 500, 600, "ab", 300);
        m->Reset();
        m->tick(); // 500 -> 200
        m->setText("abc");
        QCOMPARE(m->boxLeft(), 200.0f);
        QCOMPARE(m->boxWidth(), 360.0f);
        connect(m.get(), &ScrollerModel::OnCompleteScroll, this, [&] { m->setText("abcdef"); });
        for (int i = 0; i < 3; ++i) // -100, -400, then (<= -360) the pass completes
            m->tick();
        QCOMPARE(m->text(), QString("abcdef"));
        QCOMPARE(m->boxLeft(), 500.0f);
        QCOMPARE(m->boxWidth(), 720.0f);
        m->tick();
        QCOMPARE(m->boxLeft(), 200.0f);
    }

    // The font's size alone leaves the measure behind until the font is read;
    // its name comes last and measures again.
    void theMeasuringFontFollowsTheName() {
        auto m = make(3, 5000, 600, "abc", 25);
        m->setFontSize(24);
        QCOMPARE(m->boxFont().pointSize(), 24);
        m->setText("abc");
        QCOMPARE(m->boxWidth(), 360.0f);
        QCOMPARE(m->Font().pointSize(), 24); // the read catches up and re-measures
        QCOMPARE(m->boxWidth(), 720.0f);
        QCOMPARE(m->boxHeight(), 480.0f);
        m->setFontBold(true);
        m->setFontSize(36);
        m->setFontName("DejaVu Sans Mono");
        QCOMPARE(m->measuringFont().family(), QString("DejaVu Sans Mono"));
        QVERIFY(m->measuringFont().bold());
        QCOMPARE(m->boxWidth(), 1080.0f);
    }

    // The first show puts the text at its start and starts the strip.
    void firstShowStarts() {
        auto m = make(1, 500, 600, "abc", 25);
        m->firstShow();
        QVERIFY(m->Scrolling());
        QCOMPARE(m->boxTop(), 600.0f);
    }
};

KV_TEST_CLASS(TestScrollerModel)
#include "tst_scrollermodel.moc"
