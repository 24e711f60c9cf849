#include "audience/propertybag.h"
#include "audience/scrollermodel.h"
#include "core/kverror.h"
#include "testrunner.h"

#include <QTemporaryDir>
#include <QTest>

namespace {

// A measure with round numbers: each character is 120 twips wide ("W" three
// times as wide), a line 240 high, both at 12 points and growing with the
// font's size.
struct FakeMeasure : ScrollerMeasure {
    static double scale(const QFont& f) { return f.pointSizeF() / 12.0; }
    double textWidth(const QFont& f, const QString& s) const override {
        double units = 0;
        for (QChar c : s)
            units += c == QLatin1Char('W') ? 3 : 1;
        return units * 120 * scale(f);
    }
    double textHeight(const QFont& f, const QString&) const override { return 240 * scale(f); }
};

} // namespace

// The strip as the audience window runs it (the text travels to the left),
// then the ways, events and stored design open to any other host.
class TestScrollerModel : public QObject {
    Q_OBJECT
    FakeMeasure m_measure;

    std::unique_ptr<ScrollerModel> make(double w, double h, const QString& text, double amount) {
        auto m = std::make_unique<ScrollerModel>(&m_measure);
        QFont f(QStringLiteral("DejaVu Sans"));
        f.setPointSize(12);
        m->setFont(f);
        m->setScrollType(3);
        m->setAmount(amount);
        m->setText(text);
        m->setControlSize(w, h);
        return m;
    }

private slots:
    // After Reset, each tick's left edge, with the completed passes between.
    void ticks_data() {
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("amount");
        QTest::addColumn<QStringList>("journal");
        // The text "abc" is 360 twips wide.
        QTest::newRow("until its right edge has passed the left edge, then from the right edge")
            << 500.0 << 200.0 << QStringList{"300", "100", "-100", "-300", "-500", "complete", "500", "300"};
        QTest::newRow("a computed place of exactly -1 is not applied: the text stands still")
            << 24.0 << 25.0 << QStringList{"24", "24", "24"};
        QTest::newRow("amounts round to whole twips, halves to even")
            << 500.0 << 12.5 << QStringList{"488", "476", "464"};
    }
    void ticks() {
        QFETCH(double, width);
        QFETCH(double, amount);
        QFETCH(QStringList, journal);
        auto m = make(width, 600, "abc", amount);
        m->Reset();
        QStringList seen;
        connect(m.get(), &ScrollerModel::OnCompleteScroll, this, [&seen] { seen << "complete"; });
        while (seen.size() < journal.size()) {
            m->tick();
            seen << QString::number(double(m->boxLeft()));
        }
        QCOMPARE(seen.mid(0, journal.size()), journal);
    }

