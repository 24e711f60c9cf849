#include "screens/colorschemes.h"
#include "testrunner.h"

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QVBoxLayout>

class TestColorSchemes : public QObject {
    Q_OBJECT

private slots:
    // Text stays readable on its background in every scheme.
    void textIsReadable_data() {
        QTest::addColumn<int>("scheme");
        QTest::addColumn<int>("text");
        QTest::addColumn<int>("background");
        const QList<std::pair<QPalette::ColorRole, QPalette::ColorRole>> pairs{
            {QPalette::WindowText, QPalette::Window},
            {QPalette::ButtonText, QPalette::Button},
            {QPalette::Text, QPalette::Base},
            {QPalette::Text, QPalette::AlternateBase},
            {QPalette::HighlightedText, QPalette::Highlight},
            {QPalette::ToolTipText, QPalette::ToolTipBase}};
        for (int s = 0; s < 3; ++s)
            for (const auto& [text, back] : pairs)
                QTest::addRow("%s %d on %d", qPrintable(colorschemes::names()[s]), int(text), int(back))
                    << s << int(text) << int(back);
    }
    void textIsReadable() {
        QFETCH(int, scheme);
        QFETCH(int, text);
        QFETCH(int, background);
        const QPalette p = colorschemes::palette(scheme);
        const double ratio = colorschemes::contrast(p.color(QPalette::ColorRole(text)),
                                                    p.color(QPalette::ColorRole(background)));
        QVERIFY2(ratio >= 4.5, qPrintable(QString::number(ratio)));
    }

    // Each looks like its name: Blue and Green frames of their hue, Silver
    // frames of grey, its window light.
    void looksLikeItsName_data() {
        QTest::addColumn<int>("scheme");
        QTest::addColumn<int>("hueFrom"); // -1: no hue to speak of
        QTest::addColumn<int>("hueTo");
        QTest::newRow("Blue") << 0 << 195 << 235;
        QTest::newRow("Green") << 1 << 100 << 160;
        QTest::newRow("Silver") << 2 << -1 << -1;
    }
    void looksLikeItsName() {
        QFETCH(int, scheme);
        QFETCH(int, hueFrom);
        QFETCH(int, hueTo);
        const QColor window = colorschemes::colours(scheme).window;
        for (const QColor& c : {window, colorschemes::colours(scheme).header}) {
            if (hueFrom < 0)
                QVERIFY2(c.hslSaturation() < 40, qPrintable(c.name()));
            else
                QVERIFY2(c.hslHue() >= hueFrom && c.hslHue() <= hueTo && c.hslSaturation() > 60,
                         qPrintable(c.name()));
        }
        if (hueFrom < 0)
            QVERIFY2(window.lightness() > 180, qPrintable(window.name()));
        // A number out of range (a hand-edited file) gets the first scheme.
        QCOMPARE(colorschemes::palette(scheme == 0 ? 9 : -1), colorschemes::palette(0));
    }

    // What the host sees: the field and the button painted in the scheme.
    void formTakesTheScheme() {
        QDialog form;
        form.show();
        auto* layout = new QVBoxLayout(&form);
        auto* button = new QPushButton(&form);
        auto* field = new QLineEdit(&form);
        layout->addWidget(button);
        layout->addWidget(field);
        form.resize(200, 100);
        // A change of scheme on a form that has one already repaints it whole.
        for (int scheme : {1, 2, 0}) {
            SetFormColors(form, scheme);
            const auto centre = [](QWidget* w) {
                const QImage image = w->grab().toImage();
                return image.pixelColor(image.width() / 2, image.height() / 2);
            };
            QCOMPARE(centre(field), colorschemes::colours(scheme).field);
            QCOMPARE(centre(button), colorschemes::colours(scheme).button);
            QCOMPARE(form.grab().toImage().pixelColor(1, 1), colorschemes::colours(scheme).window);
        }
    }
};

KV_TEST_CLASS(TestColorSchemes)
#include "tst_colorschemes.moc"
