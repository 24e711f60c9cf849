#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "core/pathhelpers.h"
#include "core/workingfolder.h"
#include "scriptedprompts.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

namespace {
QString working() { return cApplicationPaths::workingFolderBelow(cApplicationPaths::commonDataFolder()) + '/'; }
}

class TestPaths : public QObject {
    Q_OBJECT

private slots:
    void init() { TestWorkspace::wipe(); }
    void cleanup() { TestWorkspace::wipe(); }

    void propertiesHangTogether() {
        cApplicationPaths p;
        const QString data = qEnvironmentVariable("XDG_DATA_HOME") + "/Tessaly Works Limited/Korvane";
        QCOMPARE(p.ApplicationRootPath(), qEnvironmentVariable("XDG_DATA_HOME") + '/');
        QCOMPARE(p.ApplicationDataPath(), data);
        QCOMPARE(p.ApplicationDatabaseFile(), data + "/kvsonglist.mdb");
        QCOMPARE(p.CompactedDatabase(), data + "/kvSongListTemp.mdb");
        QCOMPARE(p.ApplicationSongTempPath(), data + "/Temp/");
        QCOMPARE(p.ApplicationSongPlayPath(), data + "Play"); // a sibling, joined without a separator
        QVERIFY(p.ApplicationDocuments().endsWith('/'));
        QVERIFY(QFileInfo::exists(p.ApplicationInstallPath() + "settings.ini"));
        QCOMPARE(p.WinampExecutable(), AddBackslash(p.WinampInstallPath()) + "mpv");
        QCOMPARE(p.ApplicationSongPath(), QString());
    }

    void helpers_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("withSlash");
        QTest::newRow("bare") << "/a/b" << "/a/b/";
        QTest::newRow("ended") << "/a/b/" << "/a/b/";
        QTest::newRow("empty") << "" << "/";
    }
    void helpers() {
        QFETCH(QString, path);
        QFETCH(QString, withSlash);
        QCOMPARE(AddBackslash(path), withSlash);
    }

    void existenceTests() {
        QTemporaryDir d;
        QFile f(d.filePath("file"));
        f.open(QIODevice::WriteOnly);
        f.close();
        QVERIFY(FileExists(d.path()));
        QVERIFY(FileExists(d.filePath("file")));
        QVERIFY(DirectoryExists(d.path() + '/'));
        QVERIFY(!DirectoryExists(d.filePath("file")));
        QVERIFY(!FileExists(d.filePath("none")));
        QVERIFY(!DirectoryExists(QString()));
    }

    void makeDirectoryPathCountsEveryLevel() {
        QTemporaryDir d;
        const QString deep = d.path() + "/one/two/three";
        QDir().mkpath(d.path() + "/one");
        const int levels = int(d.path().split('/', Qt::SkipEmptyParts).size()) + 3;
        QCOMPARE(MakeDirectoryPath(deep), levels);
        QVERIFY(QFileInfo(deep).isDir());
        QCOMPARE(MakeDirectoryPath(deep + '/'), levels); // again: nothing to make, same count
    }

    void firstStartSeedsSecondCopiesNothing() {
        oApplicationPaths = std::make_unique<cApplicationPaths>();
        QVERIFY(!QFileInfo::exists(working()));
        CheckWorkingFolder();
        QCOMPARE(WorkingFolder, working());
        QVERIFY(QFileInfo::exists(working() + "settings.ini"));
        QVERIFY(QFileInfo::exists(working() + "kvsonglist.mdb"));
        // The host's own files are never replaced, and their times do not change.
        QFile s(working() + "settings.ini");
        s.open(QIODevice::Append);
        s.write("[Mine]\nA=1\n");
        s.close();
        const QDateTime t1 = QFileInfo(working() + "settings.ini").lastModified();
        const QDateTime t2 = QFileInfo(working() + "kvsonglist.mdb").lastModified();
        QThread::msleep(20);
        CheckWorkingFolder();
        QCOMPARE(QFileInfo(working() + "settings.ini").lastModified(), t1);
        QCOMPARE(QFileInfo(working() + "kvsonglist.mdb").lastModified(), t2);
    }

    void onlyTheMissingTemplateIsCopied() {
        oApplicationPaths = std::make_unique<cApplicationPaths>();
        CheckWorkingFolder();
        QFile s(working() + "settings.ini");
        s.open(QIODevice::Append);
        s.write("[Mine]\nA=1\n");
        s.close();
        QFile::remove(working() + "kvsonglist.mdb");
        CheckWorkingFolder();
        QVERIFY(QFileInfo::exists(working() + "kvsonglist.mdb"));
        QFile again(working() + "settings.ini");
        again.open(QIODevice::ReadOnly);
        QVERIFY(again.readAll().contains("[Mine]"));
    }

    void missingTemplateLeavesGap() {
        QTemporaryDir install;
        QTemporaryDir target;
        QFile t(install.filePath("settings.ini"));
        t.open(QIODevice::WriteOnly);
        t.write("[Settings]\n");
        t.close();
        ScriptedPrompts p;
        CopyApplicationFiles(target.path(), install.path());
        QVERIFY(QFileInfo::exists(target.filePath("settings.ini")));
        QVERIFY(!QFileInfo::exists(target.filePath("kvsonglist.mdb")));
        QCOMPARE(p.calls.size(), 0); // reported later, when the catalogue is opened
    }

    void tempFolderRemovedAtExit() {
        oApplicationPaths = std::make_unique<cApplicationPaths>();
        CheckWorkingFolder();
        QDir().mkpath(WorkingFolder + "Temp/a");
        QFile f(WorkingFolder + "Temp/a/song.cdg");
        f.open(QIODevice::WriteOnly);
        f.close();
        RemoveTempFolder();
        QVERIFY(!QFileInfo::exists(WorkingFolder + "Temp"));
        RemoveTempFolder(); // nothing there: nothing happens
    }
};

KV_TEST_CLASS(TestPaths)
#include "tst_paths.moc"
