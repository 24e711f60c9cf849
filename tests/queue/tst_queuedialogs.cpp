#include "core/appsettings.h"
#include "queue/singernames.h"
#include "queue/ui/frmperformerchoose.h"
#include "testrunner.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTest>

namespace {

enum Finish { EnterInName, EnterOnCancelButton, Escape };

} // namespace

class TestQueueDialogs : public QObject {
    Q_OBJECT

    void finish(QDialog& dlg, QWidget* nameBox, QPushButton* cancel, int how) {
        switch (Finish(how)) {
        case EnterInName:
            QTest::keyClick(nameBox, Qt::Key_Return);
            break;
        case EnterOnCancelButton:
            cancel->setFocus();
            QTest::keyClick(cancel, Qt::Key_Enter);
            break;
        case Escape:
            QTest::keyClick(nameBox, Qt::Key_Escape);
            break;
        }
        QVERIFY(!dlg.isVisible());
    }

private slots:
    void init() {
        Cfg = AppSettings{};
        SingerNames = {"", "No Name", "Ann", "Bob"};
    }

    void chooseDialog_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("upPresses");
        QTest::addColumn<int>("finishBy");
        QTest::addColumn<bool>("cancelled");
        QTest::addColumn<QString>("clientName");
        QTest::addColumn<int>("songKey");
        QTest::addColumn<QStringList>("namesAfter");
        const QStringList start{"", "No Name", "Ann", "Bob"};
        const auto row = [](const char* name, const char* typed, int upPresses, Finish finishBy,
                            bool cancelled, const char* clientName, int songKey,
                            const QStringList& namesAfter) {
            QTest::newRow(name) << QString::fromUtf8(typed) << upPresses << int(finishBy) << cancelled
                                << QString::fromUtf8(clientName) << songKey << namesAfter;
        };
        row("enter in name box", "jo ann", 2, EnterInName, false, "Jo Ann", 2,
            {"", "No Name", "Ann", "Jo Ann", ""});
        // Enter on the focused cancel button still accepts, as the host expects.
        row("enter on the cancel button is ok", "ZED", 0, EnterOnCancelButton, false, "Zed", 0,
            {"", "No Name", "Ann", "Zed", ""});
        row("escape keeps presets", "someone", 3, Escape, true, "preset", 9, start);
    }
    void chooseDialog() {
        QFETCH(QString, typed);
        QFETCH(int, upPresses);
        QFETCH(int, finishBy);
        QFETCH(bool, cancelled);
        frmPerformerChoose dlg;
        dlg.setClientName(QStringLiteral("preset"));
        dlg.setSongKey(9);
        dlg.Form_Load();
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        // The list stops one short of the array's top slot.
        QCOMPARE(dlg.cboSingerNames->count(), 3);
        QLineEdit* name = dlg.cboSingerNames->lineEdit();
        QTest::keyClicks(name, typed);
        for (int i = 0; i < upPresses; ++i)
            QTest::keyClick(dlg.spnKey, Qt::Key_Up);
        finish(dlg, name, dlg.cmdCancel, finishBy);
        QCOMPARE(dlg.CancelledForm(), cancelled);
        QTEST(dlg.ClientName(), "clientName");
        QTEST(int(dlg.SongKey()), "songKey");
        QTEST(SingerNames, "namesAfter");
        // Loaded again, the dialog starts afresh.
        dlg.Form_Load();
        QVERIFY(dlg.CancelledForm());
    }
};

KV_TEST_CLASS(TestQueueDialogs)
#include "tst_queuedialogs.moc"
