#include "workingfolder.h"

#include "capplicationpaths.h"
#include "databasefiles.h"
#include "errorlog.h"
#include "globals.h"
#include "pathhelpers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

#include <dirent.h>
#include <sys/stat.h>

namespace {
const QStringList kTemplates = {QStringLiteral("settings.ini"), QStringLiteral("kvsonglist.mdb")};
}

void CheckWorkingFolder() {
    Guarded(QStringLiteral("KvApp.frmMain.CheckWorkingFolder"), 1, [] {
        const QString install = cApplicationPaths::installFolder();
        const QString working = cApplicationPaths::workingFolderBelow(cApplicationPaths::commonDataFolder());
        // Every file the program makes from here on is its user's alone.
        ::umask(077);
        if (!DirectoryExists(working))
            MakeDirectoryPath(working);
        CopyApplicationFiles(working, install);
        KeepPrivate(working);
        WorkingFolder = AddBackslash(working);
    });
}

void KeepPrivate(const QString& workingFolder) {
    // Group and others lose every right to the folder and to what lies in it
    // (made by an older version, or copied in); the owner's rights stay as
    // they are. Links are left alone: their targets are not ours to change.
    const auto tighten = [](const QByteArray& path) {
        struct stat st;
        if (::lstat(path.constData(), &st) == 0 && !S_ISLNK(st.st_mode) && (st.st_mode & 077) != 0)
            ::chmod(path.constData(), st.st_mode & 07700);
    };
    const QByteArray folder = QFile::encodeName(AddBackslash(workingFolder));
    tighten(folder);
    if (DIR* dir = ::opendir(folder.constData())) {
        while (const dirent* entry = ::readdir(dir))
            if (qstrcmp(entry->d_name, ".") != 0 && qstrcmp(entry->d_name, "..") != 0)
                tighten(folder + entry->d_name);
        ::closedir(dir);
    }
}

void CopyApplicationFiles(const QString& workingFolder, const QString& installFolder) {
    Guarded(QStringLiteral("KvApp.frmMain.CopyApplicationFiles"), 1, [&] {
        for (const QString& name : kTemplates) {
            const QString target = AddBackslash(workingFolder) + name;
            if (FileExists(target))
                continue;
            // A side file whose database is gone belongs to no database: beside
            // the template it would be taken for the template's own.
            for (const QString& side : SideFiles(target))
                QFile::remove(side);
            // A failed copy is not reported here: the missing file shows up when
            // it is opened. QFile::copy never overwrites, and writes through a
            // temporary file, so a copy cut short leaves no half file.
            QFile::copy(AddBackslash(installFolder) + name, target);
            QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
        }
    });
}

void MoveCataloguesToDocuments() {
    const QString data = AddBackslash(oApplicationPaths->ApplicationDataPath());
    const QString docs = oApplicationPaths->ApplicationDocuments();
    QDir().mkpath(docs);
    // Every catalogue file of the data folder, and every side file, also of a
    // catalogue that is no longer there: each goes whole, under a name stamped
    // with the date and time, so that a later reset keeps this one's copy.
    QSet<QString> catalogues;
    const QRegularExpression side(QStringLiteral("-(journal|wal|shm)$"));
    for (QString f : QDir(data).entryList({QStringLiteral("*.mdb"), QStringLiteral("*.mdb-journal"),
                                           QStringLiteral("*.mdb-wal"), QStringLiteral("*.mdb-shm")},
                                          QDir::Files | QDir::Hidden | QDir::System))
        catalogues.insert(f.remove(side));
    for (const QString& f : catalogues) {
        SettleDatabaseFile(data + f);
        MoveDatabaseFile(data + f, docs + StampedName(f, docs, true));
    }
    SyncToDisk(data);
}

void RemoveTempFolder() {
    const QString temp = WorkingFolder + QStringLiteral("Temp");
    if (DirectoryExists(temp)) {
        QDir(temp).removeRecursively();
        QCoreApplication::processEvents();
    }
}
