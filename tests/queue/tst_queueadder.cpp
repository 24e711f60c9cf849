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
        QTest::addColumn<QString>("expectedRow");
        QTest::addColumn<int>("saves");
        QTest::addColumn<QStringList>("hook");
        QTest::addColumn<QStringList>("dialogs");
        const QStringList both{"release", "create"};
        const QStringList releasedOnly{"release"};
        QTest::newRow("asked") << true << false << "|Jo Ann|Abba|Waterloo|-2@/songs/Abba - Waterloo.zip" << 1
                               << both << QStringList{"choose"};
        QTest::newRow("not asked: default name, key 0")
            << false << false << "|Host Default|Abba|Waterloo|0@/songs/Abba - Waterloo.zip" << 1 << both
            << QStringList{};
        QTest::newRow("cancelled") << true << true << QString() << 0 << releasedOnly << QStringList{"choose"};
    }
    void addSongFromSearch() {
        QFETCH(bool, promptOn);
        QFETCH(bool, cancel);
        QFETCH(QString, expectedRow);
        Cfg.PromptForPerfomer = promptOn;
        Cfg.DefaultName = QStringLiteral("Host Default");
        const qint64 id = m_ws->addSongs({"Abba - Waterloo"}).first();
        if (cancel)
            m_dialogs.cancel();
        else
            m_dialogs.ok(QStringLiteral("Jo Ann"), -2);
        m_adder->AddSongToQueue(id);
        QCOMPARE(m_model->rowCount(), expectedRow.isEmpty() ? 0 : 1);
        if (!expectedRow.isEmpty())
            QCOMPARE(row(0), expectedRow);
        QTEST(m_saves, "saves");
        QTEST(m_hook.calls, "hook");
        QTEST(m_dialogs.shown, "dialogs");
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // None marked: the host is told and nothing is added; otherwise one of the
    // marked songs joins the queue and it is saved.
    void kamikaze() {
        const QList<qint64> ids = m_ws->addSongs({"A - 1", "B - 2", "C - 3", "D - 4"});
        m_dialogs.ok(QStringLiteral("Kim"), 1);
        m_adder->LoadKamikazeTrack();
        QCOMPARE(m_model->rowCount(), 0);
        QCOMPARE(m_prompts->countTitle(QStringLiteral("No Songs Available")), 1);
        ExecuteSql(QStringLiteral("UPDATE tblKaraokeTracks SET Kamikaze = 1 WHERE KaraokeTrackID <> %1")
                       .arg(ids.at(3)));
        m_adder->LoadKamikazeTrack();
        QCOMPARE(m_model->rowCount(), 1);
        QCOMPARE(m_saves, 1);
        QVERIFY2(m_model->itemTag(0) < QStringLiteral("/songs/D"), qPrintable(m_model->itemTag(0)));
    }

    // The dialog is preset with the row's singer and key 0; a cancel hands
    // that key back.
    void changeSinger_data() {
        QTest::addColumn<bool>("cancel");
        QTest::addColumn<QString>("newPerformer");
        QTest::addColumn<QString>("newKey");
        QTest::newRow("ok replaces both") << false << "Zed"
                                          << "-1";
        QTest::newRow("cancel keeps singer, resets key") << true << "Bob"
                                                         << "0";
    }
    void changeSinger() {
        QFETCH(bool, cancel);
        addRows(*m_model, {"First"});
        m_model->addItem({QString(), QStringLiteral("Bob"), QStringLiteral("Art"), QStringLiteral("Trk"),
                          QStringLiteral("3")},
                         QStringLiteral("/p"));
        if (cancel)
            m_dialogs.cancel();
        else
            m_dialogs.ok(QStringLiteral("Zed"), -1);
        m_adder->ChangeSingerOnQueueRow(1);
        QCOMPARE(m_dialogs.shown, QStringList{QStringLiteral("change:Bob:0")});
        QTEST(m_model->cellText(1, QueueModel::ColPerformer), "newPerformer");
        QTEST(m_model->cellText(1, QueueModel::ColKey), "newKey");
        QCOMPARE(m_model->cellText(0, QueueModel::ColPerformer), QStringLiteral("First"));
        QCOMPARE(m_saves, 1);
        // No row: no dialog, no save.
        for (int row : {-1, 2})
            m_adder->ChangeSingerOnQueueRow(row);
        QCOMPARE(m_dialogs.shown.size(), 1);
        QCOMPARE(m_saves, 1);
    }
};

KV_TEST_CLASS(TestQueueAdder)
#include "tst_queueadder.moc"
