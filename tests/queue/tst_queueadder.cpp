#include "core/appsettings.h"
#include "queue/queueadder.h"
#include "queue/queuemodel.h"
#include "queuefakes.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QTest>

using namespace queuetest;

class TestQueueAdder : public QObject {
    Q_OBJECT
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<QueueModel> m_model;
    std::unique_ptr<QueueAdder> m_adder;
    FakePerformerPrompt m_dialogs;
    FakeHook m_hook;
    int m_saves = 0;

    QString row(int i) const {
        QStringList cells;
        for (int c = 0; c < QueueModel::ColumnCount; ++c)
            cells << m_model->cellText(i, c);
        return cells.join(QLatin1Char('|')) + QLatin1Char('@') + m_model->itemTag(i);
    }

private slots:
    void init() {
        Cfg = AppSettings{};
        m_prompts = std::make_unique<ScriptedPrompts>();
        m_ws = std::make_unique<TestWorkspace>();
        m_model = std::make_unique<QueueModel>();
        m_dialogs = FakePerformerPrompt{};
        m_hook = FakeHook{};
        m_saves = 0;
        m_adder = std::make_unique<QueueAdder>(
            *m_model, [this] { ++m_saves; }, [this]() -> PerformerPrompt& { return m_dialogs; });
        m_adder->setKeyboardHook(&m_hook);
    }
    void cleanup() {
        m_adder.reset();
        m_model.reset();
        m_ws.reset();
        m_prompts.reset();
    }

