#include "workingfolder.h"

#include "capplicationpaths.h"
#include "errorlog.h"
#include "globals.h"
#include "pathhelpers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace {
const QStringList kTemplates = {QStringLiteral("settings.ini"), QStringLiteral("kvsonglist.mdb")};
}

void CheckWorkingFolder() {
    Guarded(QStringLiteral("KvApp.frmMain.CheckWorkingFolder"), 1, [] {
        const QString install = cApplicationPaths::installFolder();
        const QString working = cApplicationPaths::workingFolderBelow(cApplicationPaths::commonDataFolder());
        if (!DirectoryExists(working))
            MakeDirectoryPath(working);
        CopyApplicationFiles(working, install);
        WorkingFolder = AddBackslash(working);
    });
}

void CopyApplicationFiles(const QString& workingFolder, const QString& installFolder) {
    Guarded(QStringLiteral("KvApp.frmMain.CopyApplicationFiles"), 1, [&] {
        for (const QString& name : kTemplates) {
            const QString target = AddBackslash(workingFolder) + name;
            if (FileExists(target))
                continue;
            // A failed copy is not reported here: the missing file shows up when
            // it is opened. QFile::copy never overwrites, and writes through a
            // temporary file, so a copy cut short leaves no half file.
            QFile::copy(AddBackslash(installFolder) + name, target);
            QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                              QFile::ReadOther);
        }
    });
}

void MoveCataloguesToDocuments() {
    const QString data = AddBackslash(oApplicationPaths->ApplicationDataPath());
    const QString docs = oApplicationPaths->ApplicationDocuments();
    QDir().mkpath(docs);
    const QStringList files = QDir(data).entryList({QStringLiteral("*.mdb")}, QDir::Files);
    for (const QString& f : files) {
        const QString to = docs + f;
        QFile::remove(to); // the move replaces a file of the same name, without asking
        if (!QFile::rename(data + f, to)) {
            // Across file systems a rename fails: copy, then remove.
            if (QFile::copy(data + f, to))
                QFile::remove(data + f);
        }
    }
}

void RemoveTempFolder() {
    const QString temp = WorkingFolder + QStringLiteral("Temp");
    if (DirectoryExists(temp)) {
        QDir(temp).removeRecursively();
        QCoreApplication::processEvents();
    }
}
