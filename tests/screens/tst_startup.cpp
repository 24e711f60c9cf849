#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "screens/frmmain.h"
#include "screens/frmsplash.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "playbackmedia.h"
#include "workspace.h"

#include <QApplication>
#include <QDir>
#include <QPointer>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <sqlite3.h>

namespace {

QString workingFolder() {
    return cApplicationPaths::workingFolderBelow(cApplicationPaths::commonDataFolder()) + QLatin1Char('/');
}
QString documents() { return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + '/'; }

QByteArray readAll(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

void writeAll(const QString& path, const QByteArray& data) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    f.open(QIODevice::WriteOnly | QIODevice::Truncate);
    f.write(data);
}

// A SQLite file with the two tables of the old catalogue layout.
void makeOldCatalogue(const QString& path) {
    QFile::remove(path);
    sqlite3* db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_exec(db, "CREATE TABLE tblImport (a TEXT); CREATE TABLE KaraokeTracks (b TEXT);", nullptr, nullptr,
                 nullptr);
    sqlite3_close(db);
}

// A working folder seeded from the templates, its player the real one
// without sound or picture.
void seedWithQuietPlayer() {
    QDir().mkpath(workingFolder());
    QFile::copy(cApplicationPaths::installFolder() + "settings.ini", workingFolder() + "settings.ini");
    QFile::setPermissions(workingFolder() + "settings.ini", QFile::ReadOwner | QFile::WriteOwner);
    CIniFile ini;
    ini.setFileName(workingFolder() + "settings.ini");
    ini.SaveStringValue("Settings", "WinAmpPath", playbackmedia::writePlayerWrapper(documents()));
}

} // namespace

class TestStartup : public QObject {
    Q_OBJECT

    // Runs the whole start-up on a fresh main window; true when it came up.
    bool start(frmMain& w, const QString& commandLine = {}) {
        w.setSplashMinimumMs(0);
        if (!w.Form_Load(commandLine))
            return false;
        return QTest::qWaitFor([&] { return w.isReady(); }, 5000);
    }

private slots:
    void init() {
        TestWorkspace::wipe();
        Cfg = AppSettings();
    }
    void cleanup() { TestWorkspace::wipe(); }

    void firstStartSeedsAndWritesFirstStartBlock() {
        ScriptedPrompts p;
        frmMain w;
        QVERIFY(start(w));
        QVERIFY(w.isVisible());
        CIniFile ini;
        ini.setFileName(workingFolder() + "settings.ini");
        QCOMPARE(ini.GetNumericValue("Settings", "FirstStart", 1), 0);
        QCOMPARE(ini.GetStringValue("Settings", "BGImagePath", {}), documents());
        QVERIFY(ini.GetStringValue("Settings", "MainImage", {}).endsWith("/secondscreen.jpg"));
        QVERIFY(IsDatabaseOpen());
        QCOMPARE(p.calls.size(), 0);
        w.close();
        QVERIFY(!IsDatabaseOpen());
        QVERIFY(!oSettings);
    }

    void secondStartTouchesNothing() {
        seedWithQuietPlayer();
        {
            ScriptedPrompts p;
            frmMain w;
            QVERIFY(start(w));
            w.close();
        }
        const QByteArray settings = readAll(workingFolder() + "settings.ini");
        const QByteArray catalogue = readAll(workingFolder() + "kvsonglist.mdb");
        const QDateTime stamp = QFileInfo(workingFolder() + "kvsonglist.mdb").lastModified();
        ScriptedPrompts p;
        frmMain w;
        QVERIFY(start(w));
        QCOMPARE(readAll(workingFolder() + "settings.ini"), settings);
        QCOMPARE(QFileInfo(workingFolder() + "kvsonglist.mdb").lastModified(), stamp);
        QCOMPARE(readAll(workingFolder() + "kvsonglist.mdb"), catalogue);
        w.close();
    }