    void addSongFromSearch_data() {
        QTest::addColumn<bool>("promptOn");
        QTest::addColumn<bool>("cancel");
        QTest::addColumn<bool>("zeroId");
        QTest::addColumn<QString>("expectedRow");
        QTest::addColumn<int>("saves");
        QTest::addColumn<QStringList>("hook");
        QTest::addColumn<QStringList>("dialogs");
        const QStringList both{"release", "create"};
        const QStringList releasedOnly{"release"};
        QTest::newRow("asked") << true << false << false
                               << "|Jo Ann|Abba|Waterloo|-2@/songs/Abba - Waterloo.zip" << 1 << both
                               << QStringList{"choose"};
        QTest::newRow("not asked: default name, key 0")
            << false << false << false << "|Host Default|Abba|Waterloo|0@/songs/Abba - Waterloo.zip" << 1
            << both << QStringList{};
        QTest::newRow("cancelled") << true << true << false << QString() << 0 << releasedOnly
                                   << QStringList{"choose"};
        QTest::newRow("id 0") << true << false << true << QString() << 0 << releasedOnly << QStringList{};
    }
    void addSongFromSearch() {
        QFETCH(bool, promptOn);
        QFETCH(bool, cancel);
        QFETCH(bool, zeroId);
        QFETCH(QString, expectedRow);
        Cfg.PromptForPerfomer = promptOn;
        Cfg.DefaultName = QStringLiteral("Host Default");
        const qint64 id = m_ws->addSongs({"Abba - Waterloo"}).first();
        if (cancel)
            m_dialogs.cancel();
        else
            m_dialogs.ok(QStringLiteral("Jo Ann"), -2);
        m_adder->AddSongToQueue(zeroId ? 0 : id);
        QCOMPARE(m_model->rowCount(), expectedRow.isEmpty() ? 0 : 1);
        if (!expectedRow.isEmpty())
            QCOMPARE(row(0), expectedRow);
        QTEST(m_saves, "saves");
        QTEST(m_hook.calls, "hook");
        QTEST(m_dialogs.shown, "dialogs");
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // A song deleted under the search results: told, logged, no row.
    void unknownIdAddsNoRow() {
        m_dialogs.ok(QStringLiteral("Ann"), 0);
        m_adder->AddSongToQueue(424242);
        QCOMPARE(m_model->rowCount(), 0);
        QCOMPARE(TestWorkspace::errorLogRecords(), 1);
        QVERIFY(TestWorkspace::errorLog().contains(QStringLiteral("KvApp.frmMain.AddSongToQueue")));
        QVERIFY(TestWorkspace::errorLog().contains(QStringLiteral("424242")));
        QCOMPARE(m_hook.calls, QStringList({"release", "create"}));
    }

    void addTrackByIdReadsColumnsByPosition() {
        const QList<qint64> ids = m_ws->addSongs({"Queen - Bohemian Rhapsody", "O'Neil - Ça Va"});
        m_adder->AddTrackById(ids.at(1), QStringLiteral("Zoë"), 5);
        m_adder->AddTrackById(ids.at(0), QStringLiteral("Al"), -7); // the key is not limited here
        QCOMPARE(row(0), QStringLiteral("|Zoë|O'Neil|Ça Va|5@/songs/O'Neil - Ça Va.zip"));
        QCOMPARE(row(1),
                 QStringLiteral("|Al|Queen|Bohemian Rhapsody|-7@/songs/Queen - Bohemian Rhapsody.zip"));
        QCOMPARE(m_saves, 0);
    }

    void kamikaze_data() {
        QTest::addColumn<int>("marked");
        QTest::addColumn<bool>("cancel");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("boxes");
        QTest::newRow("none marked") << 0 << false << 0 << 1;
        QTest::newRow("three marked") << 3 << false << 1 << 0;
        QTest::newRow("cancelled") << 2 << true << 0 << 0;
    }
    void kamikaze() {
        QFETCH(int, marked);
        QFETCH(bool, cancel);
        QFETCH(int, rows);
        const QList<qint64> ids = m_ws->addSongs({"A - 1", "B - 2", "C - 3", "D - 4"});
        for (int i = 0; i < marked; ++i)
            ExecuteSql(QStringLiteral("UPDATE tblKaraokeTracks SET Kamikaze = 1 WHERE KaraokeTrackID = %1")
                           .arg(ids.at(i)));
        if (cancel)
            m_dialogs.cancel();
        else
            m_dialogs.ok(QStringLiteral("Kim"), 1);
        m_adder->LoadKamikazeTrack();
        QCOMPARE(m_model->rowCount(), rows);
        QCOMPARE(m_saves, rows);
        QTEST(m_prompts->countTitle(QStringLiteral("No Songs Available")), "boxes");
        if (rows) {
            // The pick is one of the marked songs, at the end of the queue.
            const QStringList markedPaths =
                QStringList{"/songs/A - 1.zip", "/songs/B - 2.zip", "/songs/C - 3.zip"}.mid(0, marked);
            QVERIFY2(markedPaths.contains(m_model->itemTag(0)), qPrintable(m_model->itemTag(0)));
            QCOMPARE(m_model->cellText(0, QueueModel::ColPerformer), QStringLiteral("Kim"));
        }
        QVERIFY(m_hook.calls.isEmpty());
    }

    void fileButton_data() {
        QTest::addColumn<bool>("chosen");
        QTest::addColumn<bool>("dialogCancelled");
        QTest::newRow("file chosen") << true << false;
        QTest::newRow("details cancelled") << true << true;
        QTest::newRow("no file chosen") << false << false;
    }
    void fileButton() {
        QFETCH(bool, chosen);
        QFETCH(bool, dialogCancelled);
        const QString folder = m_ws->dataFolder() + QStringLiteral("music/");
        QDir().mkpath(folder);
        const QString path = folder + QStringLiteral("my song.mp3");
        Cfg.FileSystemPath = QStringLiteral("c:\\");
        m_prompts->answer(chosen ? path : QString());
        FileSongAnswer a{QStringLiteral("Art"), QStringLiteral("Title"), QStringLiteral("lower name"), -3,
                         dialogCancelled};
        m_dialogs.fileAnswers.enqueue(a);
        m_adder->cmdFF_Click();

        QCOMPARE(m_prompts->calls.size(), 1);
        QCOMPARE(m_prompts->calls.first().kind, QStringLiteral("openFile"));
        // A remembered folder that does not exist here gives way to the home folder.
        QCOMPARE(m_prompts->calls.first().text, settingsfile::defaultFolder());
        QCOMPARE(m_dialogs.shown, chosen ? QStringList{"file:" + path} : QStringList{});
        QCOMPARE(m_model->rowCount(), chosen && !dialogCancelled ? 1 : 0);
        if (m_model->rowCount())
            QCOMPARE(row(0), QStringLiteral("|lower name|Art|Title|-3@") + path);
        QCOMPARE(m_saves, 0);
        QCOMPARE(m_hook.calls, QStringList({"release", "create"}));
        const QString remembered = chosen ? folder : QStringLiteral("c:\\");
        QCOMPARE(Cfg.FileSystemPath, remembered);
        if (chosen)
            QCOMPARE(settingsfile::readText(QStringLiteral("FileSystemPath"), QString()), folder);
    }

    void changeSinger_data() {
        QTest::addColumn<QString>("performer");
        QTest::addColumn<QString>("key");
        QTest::addColumn<bool>("cancel");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("newPerformer");
        QTest::addColumn<QString>("newKey");
        // performer, key cell, cancelled, dialog preset, performer and key after
        const auto row = [](const char* name, const char* performer, const char* key, bool cancel,
                            const char* shown, const char* newPerformer, const char* newKey) {
            QTest::newRow(name) << QString(performer) << QString(key) << cancel << QString(shown)
                                << QString(newPerformer) << QString(newKey);
        };
        row("ok replaces both", "Bob", "3", false, "change:Bob:0", "Zed", "-1");
        row("cancel keeps singer, resets key", "Bob", "3", true, "change:Bob:0", "Bob", "0");
        row("key cell equal to the name", "7", "7", true, "change:7:-1", "7", "-1");
    }
    void changeSinger() {
        QFETCH(QString, performer);
        QFETCH(QString, key);
        QFETCH(bool, cancel);
        QFETCH(QString, shown);
        addRows(*m_model, {"First"});
        m_model->addItem({QString(), performer, QStringLiteral("Art"), QStringLiteral("Trk"), key},
                         QStringLiteral("/p"));
        if (cancel)
            m_dialogs.cancel();
        else
            m_dialogs.ok(QStringLiteral("Zed"), -1);
        m_adder->ChangeSingerOnQueueRow(1);
        QCOMPARE(m_dialogs.shown, QStringList{shown});
        QTEST(m_model->cellText(1, QueueModel::ColPerformer), "newPerformer");
        QTEST(m_model->cellText(1, QueueModel::ColKey), "newKey");
        QCOMPARE(m_model->cellText(0, QueueModel::ColPerformer), QStringLiteral("First"));
        QCOMPARE(m_saves, 1);
        QVERIFY(m_hook.calls.isEmpty());
    }

    void changeSingerWithoutRowDoesNothing() {
        addRows(*m_model, {"First"});
        for (int row : {-1, 1})
            m_adder->ChangeSingerOnQueueRow(row);
        QVERIFY(m_dialogs.shown.isEmpty());
        QCOMPARE(m_saves, 0);
    }
};

KV_TEST_CLASS(TestQueueAdder)
#include "tst_queueadder.moc"
