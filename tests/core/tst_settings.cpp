#include "core/cinifile.h"
#include "core/globals.h"
#include "core/settings.h"
#include "testrunner.h"
#include "workspace.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <set>

// The table of keys, and reads and writes through it.
class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void everyKeyIsWrittenOnce() {
        std::set<QString> seen;
        for (const SettingKey* k : keys::all()) {
            const QString id = k->sectionName().toLower() + QLatin1Char('/') + k->key().toLower();
            QVERIFY2(seen.insert(id).second, qPrintable(id));
            QCOMPARE(keys::find(k->sectionName().toUpper(), k->key().toUpper()), k);
        }
        QVERIFY(!keys::find(QStringLiteral("Settings"), QStringLiteral("ShowNextPerformer")));
    }

    // A file that lacks every key reads each key's default, typed as the key is.
    void absentKeysReadTheirDefaults() {
        TestWorkspace ws(false);
        QFile f(ws.settingsFile());
        QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write("[Settings]\n");
        f.close();
        for (const SettingKey* k : keys::all()) {
            switch (k->type) {
            case SettingType::Bool:
                QCOMPARE(settings::readBool(*k), k->defaultBool());
                break;
            case SettingType::Int:
                QCOMPARE(settings::readInt(*k), k->defaultInt());
                break;
            case SettingType::Text:
                QCOMPARE(settings::readText(*k), k->defaultText());
                break;
            }
        }
        QCOMPARE(settings::readInt(keys::FontSize), 36);
        QCOMPARE(settings::readText(keys::WinAmpPath), QStringLiteral("/usr/bin/mpv"));
    }

    void writesReachTheFileAndAreAnnounced_data() {
        QTest::addColumn<int>("which");
        QTest::addColumn<QString>("announced");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("bool") << 0 << "ShowNextPerfomer" << QByteArray("ShowNextPerfomer=0");
        QTest::newRow("int, 16 bits") << 1 << "ScrollerSpeed" << QByteArray("ScrollerSpeed=-31072");
        QTest::newRow("text") << 2 << "Font" << QByteArray("Font=Digital 7");
        QTest::newRow("jingle") << 3 << "Jingles/7" << QByteArray("7=/music/a,b.mp3");
    }
    void writesReachTheFileAndAreAnnounced() {
        QFETCH(int, which);
        QFETCH(QString, announced);
        QFETCH(QByteArray, line);
        TestWorkspace ws(false);
        QSignalSpy spy(&SettingsNotifier::instance(), &SettingsNotifier::settingChanged);
        switch (which) {
        case 0:
            settings::writeBool(keys::ShowNextPerfomer, false);
            break;
        case 1:
            settings::writeInt(keys::ScrollerSpeed, 100000);
            break;
        case 2:
            settings::writeText(keys::Font, QStringLiteral("Digital 7"));
            break;
        case 3:
            settings::writeText(keys::Jingle[7], QStringLiteral("/music/a,b.mp3"));
            break;
        }
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), announced);
        QFile f(ws.settingsFile());
        QVERIFY(f.open(QIODevice::ReadOnly));
        QVERIFY2(f.readAll().contains(line), line.constData());
    }
};

KV_TEST_CLASS(TestSettings)
#include "tst_settings.moc"
