#include "capplicationpaths.h"

#include "pathhelpers.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

namespace {
const QString kCompany = QStringLiteral("Tessaly Works Limited");
const QString kProduct = QStringLiteral("Korvane");
const QString kTemplateProbe = QStringLiteral("settings.ini");
} // namespace

QString cApplicationPaths::commonDataFolder() {
    return AddBackslash(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
}

QString cApplicationPaths::workingFolderBelow(const QString& root) {
    return AddBackslash(root) + kCompany + QLatin1Char('/') + kProduct;
}

QString cApplicationPaths::installFolder() {
    const QString exeDir = AddBackslash(QCoreApplication::applicationDirPath());
    if (QFileInfo::exists(exeDir + kTemplateProbe))
        return exeDir;
    const QString shared = QDir::cleanPath(exeDir + QStringLiteral("../share/korvane"));
    if (QFileInfo::exists(AddBackslash(shared) + kTemplateProbe))
        return AddBackslash(shared);
    return exeDir;
}

QString cApplicationPaths::playerFolder() {
    const QString found = QStandardPaths::findExecutable(QStringLiteral("mpv"));
    if (!found.isEmpty())
        return QFileInfo(found).absolutePath();
    return QStringLiteral("/usr/bin");
}

cApplicationPaths::cApplicationPaths() {
    m_applicationRootPath = commonDataFolder();
    m_applicationDataPath = m_applicationRootPath + kCompany + QLatin1Char('/') + kProduct;
    m_applicationSongTempPath = m_applicationDataPath + QStringLiteral("/Temp/");
    // Joined without a separator on purpose: a sibling of the data folder.
    m_applicationSongPlayPath = m_applicationDataPath + QStringLiteral("Play");
    m_applicationInstallPath = installFolder();
    m_winampInstallPath = playerFolder();
    m_winampExecutable = AddBackslash(m_winampInstallPath) + QStringLiteral("mpv");
    m_applicationDocuments =
        AddBackslash(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    m_compactedDatabase = m_applicationDataPath + QStringLiteral("/kvSongListTemp.mdb");
    m_applicationDatabaseFile = m_applicationDataPath + QStringLiteral("/kvsonglist.mdb");
}