    void settingsReadWithDefaults() {
        seedWithQuietPlayer();
        CIniFile ini;
        ini.setFileName(workingFolder() + "settings.ini");
        const QList<std::pair<QString, QString>> keys = {
            {"FirstStart", "0"}, {"AutoPlayDelay", "9"}, {"PromptForPerfomer", "0"}, {"PromptForPerformer", "1"},
            {"StopKaraokeTrackOnJinglePlay", "0"}, {"DefaultName", QString::fromUtf8("Zo\xc3\xab")},
            {"NoFadeOnRestart", "0"}};
        for (const auto& [key, value] : keys)
            ini.SaveStringValue("Settings", key, value);
        ScriptedPrompts p;
        frmMain w;
        QVERIFY(start(w));
        QCOMPARE(Cfg.AutoPlayDelay, 9);
        QCOMPARE(w.tmrDelay->interval(), 9000);
        QCOMPARE(Cfg.PromptForPerfomer, false); // the key as the file spells it
        QCOMPARE(Cfg.StopKaraokeTrackOnJinglePlay, false);
        QCOMPARE(Cfg.DefaultName, QString::fromUtf8("Zo\xc3\xab"));
        QCOMPARE(Cfg.NoFadeOnRestart, false);
        QCOMPARE(Cfg.AllowDragAndDrop, true); // absent: its default
        w.close();
    }

