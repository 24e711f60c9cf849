#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "core/workingfolder.h"
#include "testrunner.h"
#include "workspace.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>
#include <QThread>

namespace {
QString working() {
    return cApplicationPaths::workingFolderBelow(cApplicationPaths::commonDataFolder()) + '/';
}
void write(const QString& path, const QByteArray& data = {},
           QIODevice::OpenMode mode = QIODevice::WriteOnly) {
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
};

KV_TEST_CLASS(TestPaths)
#include "tst_paths.moc"
