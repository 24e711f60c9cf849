#include "catalogue/database.h"
#include "core/appsettings.h"
#include "import/importsession.h"
#include "import/ui/frmimportsongs.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <memory>

class TestFrmImportSongs : public QObject {
    Q_OBJECT
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;

private slots:
    void init() {
        m_ws = std::make_unique<TestWorkspace>();
        m_prompts = std::make_unique<ScriptedPrompts>();
        importSession() = ImportSession{};
    }
    void cleanup() {
        m_prompts.reset();
        m_ws.reset();
    }

    void closeRefusedWhileRunning() {
        frmImportSongs form;
        form.show();
        form.run().ImportRunning = true;
        QVERIFY(!form.close());
        form.reject();
        QVERIFY(form.isVisible());
        QCOMPARE(m_prompts->countTitle(QStringLiteral("Close Screen")), 2);
        form.run().ImportRunning = false;
        QVERIFY(form.close());
    }

    // Cancel keeps the catalogue; OK empties it and asks for the queue list to
    // be cleared, while the saved queue stays.
    void clearDatabase() {
        m_ws->addSongs({QStringLiteral("A - B"), QStringLiteral("C - D")});
        ExecuteSql(
            QStringLiteral("INSERT INTO tblQueue (QueuePos, TrackPath) VALUES (0, '/songs/A - B.zip')"));
        frmImportSongs form;
        QSignalSpy cleared(&form, &frmImportSongs::queueListClearRequested);
        const auto count = [](const char* table) {
            QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM ") + QLatin1String(table));
            return q.next() ? q.value(0).toInt() : -1;
        };
        for (int answer : {int(Prompts::Cancel), int(Prompts::Ok)}) {
            m_prompts->answer(answer);
            form.btnClearDatabase->click();
            QCOMPARE(cleared.size(), answer == Prompts::Ok ? 1 : 0);
            QCOMPARE(count("tblKaraokeTracks"), answer == Prompts::Ok ? 0 : 2);
            QCOMPARE(count("tblQueue"), 1);
        }
    }

    // A whole run from the button: the kamikaze box marks the new songs, and
    // the buttons kept off during the run come back.
    void runFromButton() {
        QTemporaryDir songs;
        for (const char* n :
             {"SC01-01 - Artist - One.zip", "SC01-02 - Artist - Two.mp3", "SC01-02 - x.cdg"}) {
            QFile f(songs.path() + QLatin1Char('/') + QString::fromUtf8(n));
            QVERIFY(f.open(QIODevice::WriteOnly));
        }
        frmImportSongs form;
        form.run().setSettlePause(0);
        form.txtFolder->setText(songs.path());
        form.chkKamikaze->setChecked(true);
        form.btnGetTracks->click();
        QCOMPARE(form.lblImportStatus->text(), QStringLiteral("2 new tracks were imported."));
        QVERIFY(form.btnClearDatabase->isEnabled());
        QVERIFY(form.cmdCompact->isEnabled());
        QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks WHERE Kamikaze = -1"));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 2);
    }
};

KV_TEST_CLASS(TestFrmImportSongs)
#include "tst_frmimportsongs.moc"
