#include "catalogue/database.h"
#include "core/appsettings.h"
#include "import/frmimportsongs.h"
#include "import/importsession.h"
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

    void loadState() {
        m_ws->addSongs({QStringLiteral("A - B"), QStringLiteral("C - D")});
        frmImportSongs form;
        // The list's order is not the conventions' numbering: it opens on number 2.
        QCOMPARE(form.cdoFileConvention->currentIndex(), 0);
        QCOMPARE(form.selectedConvention(), 2);
        QCOMPARE(form.cdoFileConvention->itemData(6).toInt(), 4);
        QCOMPARE(form.txtFolder->text(), settingsfile::defaultFolder());
        QCOMPARE(form.lblTotalCount->text(), QStringLiteral("Total count of tracks in the database is 2"));
    }

    void browse_data() {
        QTest::addColumn<bool>("confirm");
        QTest::newRow("confirmed") << true;
        QTest::newRow("cancelled") << false;
    }
    void browse() {
        QFETCH(bool, confirm);
        QTemporaryDir dir;
        frmImportSongs form;
        const QString before = form.txtFolder->text();
        form.txtFolder->setText(QStringLiteral("typed but not confirmed"));
        m_prompts->answer(confirm ? QVariant(dir.path()) : QVariant());
        form.txtFolder_ButtonClick();
        QCOMPARE(m_prompts->calls.first().kind, QStringLiteral("chooseFolder"));
        const QString expected = confirm ? dir.path() : before;
        QCOMPARE(form.txtFolder->text(), expected);
        QCOMPARE(form.importFolder(), expected);
        QCOMPARE(settingsfile::readText(QStringLiteral("ImportPath"), QStringLiteral("unset")),
                 confirm ? dir.path() : QStringLiteral("unset"));
    }

    void closeRefusedWhileRunning() {
        frmImportSongs form;
        form.show();
        form.run().ImportRunning = true;
        QVERIFY(!form.close());
        form.reject();
        QVERIFY(form.isVisible());
        QCOMPARE(m_prompts->countTitle(QStringLiteral("Close Screen")), 2);
        QCOMPARE(m_prompts->calls.first().style, int(Prompts::Information));
        form.run().ImportRunning = false;
        QVERIFY(form.close());
    }

    void clearDatabase_data() {
        QTest::addColumn<int>("answer");
        QTest::newRow("OK clears") << int(Prompts::Ok);
        QTest::newRow("Cancel keeps") << int(Prompts::Cancel);
    }
    void clearDatabase() {
        QFETCH(int, answer);
        m_ws->addSongs({QStringLiteral("A - B"), QStringLiteral("C - D")});
        ExecuteSql(
            QStringLiteral("INSERT INTO tblQueue (QueuePos, TrackPath) VALUES (0, '/songs/A - B.zip')"));
        frmImportSongs form;
        QSignalSpy cleared(&form, &frmImportSongs::queueListClearRequested);
        m_prompts->answer(answer);
        form.btnClearDatabase->click();
        QCOMPARE(m_prompts->calls.first().style, int(Prompts::OkCancel | Prompts::Exclamation));
        const bool ok = answer == Prompts::Ok;
        QCOMPARE(cleared.size(), ok ? 1 : 0);
        QCOMPARE(form.lblTotalCount->text(),
                 QStringLiteral("Total count of tracks in the database is %1").arg(ok ? 0 : 2));
        QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblQueue"));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 1);
    }

    // A whole run from the button, with the status label and the counts.
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
        QCOMPARE(form.lblTotalCount->text(), QStringLiteral("Total count of tracks in the database is 2"));
        QCOMPARE(form.btnGetTracks->text(), QStringLiteral("Find Tracks"));
        QVERIFY(form.btnTransfer->isEnabled());
        QVERIFY(form.cmdCompact->isEnabled());
        QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks WHERE Kamikaze = -1"));
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), 2);
    }

    void compactedStatusPath() {
        frmImportSongs form;
        form.resize(420, form.height());
        form.show();
        const QString path = QStringLiteral("/very/long/") + QString(40, QLatin1Char('x')) +
                             QStringLiteral("/folder/of/songs/SC01-01 - Artist - A Rather Long Title.zip");
        const QString shortened = form.CompactedStatusPath(path);
        QVERIFY(shortened.size() < path.size());
        QVERIFY(shortened.startsWith(QStringLiteral("/very")));
        QVERIFY(shortened.endsWith(QStringLiteral(".zip")));
        QVERIFY(form.lblImportStatus->fontMetrics().horizontalAdvance(shortened) <=
                form.lblImportStatus->width() - 5);
        QCOMPARE(form.CompactedStatusPath(QStringLiteral("/a.zip")), QStringLiteral("/a.zip"));
    }

    void stringTruncate_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("length");
        QTest::addColumn<bool>("ellipsis");
        QTest::addColumn<QString>("expected");
        QTest::newRow("cut with dots") << "Karaoke" << 4 << true << "Kara...";
        QTest::newRow("cut plain") << "Karaoke" << 4 << false << "Kara";
        QTest::newRow("shorter than length") << "Abc" << 10 << true << "Abc...";
        QTest::newRow("zero") << "Abc" << 0 << false << "";
    }
    void stringTruncate() {
        QFETCH(QString, text);
        QFETCH(int, length);
        QFETCH(bool, ellipsis);
        QFETCH(QString, expected);
        QCOMPARE(frmImportSongs::StringTruncate(text, qint16(length), ellipsis), expected);
    }
};

KV_TEST_CLASS(TestFrmImportSongs)
#include "tst_frmimportsongs.moc"
