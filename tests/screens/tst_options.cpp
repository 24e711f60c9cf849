#include "core/appsettings.h"
#include "core/settings.h"
#include "queue/singernames.h"
#include "screens/frmoptions.h"
#include "screens/generaloptionspage.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStackedWidget>
#include <QTest>

// The options screen's page switch and close rules, and the General page
// writing through to the settings.
class TestOptions : public QObject {
    Q_OBJECT

private slots:
    void init() { Cfg = AppSettings(); }

    // A click on each box writes its key at once, as the file will be read back.
    void everyBoxWritesItsKey_data() {
        QTest::addColumn<QString>("box");
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("storedAfterClick");
        const auto row = [](const char* tag, const char* box, const char* key, bool stored) {
            QTest::newRow(tag) << QString(box) << QString(key) << stored;
        };
        // Defaults: drag on, prompt on (box unticked), sorting off.
        row("drag and drop off", "chkAllowDragAndDrop", "AllowDragAndDrop", false);
        row("inverse prompt box", "chkPromptForPerformer", "PromptForPerfomer", false);
        row("history box without a program value", "chkAutoSelectAllInHistory", "AutoSelectAllInHistory",
            false);
        row("sorting on", "chkAllowSortingOnQueue", "AllowSortingOnQueue", true);
        row("accent-blind search on", "chkAccentBlindSearch", "AccentBlindSearch", true);
    }
    void everyBoxWritesItsKey() {
        QFETCH(QString, box);
        QFETCH(QString, key);
        QFETCH(bool, storedAfterClick);
        TestWorkspace ws(false);
        GeneralOptionsPage page;
        QSignalSpy changed(&SettingsNotifier::instance(), &SettingsNotifier::settingChanged);
        auto* check = page.findChild<QCheckBox*>(box);
        QVERIFY(check);
        check->click();
        QCOMPARE(changed.count(), 1);
        QCOMPARE(changed.at(0).at(0).toString(), key);
        const SettingKey* k = keys::find(QStringLiteral("Settings"), key);
        QVERIFY(k);
        QCOMPARE(settings::readBool(*k), storedAfterClick);
        // A box that only shows what the file holds opens as the file says.
        GeneralOptionsPage again;
        QCOMPARE(again.findChild<QCheckBox*>(box)->isChecked(), check->isChecked());
    }

    void outOfRangeValuesOpenWithASensibleSelection() {
        TestWorkspace ws(false);
        settings::writeInt(keys::ColorScheme, 9);
        Cfg.AutoPlayDelay = -5;
        GeneralOptionsPage page;
        QCOMPARE(page.cboColorSchemes->currentIndex(), 0);
        QCOMPARE(page.spnAutoPlayDelay->value(), 5);
    }

    void defaultNameIsTakenOverOnClose_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        for (const auto& [typed, expected] : {std::pair{"Karl", "Karl"}, {"   ", "No Name"}, {"", "No Name"}})
            QTest::addRow("'%s'", typed) << QString(typed) << QString(expected);
    }
    void defaultNameIsTakenOverOnClose() {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        TestWorkspace ws(false);
        InitSingerNames(QStringLiteral("Old"));
        frmOptions dialog;
        auto* general = new GeneralOptionsPage;
        dialog.setPageContent(frmOptions::General, general);
        dialog.setCloseHooks({{}, [general] { general->takeOverDefaultName(); }});
        general->txtDefaultName->setText(typed);
        dialog.show();
        dialog.close();
        QCOMPARE(settings::readText(keys::DefaultName), expected);
        QCOMPARE(Cfg.DefaultName, expected);
        QCOMPARE(SingerNames.value(1), expected);
    }

    void closeIsRefusedWhileAnImportRuns() {
        TestWorkspace ws(false);
        ScriptedPrompts prompts;
        bool importing = true;
        int closedCalls = 0;
        frmOptions dialog;
        dialog.setCloseHooks({[&] { return importing; }, [&] { ++closedCalls; }});
        dialog.show();
        dialog.close();
        QVERIFY(dialog.isVisible());
        QCOMPARE(prompts.boxTitles(), QStringList{QStringLiteral("Close Screen")});
        importing = false;
        dialog.close();
        QVERIFY(!dialog.isVisible());
        QCOMPARE(closedCalls, 1);
    }

    void buttonsSwitchThePages() {
        frmOptions dialog;
        auto* stack = dialog.findChild<QStackedWidget*>();
        QCOMPARE(stack->currentWidget(), dialog.fraGeneral);
        const QList<QPair<QPushButton*, QFrame*>> pairs = {
            {dialog.btnJingles, dialog.fraJingles},
            {dialog.btnShowSecondScreen, dialog.fraSecondScreen},
            {dialog.btnExport, dialog.fraDatabase},
            {dialog.btnGeneral, dialog.fraGeneral}};
        for (const auto& [button, page] : pairs) {
            button->click();
            QCOMPARE(stack->currentWidget(), page);
        }
    }
};

KV_TEST_CLASS(TestOptions)
#include "tst_options.moc"
