#include "core/settings.h"
#include "jinglerig.h"
#include "jingles/ui/jinglebuttons.h"
#include "jingles/ui/jingleoptionspage.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace jinglemedia;
using namespace playbackmedia;

// The options page of the fill buttons and the main screen's buttons, on a
// real engine.
class TestJingleOptions : public QObject, private RigSession {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString m_wrapper;

private slots:
    void initTestCase() {
        m_wrapper = writePlayerWrapper(m_dir.path());
        QVERIFY(makeMp3(m_dir.filePath("Cheer.mp3"), 4.0));
    }
    void init() {
        openSession(m_wrapper);
        QVERIFY(m_rig->jingles.PlayerInit(m_wrapper, 0));
    }
    void cleanup() { closeSession(); }

    // The page shows the keys, the engine's outputs and the setting as they stand.
    void pageShowsTheSettings_data() {
        QTest::addColumn<int>("device");
        QTest::addColumn<int>("selected");
        QTest::addColumn<bool>("stop");
        QTest::newRow("second output, stop on") << 1 << 1 << true;
        QTest::newRow("output beyond the list, stop off") << 250 << -1 << false;
    }
    void pageShowsTheSettings() {
        QFETCH(int, device);
        QFETCH(int, selected);
        QFETCH(bool, stop);
        settings::writeText(keys::Jingle[5], m_dir.filePath("Cheer.mp3"));
        settings::writeText(keys::Jingle[9], QStringLiteral("/gone/Intro.wav"));
        settings::writeInt(keys::AudioDevice, device);
        Cfg.StopKaraokeTrackOnJinglePlay = stop;
        JingleOptionsPage page(&m_rig->jingles);
        QCOMPARE(page.myJingle[5]->text(), m_dir.filePath("Cheer.mp3"));
        QCOMPARE(page.myJingle[9]->text(), QStringLiteral("/gone/Intro.wav"));
        QCOMPARE(page.cboAudiodevices->count(), m_rig->jingles.DeviceCount());
        QCOMPARE(page.cboAudiodevices->itemText(0), m_rig->jingles.DeviceName(0));
        QCOMPARE(page.cboAudiodevices->currentIndex(), selected);
        QCOMPARE(page.chkStopKaraoke->isChecked(), stop);
    }

    // A file is assigned through the built-in button and written at once; a
    // chooser closed without a file says so and changes nothing.
    void assign_data() {
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QStringList>("boxes");
        QTest::newRow("a file") << "/music/Fill, one.mp3"
                                << "/music/Fill, one.mp3" << QStringList{};
        QTest::newRow("nothing chosen") << ""
                                        << "/old/Old.mp3" << QStringList{""};
        const QString longPath = "/" + QString(300, 'a') + ".mp3";
        // Longer than the chooser takes (and the settings keep): as if nothing was chosen.
        QTest::newRow("path over 255 characters") << longPath << "/old/Old.mp3" << QStringList{""};
    }
    void assign() {
        QFETCH(QString, chosen);
        QFETCH(QString, key);
        settings::writeText(keys::Jingle[3], QStringLiteral("/old/Old.mp3"));
        JingleOptionsPage page(&m_rig->jingles);
        QSignalSpy written(&SettingsNotifier::instance(), &SettingsNotifier::settingChanged);
        m_prompts->answer(chosen);
        page.myJingleButton[3]->trigger();
        QCOMPARE(settings::readText(keys::Jingle[3]), key);
        QCOMPARE(page.myJingle[3]->text(), key);
        QTEST(m_prompts->boxTitles(), "boxes");
        QCOMPARE(m_prompts->calls.first().title, QStringLiteral("Select an Audio File"));
        if (key != chosen) {
            QCOMPARE(m_prompts->calls.last().text, QStringLiteral("No files selected to add to the list."));
            QCOMPARE(m_prompts->calls.last().style, int(Prompts::Information));
            QCOMPARE(written.count(), 0);
        } else {
            QCOMPARE(written.count(), 1);
            QCOMPARE(written.first().first().toString(), QStringLiteral("Jingles/3"));
        }
    }

    void clearEmptiesTheKey() {
        settings::writeText(keys::Jingle[12], QStringLiteral("/music/Fill.mp3"));
        JingleOptionsPage page(&m_rig->jingles);
        QTest::mouseClick(page.btnClear[12], Qt::LeftButton);
        QCOMPARE(page.myJingle[12]->text(), QString());
        QCOMPARE(settings::readText(keys::Jingle[12]), QString());
    }

    // The chosen output goes to the running engine and into AudioDevice; the
    // tick box sets the flag and writes 1 or 0 at once.
    void outputAndStopSetting() {
        JingleOptionsPage page(&m_rig->jingles);
        page.cboAudiodevices->setCurrentIndex(1);
        QTest::mouseClick(page.cmdSetAudioOutput, Qt::LeftButton);
        QCOMPARE(settings::readInt(keys::AudioDevice), 1);
        const auto list = m_rig->jingles.instance().property("audio-device-list").value_or(QJsonValue());
        QCOMPARE(m_rig->jingleProp("audio-device").toString(),
                 list.toArray().at(1).toObject().value("name").toString());

        Cfg.StopKaraokeTrackOnJinglePlay = true;
        page.refill();
        page.chkStopKaraoke->click();
        QVERIFY(!Cfg.StopKaraokeTrackOnJinglePlay);
        QCOMPARE(settings::readText(keys::StopKaraokeTrackOnJinglePlay), QStringLiteral("0"));
        page.chkStopKaraoke->click();
        QVERIFY(Cfg.StopKaraokeTrackOnJinglePlay);
        QCOMPARE(settings::readText(keys::StopKaraokeTrackOnJinglePlay), QStringLiteral("1"));
    }

    // The main screen's buttons show the bank's captions (an ampersand as
    // itself) and hold the paths; a click plays that button's file.
    void mainScreenButtons() {
        QWidget frame;
        std::array<QPushButton*, 16> buttons;
        for (int i = 0; i < 16; ++i)
            buttons[size_t(i)] = new QPushButton(QString::number(i + 1), &frame);
        const QString cheer = m_dir.filePath("Cheer.mp3");
        const QString rock = m_dir.filePath("Rock & Roll.mp3");
        QVERIFY(QFile::copy(cheer, rock));
        settings::writeText(keys::Jingle[6], rock);
        JingleButtons wiring(m_rig->bank, buttons);
        m_rig->bank.InitialiseJingles();
        QCOMPARE(buttons[6]->text(), QStringLiteral("Rock && Roll"));
        QCOMPARE(buttons[6]->property("Tag").toString(), rock);
        QTest::mouseClick(buttons[6], Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig->jinglePath(), rock, kPlayerSlack);
        QTRY_COMPARE_WITH_TIMEOUT(m_rig->jingles.PlayerState(), 1, kPlayerSlack);
    }
};

KV_TEST_CLASS(TestJingleOptions)
#include "tst_jingleoptions.moc"