    // The box around the text, on a control 500 twips wide.
    void sizeTextBox_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<float>("width");
        QTest::addColumn<float>("height");
        QTest::addColumn<QString>("textAfter");
        QTest::newRow("one line: as wide as the text, wider than the control")
            << "abcdefghij" << 1200.0f << 240.0f << "abcdefghij";
        QTest::newRow("lines, the longest narrower than the control")
            << "ab\r\nabcd" << 480.0f << 480.0f << "ab\r\nabcd";
        QTest::newRow("lines, the longest as wide as the control or wider: clamped")
            << "ab\r\nabcdefg" << 500.0f << 480.0f << "ab\r\nabcdefg";
        QTest::newRow("the longest line by characters, not by measure")
            << "WW\r\niii" << 360.0f << 480.0f << "WW\r\niii";
        QTest::newRow("on a tie of characters the first line stays")
            << "ab\r\nWW" << 240.0f << 480.0f << "ab\r\nWW";
        QTest::newRow("a trailing CR LF is cut from the text: three lines")
            << "a\r\nb\r\nc\r\n"
            << 120.0f << 720.0f << QString("a\r\nb\r\nc");
        QTest::newRow("only CR LF: one empty line") << "\r\n" << 0.0f << 240.0f << QString();
        QTest::newRow("empty: one line, no width") << "" << 0.0f << 240.0f << QString();
        QTest::newRow("a lone LF is no line break") << "ab\ncd" << 600.0f << 240.0f << "ab\ncd";
    }
    void sizeTextBox() {
        QFETCH(QString, text);
        QFETCH(float, width);
        QFETCH(float, height);
        QFETCH(QString, textAfter);
        auto m = make(500, 600, text, 25);
        QCOMPARE(m->boxWidth(), width);
        QCOMPARE(m->boxHeight(), height);
        QCOMPARE(m->text(), textAfter);
    }

    // Reset puts the text at the right edge, centred across the strip, or at
    // its top when taller than the strip.
    void acrossTheWay_data() {
        QTest::addColumn<double>("height");
        QTest::addColumn<QString>("text");
        QTest::addColumn<float>("top");
        QTest::newRow("centred across") << 600.0 << "abc" << 180.0f;
        QTest::newRow("taller than the control, at the top") << 300.0 << "a\r\nb" << 0.0f;
    }
    void acrossTheWay() {
        QFETCH(double, height);
        QFETCH(QString, text);
        QFETCH(float, top);
        auto m = make(500, height, text, 25);
        m->Reset();
        QCOMPARE(m->boxLeft(), 500.0f);
        QCOMPARE(m->boxTop(), top);
    }

    // A text written while the strip runs keeps its place; one written in
    // the completion event starts from the wrap place.
    void aNewTextKeepsItsPlaceOrStartsFromTheWrapPlace() {
        auto m = make(500, 600, "ab", 300);
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
        auto m = make(5000, 600, "abc", 25);
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

    // The other ways on a strip of 500 x 300: the box after Reset, then each
    // tick's place along the way, 200 twips a tick, with the events between.
    void otherWays_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("onePass");
        QTest::addColumn<QRectF>("box");
        QTest::addColumn<QStringList>("journal");
        // "abc" is 360 x 240.
        QTest::newRow("up: from the bottom edge, wraps once its bottom has passed the top")
            << 1 << false << QRectF(0, 300, 500, 240)
            << QStringList{"100", "-100", "-300", "complete", "300"};
        QTest::newRow("down: from above the strip until its top reaches the bottom")
            << 2 << false << QRectF(0, -240, 500, 240)
            << QStringList{"-40", "160", "360", "complete", "-240"};
        QTest::newRow("right: from the right edge, so the first tick completes a pass")
            << 4 << false << QRectF(500, 30, 360, 240)
            << QStringList{"complete", "-360", "-160", "40", "240", "440", "640", "complete", "-360"};
        QTest::newRow("one pass only: stopped after the event, resting at the wrap place")
            << 4 << true << QRectF(500, 30, 360, 240) << QStringList{"complete", "stop", "-360", "-160"};
        QTest::newRow("type 5 is no way: the box stays where it was")
            << 5 << false << QRectF(0, 30, 500, 240) << QStringList{"0", "0"};
    }
    void otherWays() {
        QFETCH(int, type);
        QFETCH(bool, onePass);
        QFETCH(QRectF, box);
        QFETCH(QStringList, journal);
        auto m = make(500, 300, "abc", 200);
        m->setScrollType(type);
        m->setStopAfterOneScroll(onePass);
        m->Reset();
        QCOMPARE(QRectF(m->boxLeft(), m->boxTop(), m->boxWidth(), m->boxHeight()), box);
        m->setScrolling(true);
        QStringList seen;
        connect(m.get(), &ScrollerModel::OnCompleteScroll, this, [&seen] { seen << "complete"; });
        connect(m.get(), &ScrollerModel::OnStop, this, [&seen] { seen << "stop"; });
        while (seen.size() < journal.size()) {
            m->tick();
            seen << QString::number(double(type <= 2 ? m->boxTop() : m->boxLeft()));
        }
        QCOMPARE(seen.mid(0, journal.size()), journal);
        QCOMPARE(m->Scrolling(), !onePass);
    }

    // Start and stop raise their events only on a change; the Scrolling
    // property raises none, and a first show starts only with AutoStart.
    void startAndStop_data() {
        QTest::addColumn<QStringList>("calls");
        QTest::addColumn<QStringList>("events");
        QTest::addColumn<bool>("running");
        QTest::newRow("start twice, stop twice: one event each")
            << QStringList{"start", "start", "stop", "stop"} << QStringList{"start", "stop"} << false;
        QTest::newRow("Scrolling on, start, Scrolling off: none")
            << QStringList{"on", "start", "off"} << QStringList{} << false;
        QTest::newRow("first show without AutoStart")
            << QStringList{"manual", "show"} << QStringList{} << false;
        QTest::newRow("first show: starts") << QStringList{"show"} << QStringList{"start"} << true;
    }
    void startAndStop() {
        QFETCH(QStringList, calls);
        QFETCH(QStringList, events);
        QFETCH(bool, running);
        auto m = make(500, 600, "abc", 25);
        QStringList seen;
        connect(m.get(), &ScrollerModel::OnStart, this, [&seen] { seen << "start"; });
        connect(m.get(), &ScrollerModel::OnStop, this, [&seen] { seen << "stop"; });
        for (const QString& call : calls) {
            if (call == "start" || call == "stop")
                call == "start" ? m->StartScroll() : m->StopScroll();
            else if (call == "on" || call == "off")
                m->setScrolling(call == "on");
            else if (call == "manual")
                m->setAutoStart(false);
            else
                m->firstShow();
        }
        QCOMPARE(seen, events);
        QCOMPARE(m->Scrolling(), running);
        if (calls.contains("show")) // the first show puts the text at its start
            QCOMPARE(m->boxLeft(), 500.0f);
    }

    // A property stored under its name in any case is read into the control
    // and written back with its value unchanged, along with all the others.
    void theDesignRoundTrips_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QVariant>("value");
        QFont f(QStringLiteral("DejaVu Sans Mono"));
        f.setPointSize(27);
        f.setBold(true);
        QTest::newRow("Text") << "TEXT" << QVariant("Next: Jo\r\nthen Al");
        QTest::newRow("StopAfterOneScroll") << "stopafteronescroll" << QVariant(true);
        QTest::newRow("AutoStart") << "AutoStart" << QVariant(false);
        QTest::newRow("ScrollType") << "ScrollType" << QVariant(4);
        QTest::newRow("BackColor") << "BackColor" << QVariant(0x00112233u);
        QTest::newRow("ForeColor") << "ForeColor" << QVariant(0x00FFEEDDu);
        QTest::newRow("Interval") << "Interval" << QVariant(30);
        QTest::newRow("Amount") << "Amount" << QVariant(37.5);
        QTest::newRow("Alignment") << "Alignment" << QVariant(1);
        QTest::newRow("Border") << "Border" << QVariant(1);
        QTest::newRow("Font") << "font" << QVariant(f);
        QTest::newRow("Scrolling") << "Scrolling" << QVariant(true);
    }
    void theDesignRoundTrips() {
        QFETCH(QString, stored);
        QFETCH(QVariant, value);
        PropertyBag in;
        in.write(stored, value);
        ScrollerModel m(&m_measure);
        m.readProperties(in, QFont(QStringLiteral("DejaVu Sans")));
        PropertyBag out;
        m.writeProperties(out);
        QCOMPARE(out.names().size(), 12);
        QCOMPARE(out.read(stored, {}), value);
    }

    // A text file becomes the text, its last line end cut; a file that
    // cannot be read raises error 53 and leaves the text as it was.
    void loadTextFromFile() {
        QTemporaryDir dir;
        QFile f(dir.filePath("credits.txt"));
        QVERIFY(f.open(QIODevice::WriteOnly) && f.write("Zo\xC3\xAB\r\nKaraoke\r\n") == 15);
        f.close();
        auto m = make(500, 600, "abc", 25);
        m->LoadTextFromFile(f.fileName());
        const QString text = QString::fromUtf8("Zo\xC3\xAB\r\nKaraoke");
        QCOMPARE(m->text(), text);
        QCOMPARE(m->lineCount(), 2);
        try {
            m->LoadTextFromFile(dir.filePath("missing.txt"));
            QFAIL("no error raised");
        } catch (const KvError& e) {
            QCOMPARE(e.number(), 53);
        }
        QCOMPARE(m->text(), text);
    }
};

KV_TEST_CLASS(TestScrollerModel)
#include "tst_scrollermodel.moc"
