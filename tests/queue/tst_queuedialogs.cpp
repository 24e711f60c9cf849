#include "catalogue/database.h"
#include "core/appsettings.h"
#include "queue/frmaddfromfilesystem.h"
#include "queue/frmperformerchange.h"
#include "queue/frmperformerchoose.h"
#include "queue/queuecontroller.h"
#include "queue/queuemodel.h"
#include "queue/singernames.h"
#include "queuefakes.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

QByteArray tagged(const QByteArray& title, const QByteArray& artist) {
    QByteArray t = "TAG" + title.leftJustified(30, '\0', true) + artist.leftJustified(30, '\0', true) +
                   QByteArray(30 + 4 + 30, '\0');
    t += char(12);
    return QByteArray(300, 'x') + t;
}

enum Finish { EnterInName, EnterOnCancelButton, Escape, ClickOk, ClickCancel };

} // namespace

class TestQueueDialogs : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;

    QString writeFile(const QString& name, const QByteArray& data) {
        const QString path = m_dir.filePath(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(data);
        return path;
    }

    void finish(QDialog& dlg, QWidget* nameBox, QPushButton* ok, QPushButton* cancel, int how) {
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
        case ClickOk:
            QTest::mouseClick(ok, Qt::LeftButton);
            break;
        case ClickCancel:
            QTest::mouseClick(cancel, Qt::LeftButton);
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
        row("enter on the cancel button is ok", "ZED", 0, EnterOnCancelButton, false, "Zed", 0,
            {"", "No Name", "Ann", "Zed", ""});
        row("key stops at 6", "ann", 20, ClickOk, false, "Ann", 6, start);
        row("key stops at -6", "ann", -20, ClickOk, false, "Ann", -6, start);
        row("empty name", "", 0, ClickOk, false, "", 0, {"", "No Name", "Ann", "", ""});
        row("escape keeps presets", "someone", 3, Escape, true, "preset", 9, start);
        row("cancel button keeps presets", "someone", 3, ClickCancel, true, "preset", 9, start);
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
        // The list stops one short of the array's top slot, and opens on the empty entry.
        QCOMPARE(dlg.cboSingerNames->count(), 3);
        QCOMPARE(dlg.cboSingerNames->itemText(2), QStringLiteral("Ann"));
        QCOMPARE(dlg.cboSingerNames->currentText(), QString());
        QCOMPARE(dlg.spnKey->value(), 0);
        QCOMPARE(dlg.CancelledForm(), true);

        QLineEdit* name = dlg.cboSingerNames->lineEdit();
        QTest::keyClicks(name, typed);
        for (int i = 0; i < qAbs(upPresses); ++i)
            QTest::keyClick(dlg.spnKey, upPresses > 0 ? Qt::Key_Up : Qt::Key_Down);
        finish(dlg, name, dlg.cmdOk, dlg.cmdCancel, finishBy);
        QCOMPARE(dlg.result(), cancelled ? int(QDialog::Rejected) : int(QDialog::Accepted));
        QCOMPARE(dlg.CancelledForm(), cancelled);
        QTEST(dlg.ClientName(), "clientName");
        QTEST(int(dlg.SongKey()), "songKey");
        QTEST(SingerNames, "namesAfter");

        // Loaded again, the dialog starts afresh.
        dlg.Form_Load();
        QCOMPARE(dlg.spnKey->value(), 0);
        QCOMPARE(dlg.cboSingerNames->currentText(), QString());
        QVERIFY(dlg.CancelledForm());
    }

    // The keys and buttons are the choose dialog's; the name box is a plain one.
    void changeDialog() {
        frmPerformerChange dlg;
        dlg.setClientName(QStringLiteral("Old Name"));
        dlg.setSongKey(0);
        dlg.Form_Load();
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        // The row's singer is not shown.
        QCOMPARE(dlg.txtPerformerName->text(), QString());
        QTest::keyClicks(dlg.txtPerformerName, QStringLiteral("MARY lou"));
        QTest::keyClick(dlg.spnKey, Qt::Key_Down);
        finish(dlg, dlg.txtPerformerName, dlg.cmdOk, dlg.cmdCancel, EnterInName);
        QVERIFY(!dlg.CancelledForm());
        QCOMPARE(dlg.ClientName(), QStringLiteral("Mary Lou"));
        QCOMPARE(dlg.SongKey(), -1);
        QVERIFY(SingerNames.contains(QStringLiteral("Mary Lou")));
    }

    void addFromFileSystemDialog() {
        TestWorkspace ws;
        ScriptedPrompts prompts;
        frmAddFromFileSystem dlg;
        QCOMPARE(dlg.spnKey->minimum(), -6);
        QCOMPARE(dlg.spnKey->maximum(), 6);

        // A tagged file fills artist and title; the name is kept as typed.
        dlg.setFileName(writeFile(QStringLiteral("tagged.mp3"), tagged("Caf\xe9 Song", "The Band")));
        dlg.Form_Load();
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        QCOMPARE(dlg.txtArtistName->text(), QStringLiteral("The Band"));
        QCOMPARE(dlg.txtFileName->text(), QString::fromUtf8("Café Song"));
        QCOMPARE(dlg.cboSingerNames->count(), 3);
        QVERIFY(dlg.Cancelled());
        QTest::keyClicks(dlg.cboSingerNames->lineEdit(), QStringLiteral("lower case name"));
        QTest::keyClick(dlg.spnKey, Qt::Key_Up);
        QTest::keyClick(dlg.txtArtistName, Qt::Key_Return);
        QVERIFY(!dlg.Cancelled());
        QCOMPARE(dlg.ArtistName(), QStringLiteral("The Band"));
        QCOMPARE(dlg.TrackName(), QString::fromUtf8("Café Song"));
        QCOMPARE(dlg.PerformerName(), QStringLiteral("lower case name"));
        QCOMPARE(dlg.SongKey(), qint16(1));
        QCOMPARE(SingerNames.size(), 4); // not added to the known names

        // The shared dialog again, on files without a tag: the boxes are empty.
        for (const QString& path : {writeFile(QStringLiteral("plain.mp3"), QByteArray(50, 'y')),
                                    m_dir.filePath(QStringLiteral("vanished.mp3"))}) {
            dlg.setFileName(path);
            dlg.Form_Load();
            dlg.show();
            QCOMPARE(dlg.txtArtistName->text(), QString());
            QCOMPARE(dlg.txtFileName->text(), QString());
            QCOMPARE(dlg.spnKey->value(), 0);
            QVERIFY(dlg.Cancelled());
            QTest::keyClick(dlg.txtFileName, Qt::Key_Escape);
            QVERIFY(dlg.Cancelled());
            QCOMPARE(dlg.ArtistName(), QString());
            QCOMPARE(dlg.PerformerName(), QString());
            QCOMPARE(dlg.SongKey(), qint16(0));
        }
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // The whole path with the dialog on screen: a double click's song, the
    // singer typed in lower case, queued in proper case and saved.
    void addSongWithRealDialog() {
        TestWorkspace ws;
        ScriptedPrompts prompts;
        const qint64 id = ws.addSongs({"Abba - Waterloo"}).first();
        QTableView list;
        QueueController queue;
        queue.attachList(&list);
        QStringList seen;
        for (const char* typed : {"bob dylan", "ANN"}) {
            QTimer::singleShot(0, [&, typed] {
                auto* dlg = qobject_cast<frmPerformerChoose*>(QApplication::activeModalWidget());
                if (!dlg)
                    return;
                seen << QString::number(quintptr(dlg));
                QTest::keyClicks(dlg->cboSingerNames->lineEdit(), QString::fromLatin1(typed));
                QTest::keyClick(dlg->spnKey, Qt::Key_Down);
                QTest::keyClick(dlg->cboSingerNames->lineEdit(), Qt::Key_Return);
            });
            queue.AddSongToQueue(id);
        }
        QCOMPARE(seen.size(), 2);
        QCOMPARE(seen.at(0), seen.at(1)); // one shared dialog
        QCOMPARE(queuetest::performers(*queue.model()), QStringList({"Bob Dylan", "Ann"}));
        QCOMPARE(queue.GetDetailsFromRow(1).Key, -1);
        QCOMPARE(queuetest::savedRows(), queuetest::modelRows(*queue.model()));
    }
};

KV_TEST_CLASS(TestQueueDialogs)
#include "tst_queuedialogs.moc"
