#include "catalogue/database.h"
#include "childprocess.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/settings.h"
#include "filerights.h"
#include "mainwindowstart.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

#include <sqlite3.h>

namespace {

QString workingFolder() {
    return TestWorkspace::workingFolder();
}
QString documents() {
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + '/';
}

using playbackmedia::readFile;
using playbackmedia::writeFile;

QString integrityOfCatalogue() {
    QSqlQuery q = ExecuteSql("PRAGMA integrity_check");
    return q.next() ? q.value(0).toString() : QString();
}

// The songs of a catalogue copy, or -1 when it cannot be read.
int songsIn(const QString& file) {
    sqlite3* db = nullptr;
    sqlite3_stmt* st = nullptr;
    int n = -1;
    if (sqlite3_open_v2(QFile::encodeName(file).constData(), &db, SQLITE_OPEN_READWRITE, nullptr) ==
            SQLITE_OK &&
        sqlite3_prepare_v2(db, "SELECT count(*) FROM tblKaraokeTracks", -1, &st, nullptr) == SQLITE_OK &&
        sqlite3_step(st) == SQLITE_ROW)
        n = sqlite3_column_int(st, 0);
    sqlite3_finalize(st);
    sqlite3_close(db);
    return n;
}

} // namespace

class TestStartup : public QObject {
    Q_OBJECT

    // One whole session: start, `inside`, close.
    void session(const std::function<void()>& inside = {}) {
        ScriptedPrompts p;
        frmMain w;
        QVERIFY(kvtest::startMainWindow(w));
        if (inside)
            inside();
        w.close();
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
        QVERIFY(kvtest::startMainWindow(w));
        CIniFile ini;
        ini.setFileName(workingFolder() + "settings.ini");
        QCOMPARE(ini.GetNumericValue("Settings", "FirstStart", 1), 0);
        QVERIFY(IsDatabaseOpen());
        QCOMPARE(p.calls.size(), 0);
        w.close();
        QVERIFY(!IsDatabaseOpen());
        QVERIFY(!oSettings);
    }

    // A later start, or a reset the host declines, changes neither file, and
    // reads the settings the host left.
    void laterStartTouchesNothing_data() {
        QTest::addColumn<QString>("commandLine");
        QTest::newRow("plain") << "";
        QTest::newRow("reset declined") << "/reset";
    }
    void laterStartTouchesNothing() {
        QFETCH(QString, commandLine);
        TestWorkspace::seedWithQuietPlayer();
        CIniFile ini;
        ini.setFileName(workingFolder() + "settings.ini");
        ini.SaveStringValue("Settings", "AutoPlayDelay", "9");
        ini.SaveStringValue("Settings", "DefaultName", QString::fromUtf8("Zo\xc3\xab"));
        session([] { ExecuteSql("INSERT INTO tblQueue (QueuePos, PerformerName) VALUES (0, 'Ann')"); });
        const QByteArray settings = readFile(workingFolder() + "settings.ini");
        const QByteArray catalogue = readFile(workingFolder() + "kvsonglist.mdb");
        ScriptedPrompts p;
        p.answer(int(Prompts::No));
        frmMain w;
        QVERIFY(kvtest::startMainWindow(w, commandLine));
        QCOMPARE(p.countTitle("Reset Korvane"), commandLine.isEmpty() ? 0 : 1);
        QCOMPARE(readFile(workingFolder() + "settings.ini"), settings);
        QCOMPARE(readFile(workingFolder() + "kvsonglist.mdb"), catalogue);
        // AllowDragAndDrop is absent from the file: its default.
        QCOMPARE(QStringList({QString::number(Cfg.AutoPlayDelay), Cfg.DefaultName,
                              QString::number(Cfg.AllowDragAndDrop)}),
                 QStringList({"9", QString::fromUtf8("Zo\xc3\xab"), "1"}));
        w.close();
    }

