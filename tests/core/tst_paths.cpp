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
void write(const QString& path, const QByteArray& data = {}, QIODevice::OpenMode mode = QIODevice::WriteOnly) {
    QFile f(path);
    QVERIFY(f.open(mode));
    f.write(data);
}
} // namespace

class TestPaths : public QObject {
    Q_OBJECT

private slots:
    void init() { TestWorkspace::wipe(); }
    void cleanup() { TestWorkspace::wipe(); }

    // Where the host's files live: moving any of them would lose them.
    void propertiesHangTogether() {
        cApplicationPaths p;
        const QString data = qEnvironmentVariable("XDG_DATA_HOME") + "/Tessaly Works Limited/Korvane";
        QCOMPARE(p.ApplicationDataPath(), data);
        QCOMPARE(p.ApplicationDatabaseFile(), data + "/kvsonglist.mdb");
        QCOMPARE(p.CompactedDatabase(), data + "/kvSongListTemp.mdb");
        QCOMPARE(p.ApplicationSongTempPath(), data + "/Temp/");
        QCOMPARE(p.WinampExecutable(), AddBackslash(p.WinampInstallPath()) + "mpv");
    }

    void helpers() {
        QCOMPARE(AddBackslash("/a/b"), QStringLiteral("/a/b/"));
        QCOMPARE(AddBackslash("/a/b/"), QStringLiteral("/a/b/"));
        QCOMPARE(AddBackslash(""), QStringLiteral("/"));
        QTemporaryDir d;
        write(d.filePath("file"));
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

    // The first start seeds the working folder; later ones copy only a template
    // that has gone missing, and never replace or touch the host's own files.
    void firstStartSeedsLaterOnesFillGaps() {
        oApplicationPaths = std::make_unique<cApplicationPaths>();
        QVERIFY(!QFileInfo::exists(working()));
        CheckWorkingFolder();
        QCOMPARE(WorkingFolder, working());
        QVERIFY(QFileInfo::exists(working() + "settings.ini"));
        QVERIFY(QFileInfo::exists(working() + "kvsonglist.mdb"));
        write(working() + "settings.ini", "[Mine]\nA=1\n", QIODevice::Append);
        const QDateTime t1 = QFileInfo(working() + "settings.ini").lastModified();
        const QDateTime t2 = QFileInfo(working() + "kvsonglist.mdb").lastModified();
        QThread::msleep(20);
        CheckWorkingFolder();
        QCOMPARE(QFileInfo(working() + "settings.ini").lastModified(), t1);
        QCOMPARE(QFileInfo(working() + "kvsonglist.mdb").lastModified(), t2);

        QFile::remove(working() + "kvsonglist.mdb");
        CheckWorkingFolder();
        QVERIFY(QFileInfo::exists(working() + "kvsonglist.mdb"));
        QCOMPARE(QFileInfo(working() + "settings.ini").lastModified(), t1);
    }

    void missingTemplateLeavesGap() {
        QTemporaryDir install;
        QTemporaryDir target;
        write(install.filePath("settings.ini"), "[Settings]\n");
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
        write(WorkingFolder + "Temp/a/song.cdg");
        RemoveTempFolder();
        QVERIFY(!QFileInfo::exists(WorkingFolder + "Temp"));
        RemoveTempFolder(); // nothing there: nothing happens
    }
};

KV_TEST_CLASS(TestPaths)
#include "tst_paths.moc"
