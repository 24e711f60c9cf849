#include "audience/ui/audiencescreen.h"
#include "audience/ui/frasecondscreen.h"
#include "audience/ui/vbwscroller.h"
#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/settings.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTest>

class TestFraSecondScreen : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;

    static QString setting(const char* name) { return oSettings->GetStringValue("Settings", name, "<none>"); }
    // The values of the "|"-separated keys, "|"-separated.
    static QString settingsOf(const QString& names) {
        QStringList values;
        for (const QString& name : names.split('|'))
            values << setting(name.toLatin1());
        return values.join('|');
    }

private slots:
    void init() {
        Cfg = AppSettings{};
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>(false);
    }
    void cleanup() {
        m_ws.reset();
        m_prompts.reset();
    }

    // Each control writes its setting at once.
    void checkBoxesWriteAtOnce_data() {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("key");
        QTest::newRow("show second screen") << "chkShowSecondScreen" << QString("ShowSecondScreen");
        QTest::newRow("enable next performer, spelt as the file has it")
            << "chkEnableNextPerformer" << QString("EnableNextPerfomer");
        QTest::newRow("next performer position")
            << "chkNextPerformerPosition" << QString("NextPerformerPosition");
    }
    void checkBoxesWriteAtOnce() {
        QFETCH(QString, control);
        QFETCH(QString, key);
        fraSecondScreen page(nullptr);
        auto* box = page.findChild<QCheckBox*>(control);
        QVERIFY(box);
        const bool was = box->isChecked();
        box->click();
        QCOMPARE(setting(key.toLatin1()), was ? QString("0") : QString("1"));
        box->click();
        QCOMPARE(setting(key.toLatin1()), was ? QString("1") : QString("0"));
    }

    void untickingTheScreenUnloadsTheWindow() {
        AudienceScreen audience;
        Cfg.ShowSecondScreen = true;
        audience.show();
        fraSecondScreen page(&audience);
        QVERIFY(page.chkShowSecondScreen->isChecked());
        page.chkShowSecondScreen->click();
        QVERIFY(!audience.loaded());
        QVERIFY(!Cfg.ShowSecondScreen);
        page.chkShowSecondScreen->click();
        QVERIFY(!audience.loaded()); // it comes at the close of the options, not now
    }

    void theRunningStripFollows() {
        AudienceScreen audience;
        audience.show();
        frmAudience& w = audience.window();
        fraSecondScreen page(&audience);

        page.spnScrollerSpeed->setValue(5);
        QCOMPARE(w.scroller->model().Interval(), 50);
        QCOMPARE(setting("ScrollerSpeed"), QString("50"));

        page.optScrollerPosition[2]->click();
        QVERIFY(!w.scroller->isVisible());
        QCOMPARE(setting("ScrollerPosition"), QString("2"));
        QCOMPARE(Cfg.ScrollerPosition, 2);

        m_prompts->answer(QColor(0, 0, 255));
        page.btnAudienceFontColor->click();
        QCOMPARE(w.scroller->model().ForeColor(), 0xFF0000u); // blue, red in the low byte
        QCOMPARE(setting("AudienceScrollerFontColor"), QString("16711680"));

        m_prompts->answer(QColor(255, 0, 0));
        page.btnScrollerBackColor->click();
        QCOMPARE(w.scroller->model().BackColor(), 0xFFu);
        QCOMPARE(setting("AudienceScrollerColor"), QString("255"));
        QCOMPARE(page.lblSampleText->palette().color(QPalette::Window), QColor(255, 0, 0));

        QFont f("DejaVu Sans Mono");
        f.setPointSize(22);
        f.setBold(true);
        m_prompts->answer(f);
        page.btnFont->click();
        QCOMPARE(w.scroller->model().measuringFont().family(), QString("DejaVu Sans Mono"));
        QCOMPARE(w.scroller->model().measuringFont().pointSize(), 22);
        QCOMPARE(settingsOf("Font|FontSize|FontBold"), QString("DejaVu Sans Mono|22|1"));
    }

    // A dialog closed without a choice changes nothing, the sample's white
    // text included.
    void aCancelledDialogChangesNothing() {
        fraSecondScreen page(nullptr);
        const QString before = settingsOf("Font|AudienceScrollerFontColor|AudienceScrollerColor");
        page.btnFont->click();
        page.btnAudienceFontColor->click();
        page.btnScrollerBackColor->click();
        QCOMPARE(m_prompts->calls.size(), 3);
        QCOMPARE(settingsOf("Font|AudienceScrollerFontColor|AudienceScrollerColor"), before);
        QCOMPARE(page.lblSampleText->palette().color(QPalette::WindowText), QColor(Qt::white));
    }

    void startupTextWaitsForThePassUnlessImmediate_data() {
        QTest::addColumn<bool>("immediately");
        QTest::newRow("waits") << false;
        QTest::newRow("immediately") << true;
    }
    void startupTextWaitsForThePassUnlessImmediate() {
        QFETCH(bool, immediately);
        Cfg.UpdateScrollerImmediately = immediately;
        AudienceScreen audience;
        frmAudience& w = audience.window();
        const QString before = w.scroller->text();
        fraSecondScreen page(&audience);
        page.txtScrollerStartupText->setText("Tonight: karaoke");
        page.btnSetStartupText->click();
        QCOMPARE(w.ScrollerText(), QString("Tonight: karaoke"));
        QCOMPARE(w.scroller->text(), immediately ? QString("Tonight: karaoke") : before);
        QCOMPARE(setting("ScrollerStartupText"), QString("Tonight: karaoke"));
        QCOMPARE(Cfg.ScrollerStartupText, QString("Tonight: karaoke"));
    }

    void theTemplateIsSaved() {
        fraSecondScreen page(nullptr);
        page.txtScroller->setText("Up next: %p (%t)");
        page.btnSaveScrollerText->click();
        QCOMPARE(Cfg.ScrollerText, QString("Up next: %p (%t)"));
        QCOMPARE(setting("ScrollerText"), QString("Up next: %p (%t)"));
    }

    void resetPutsTheDesignPlaceBack() {
        AudienceScreen audience;
        audience.window().move(300, 200);
        fraSecondScreen page(&audience);
        page.btnResetScreen->click();
        QVERIFY(!audience.loaded());
        QCOMPARE(settingsOf("SecLeft|SecTop|SecState|SecWidth|SecHeight"), QString("0|0|0|10380|7125"));
    }
};

KV_TEST_CLASS(TestFraSecondScreen)
#include "tst_frasecondscreen.moc"