    void failedStarts_data() {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<QByteArray>("bytes"); // the catalogue file written by "write" and "locked"
        QTest::addColumn<QString>("title");
        const QString noDatabase = QStringLiteral("Database connection failed");
        const QByteArray whole = readFile(cApplicationPaths::installFolder() + "kvsonglist.mdb");
        QVERIFY(whole.size() > 4096);
        QTest::newRow("settings file missing")
            << "settings-dir" << QByteArray() << "Settings File Cannot Be Located";
        // One message, not one for every setting read.
        QTest::newRow("settings file unreadable")
            << "settings-unreadable" << QByteArray() << "Settings File Cannot Be Read";
        QTest::newRow("old catalogue") << "old" << QByteArray() << "Old Database Found";
        QTest::newRow("catalogue of junk") << "write" << QByteArray(8192, 'q') << noDatabase;
        // The template with one page too few.
        QTest::newRow("truncated catalogue") << "write" << whole.left(whole.size() - 4096) << noDatabase;
        QTest::newRow("locked catalogue") << "locked" << whole << noDatabase;
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
        } else if (setup == "settings-unreadable") {
            writeFile(workingFolder() + "settings.ini", "[Settings]\nFirstStart=0\n");
            QFile::setPermissions(workingFolder() + "settings.ini", QFileDevice::Permissions());
        } else if (setup != "old") {
            writeFile(db, bytes);
        }
        if (setup == "old" || setup == "locked") {
            // The tables of the old catalogue layout; or another program
            // holding the catalogue in an exclusive transaction.
            sqlite3_open(QFile::encodeName(db).constData(), &holder);
            sqlite3_exec(holder,
                         setup == "old"
                             ? "CREATE TABLE tblImport (a TEXT); CREATE TABLE KaraokeTracks (b TEXT);"
                             : "BEGIN EXCLUSIVE",
                         nullptr, nullptr, nullptr);
        }
        const bool existed = QFileInfo(db).isFile();
        const QByteArray before = existed ? readFile(db) : QByteArray();
        ScriptedPrompts p;
        frmMain w;
        w.setSplashMinimumMs(0);
        {
            WithoutFileRights rights;
            QCOMPARE(w.Form_Load({}), false);
        }
        QCOMPARE(p.boxTitles(), QStringList{title});
        if (setup == "settings-unreadable") // the message names the file and the reason
            QVERIFY2(p.calls[0].text.contains(workingFolder() + "settings.ini") &&
                         p.calls[0].text.contains("Permission denied"),
                     qPrintable(p.calls[0].text));
        QVERIFY(!IsDatabaseOpen());
        if (holder) {
            sqlite3_exec(holder, "ROLLBACK", nullptr, nullptr, nullptr); // no-op when none is open
            sqlite3_close(holder);
        }
        if (existed)
            QCOMPARE(readFile(db), before); // the host's file is left as it was
    }

    // The working folder holds the singers' names and history: after a start
    // nobody but its owner can read it, neither what an older version left
    // there nor what the program writes later.
    void workingFolderIsPrivate() {
        TestWorkspace::seedWithQuietPlayer();
        QVERIFY(QFile::setPermissions(workingFolder(), QFileDevice::Permissions(0x7755)));
        QVERIFY(QFile::setPermissions(workingFolder() + "settings.ini", QFileDevice::Permissions(0x6644)));
        ScriptedPrompts p;
        frmMain w;
        QVERIFY(kvtest::startMainWindow(w));
        LogErrorQuietly("a record", "KvApp.frmMain.FilterIt", 1);
        settings::writeText(keys::DefaultName, "Ann");
        ExecuteSql("INSERT INTO tblQueue (QueuePos, PerformerName) VALUES (0, 'Ann')");
        QVERIFY(QDir().mkpath(workingFolder() + "Temp"));
        writeFile(workingFolder() + "Temp/song.mp3", "x");
        QStringList open;
        QDirIterator it(workingFolder(),
                        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QFileInfo f(it.next());
            if (f.permissions() & 0x00ff) // any right of group or others
                open << f.fileName();
        }
        QVERIFY2(open.isEmpty(), qPrintable(open.join(", ")));
        QVERIFY(QFileInfo::exists(workingFolder() + "kvsonglist.mdb-wal"));
        QCOMPARE(QFileInfo(workingFolder()).permissions() & 0x00ff, 0);
        w.close();
    }

    // A reset moves the catalogue aside, not away, and keeps the settings. It
    // takes the catalogue whole also after a crash: the rows a killed import
    // had committed (still in the write-ahead log only) go with the copy, and
    // the fresh catalogue starts empty. A second reset keeps the first copy.
    void resetMovesTheCatalogueWholeAndKeepsTheSettings() {
        TestWorkspace::seedWithQuietPlayer();
        writeFile(workingFolder() + "settings.ini",
                  readFile(workingFolder() + "settings.ini") + "\n[Mine]\nKeep=1\n");
        QTemporaryDir songs;
        for (int i = 0; i < 3100; ++i)
            writeFile(songs.filePath(QStringLiteral("A - Song %1.zip").arg(i)), {});
        {
            kvtest::MarkedChild import(kvtest::builtProgram("kv_killpoints"), {"import", songs.path()});
            QVERIFY2(import.waitForMarker("KILL-POINT committed"), import.output().constData());
            import.kill();
        }
        QVERIFY(QFileInfo(workingFolder() + "kvsonglist.mdb-wal").size() > 0);
        for (int reset = 1; reset <= 2; ++reset) {
            ScriptedPrompts p;
            p.answer(int(Prompts::Yes));
            frmMain w;
            QVERIFY(kvtest::startMainWindow(w, "/reset"));
            QVERIFY(!ExecuteSql("SELECT * FROM tblKaraokeTracks").next());
            QCOMPARE(integrityOfCatalogue(), "ok");
            ExecuteSql("INSERT INTO tblKaraokeTracks (TrackPath) VALUES ('/after-reset')");
            w.close();
        }
        QVERIFY(readFile(workingFolder() + "settings.ini").contains("[Mine]\nKeep=1"));
        QList<int> copies;
        for (const QString& f : QDir(documents()).entryList({"kvsonglist.*.mdb"}, QDir::Files))
            copies << songsIn(documents() + f);
        std::sort(copies.begin(), copies.end());
        QCOMPARE(copies, QList<int>({1, 3000}));
    }
};

KV_TEST_CLASS(TestStartup)
#include "tst_startup.moc"
