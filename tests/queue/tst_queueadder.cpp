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

namespace {

// The adder over a queue list of its own, its dialogs scripted and its saves counted.
struct AdderRig {
    ScriptedPrompts prompts;
    TestWorkspace ws;
    QueueModel model;
    FakePerformerPrompt dialogs;
    FakeHook hook;
    int saves = 0;
    QueueAdder adder{model, [this] { ++saves; }, [this]() -> PerformerPrompt& { return dialogs; }};
    AdderRig() { adder.setKeyboardHook(&hook); }

    QString row(int i) const {
        QStringList cells;
        for (int c = 0; c < QueueModel::ColumnCount; ++c)
            cells << model.cellText(i, c);
        return cells.join(QLatin1Char('|')) + QLatin1Char('@') + model.itemTag(i);
    }
};

} // namespace

class TestQueueAdder : public QObject {
    Q_OBJECT
    std::unique_ptr<AdderRig> m_rig;

private slots:
    void init() {
        Cfg = AppSettings{};
        m_rig = std::make_unique<AdderRig>();
    }
    void cleanup() { m_rig.reset(); }

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
        const qint64 id = m_rig->ws.addSongs({"Abba - Waterloo"}).first();
        if (cancel)
            m_rig->dialogs.cancel();
        else
            m_rig->dialogs.ok(QStringLiteral("Jo Ann"), -2);
        m_rig->adder.AddSongToQueue(id);
        QCOMPARE(m_rig->model.rowCount(), expectedRow.isEmpty() ? 0 : 1);
        if (!expectedRow.isEmpty())
            QCOMPARE(m_rig->row(0), expectedRow);
        QTEST(m_rig->saves, "saves");
        QTEST(m_rig->hook.calls, "hook");
        QTEST(m_rig->dialogs.shown, "dialogs");
        QCOMPARE(TestWorkspace::errorLogRecords(), 0);
    }

    // None marked: the host is told and nothing is added; otherwise one of the
    // marked songs joins the queue and it is saved.
    void kamikaze() {
        const QList<qint64> ids = m_rig->ws.addSongs({"A - 1", "B - 2", "C - 3", "D - 4"});
        m_rig->dialogs.ok(QStringLiteral("Kim"), 1);
        m_rig->adder.LoadKamikazeTrack();
        QCOMPARE(m_rig->model.rowCount(), 0);
        QCOMPARE(m_rig->prompts.countTitle(QStringLiteral("No Songs Available")), 1);
        ExecuteSql(QStringLiteral("UPDATE tblKaraokeTracks SET Kamikaze = 1 WHERE KaraokeTrackID <> %1")
                       .arg(ids.at(3)));
        m_rig->adder.LoadKamikazeTrack();
        QCOMPARE(m_rig->model.rowCount(), 1);
        QCOMPARE(m_rig->saves, 1);
        QVERIFY2(m_rig->model.itemTag(0) < QStringLiteral("/songs/D"), qPrintable(m_rig->model.itemTag(0)));
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
        addRows(m_rig->model, {"First"});
        m_rig->model.addItem({QString(), QStringLiteral("Bob"), QStringLiteral("Art"), QStringLiteral("Trk"),
                              QStringLiteral("3")},
                             QStringLiteral("/p"));
        if (cancel)
            m_rig->dialogs.cancel();
        else
            m_rig->dialogs.ok(QStringLiteral("Zed"), -1);
        m_rig->adder.ChangeSingerOnQueueRow(1);
        QCOMPARE(m_rig->dialogs.shown, QStringList{QStringLiteral("change:Bob:0")});
        QTEST(m_rig->model.cellText(1, QueueModel::ColPerformer), "newPerformer");
        QTEST(m_rig->model.cellText(1, QueueModel::ColKey), "newKey");
        QCOMPARE(m_rig->model.cellText(0, QueueModel::ColPerformer), QStringLiteral("First"));
        QCOMPARE(m_rig->saves, 1);
        // No row: no dialog, no save.
        for (int row : {-1, 2})
            m_rig->adder.ChangeSingerOnQueueRow(row);
        QCOMPARE(m_rig->dialogs.shown.size(), 1);
        QCOMPARE(m_rig->saves, 1);
    }
};

KV_TEST_CLASS(TestQueueAdder)
#include "tst_queueadder.moc"