    void failedStarts_data() {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<QByteArray>("bytes"); // the catalogue file written by "write" and "locked"
        QTest::addColumn<QString>("title");
        const QString noDatabase = QStringLiteral("Database connection failed");
        const QString noSettings = QStringLiteral("Settings File Cannot Be Located");
        QByteArray random(8192, '\0');
        for (char& c : random)
            c = char(QRandomGenerator::global()->bounded(256));
        QByteArray jet(4096, '\0');
        jet.replace(0, 19, QByteArray("\x00\x01\x00\x00Standard Jet DB", 19));
        const QByteArray whole = readAll(cApplicationPaths::installFolder() + "kvsonglist.mdb");
        QVERIFY(whole.size() > 4096);
        QTest::newRow("settings file missing") << "settings-dir" << QByteArray() << noSettings;
        QTest::newRow("old catalogue") << "old" << QByteArray() << "Old Database Found";
        QTest::newRow("catalogue of random bytes") << "write" << random << noDatabase;
        QTest::newRow("catalogue of another engine") << "write" << jet << noDatabase;
        QTest::newRow("empty catalogue file") << "write" << QByteArray() << noDatabase;
        // The template with one page too few.
        QTest::newRow("truncated catalogue") << "write" << whole.left(whole.size() - 4096) << noDatabase;
        QTest::newRow("locked catalogue") << "locked" << whole << noDatabase;
        QTest::newRow("working folder blocked") << "blocked" << QByteArray() << noSettings;
    }
    void failedStarts() {
        QFETCH(QString, setup);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, title);
        const QString db = workingFolder() + "kvsonglist.mdb";
        QDir().mkpath(workingFolder());
        sqlite3* holder = nullptr;
        if (setup == "settings-dir") {
            // A folder where the settings file should be: nothing can copy it there.
            QDir().mkpath(workingFolder() + "settings.ini");
        } else if (setup == "old") {
            makeOldCatalogue(db);
        } else if (setup == "write" || setup == "locked") {
            writeAll(db, bytes);
        }
        if (setup == "locked") {
            // Another program holds the catalogue in an exclusive transaction.
            sqlite3_open(QFile::encodeName(db).constData(), &holder);
            sqlite3_exec(holder, "BEGIN EXCLUSIVE", nullptr, nullptr, nullptr);
        } else if (setup == "blocked") {
            // A file stands where the working folder's parent should be made.
            QDir(workingFolder()).removeRecursively();
            const QString company = QFileInfo(workingFolder() + "..").absoluteFilePath();
            QDir(company).removeRecursively();
            writeAll(company, "not a folder");
        }
        const bool existed = QFileInfo(db).isFile();
        const QByteArray before = existed ? readAll(db) : QByteArray();
        ScriptedPrompts p;
        frmMain w;
        w.setSplashMinimumMs(0);
        QCOMPARE(w.Form_Load({}), false);
        QCOMPARE(p.boxTitles(), QStringList{title});
        QVERIFY(!w.isVisible());
        QVERIFY(!IsDatabaseOpen());
        if (holder) {
            sqlite3_exec(holder, "ROLLBACK", nullptr, nullptr, nullptr);
            sqlite3_close(holder);
        }
        if (existed)
            QCOMPARE(readAll(db), before); // the host's file is left as it was
        if (setup == "blocked")
            QFile::remove(QFileInfo(workingFolder() + "..").absoluteFilePath());
        if (setup == "settings-dir")
            QCOMPARE(p.calls.first().style, 16400);
    }

    void reset_data() {
        QTest::addColumn<QString>("commandLine");
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("moved");
        QTest::newRow("yes") << "/reset" << int(Prompts::Yes) << true << true;
        QTest::newRow("no") << "/reset" << int(Prompts::No) << true << false;
        QTest::newRow("inside other words") << "-x /reset -y" << int(Prompts::Yes) << true << true;
        QTest::newRow("upper case") << "/RESET" << int(Prompts::Yes) << false << false;
        QTest::newRow("one blank") << " " << int(Prompts::Yes) << false << false;
    }
    void reset() {
        QFETCH(QString, commandLine);
        QFETCH(int, answer);
        QFETCH(bool, asked);
        QFETCH(bool, moved);
        seedWithQuietPlayer();
        {
            ScriptedPrompts p;
            frmMain w;
            QVERIFY(start(w));
            ExecuteSql("INSERT INTO tblQueue (QueuePos, PerformerName) VALUES (0, 'Ann')");
            w.close();
        }
        writeAll(workingFolder() + "settings.ini",
                 readAll(workingFolder() + "settings.ini") + "\n[Mine]\nKeep=1\n");
        ScriptedPrompts p;
        p.answer(answer);
        frmMain w;
        QVERIFY(start(w, commandLine));
        QCOMPARE(p.countTitle("Reset Korvane"), asked ? 1 : 0);
        if (asked)
            QCOMPARE(p.calls.first().style, 52);
        const QStringList archived = QDir(documents()).entryList({"*.mdb"}, QDir::Files);
        QCOMPARE(archived, moved ? QStringList{"kvsonglist.mdb"} : QStringList{});
        QSqlQuery q = ExecuteSql("SELECT count(*) FROM tblQueue");
        QVERIFY(q.next());
        QCOMPARE(q.value(0).toInt(), moved ? 0 : 1);
        QVERIFY(readAll(workingFolder() + "settings.ini").contains("[Mine]\nKeep=1")); // settings stay
        w.close();
    }

    void mainWindowWaitsForSplashTimer() {
        seedWithQuietPlayer();
        ScriptedPrompts p;
        frmMain w;
        w.setSplashMinimumMs(4000);
        QVERIFY(w.Form_Load({}));
        QVERIFY(!w.isVisible()); // the start-up is done, the splash's time is not
        QPointer<frmSplash> splash;
        for (QWidget* top : QApplication::topLevelWidgets())
            if (auto* s = qobject_cast<frmSplash*>(top))
                splash = s;
        QVERIFY(splash);
        QVERIFY(splash->isVisible());
        QTRY_VERIFY_WITH_TIMEOUT(w.isVisible(), 8000);
        QTRY_VERIFY(!splash || !splash->isVisible());
        w.close();
    }

    void shutdownSavesPlaceAndRemovesTemp_data() {
        QTest::addColumn<bool>("savePlace");
        QTest::newRow("SaveWindowPosition on") << true;
        QTest::newRow("SaveWindowPosition off") << false;
    }
    void shutdownSavesPlaceAndRemovesTemp() {
        QFETCH(bool, savePlace);
        seedWithQuietPlayer();
        CIniFile ini;
        ini.setFileName(workingFolder() + "settings.ini");
        ini.SaveStringValue("Settings", "SaveWindowPosition", savePlace ? "1" : "0");
        ScriptedPrompts p;
        frmMain w;
        QVERIFY(start(w));
        QDir().mkpath(WorkingFolder + "Temp/sub");
        writeAll(WorkingFolder + "Temp/sub/song.mp3", "x");
        w.resize(1000, 700);
        w.close();
        QVERIFY(!QFileInfo::exists(workingFolder() + "Temp"));
        if (!savePlace) {
            QVERIFY(!readAll(workingFolder() + "settings.ini").contains("MainWidth"));
            return;
        }
        QCOMPARE(ini.GetNumericValue("Settings", "MainState", -1), 0);
        QVERIFY(ini.GetStringValue("Settings", "MainWidth", {}).toInt() >= 12945);
        QVERIFY(!ini.GetStringValue("Settings", "MainLeft", {}).isEmpty());
    }
};

KV_TEST_CLASS(TestStartup)
#include "tst_startup.moc"
