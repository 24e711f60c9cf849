#include "workspace.h"

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/workingfolder.h"
#include "playbackmedia.h"

#include <QDir>
#include <QFile>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTest>

TestWorkspace::TestWorkspace(bool openCatalogue) {
    wipe();
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    if (openCatalogue && !OpenDatabase())
        qWarning("TestWorkspace: the catalogue did not open");
}

TestWorkspace::~TestWorkspace() {
    CloseDatabase();
    oSettings.reset();
    wipe();
}

void TestWorkspace::wipe() {
    CloseDatabase();
    QDir(workingFolder()).removeRecursively();
    QDir docs(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    for (const QString& f : docs.entryList(QDir::Files))
        docs.remove(f);
}

QString TestWorkspace::workingFolder() {
    return cApplicationPaths::workingFolderBelow(cApplicationPaths::commonDataFolder()) + QLatin1Char('/');
}

void TestWorkspace::seedWithQuietPlayer() {
    QDir().mkpath(workingFolder());
    QFile::copy(cApplicationPaths::installFolder() + "settings.ini", workingFolder() + "settings.ini");
    QFile::setPermissions(workingFolder() + "settings.ini", QFile::ReadOwner | QFile::WriteOwner);
    CIniFile ini;
    ini.setFileName(workingFolder() + "settings.ini");
    ini.SaveStringValue("Settings", "WinAmpPath",
                        playbackmedia::writePlayerWrapper(
                            QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)));
}

QString TestWorkspace::dataFolder() const {
    return WorkingFolder;
}
QString TestWorkspace::catalogueFile() const {
    return WorkingFolder + QStringLiteral("kvsonglist.mdb");
}
QString TestWorkspace::settingsFile() const {
    return WorkingFolder + QStringLiteral("settings.ini");
}
QString TestWorkspace::documentsFolder() const {
    return oApplicationPaths->ApplicationDocuments();
}

QList<qint64> TestWorkspace::addSongs(const QStringList& artistDashTitle) {
    QList<qint64> ids;
    QSqlDatabase db = dbConnection();
    for (const QString& s : artistDashTitle) {
        const QStringList parts = s.split(QStringLiteral(" - "));
        const QString file = s + QStringLiteral(".zip");
        QSqlQuery q(db);
        q.prepare(QStringLiteral("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, DiscName, TrackNo, "
                                 "FileName, TrackPath) VALUES (?, ?, ?, ?, ?, ?)"));
        q.addBindValue(parts.value(0));
        q.addBindValue(parts.value(1));
        q.addBindValue(QStringLiteral("DISC"));
        q.addBindValue(QStringLiteral("01"));
        q.addBindValue(file);
        q.addBindValue(QStringLiteral("/songs/") + file);
        if (!q.exec())
            qWarning("addSongs: %s", qPrintable(q.lastError().text()));
        ids << q.lastInsertId().toLongLong();
    }
    return ids;
}

QString TestWorkspace::errorLog() {
    QFile f(errorLogPath());
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QString::fromUtf8(f.readAll());
}

int TestWorkspace::errorLogRecords() {
    // Each record opens and closes with a rule of 62 hyphens.
    return int(errorLog().count(QString(62, QLatin1Char('-')) + QLatin1Char('\n'))) / 2;
}
