#pragma once

#include <QString>

// Every folder and file name of the program, computed once at construction.
// The working folder lies below the user's shared data folder; the install
// folder is the one that holds the templates (the executable's own folder in a
// build tree, ../share/korvane beside it in an installed tree).
class cApplicationPaths {
public:
    cApplicationPaths();

    QString CompactedDatabase() const { return m_compactedDatabase; }
    QString ApplicationDatabaseFile() const { return m_applicationDatabaseFile; }
    QString ApplicationSongPlayPath() const { return m_applicationSongPlayPath; }
    QString ApplicationSongTempPath() const { return m_applicationSongTempPath; }
    QString ApplicationDocuments() const { return m_applicationDocuments; }
    QString ApplicationRootPath() const { return m_applicationRootPath; }
    QString ApplicationDataPath() const { return m_applicationDataPath; }
    QString ApplicationInstallPath() const { return m_applicationInstallPath; }
    QString WinampExecutable() const { return m_winampExecutable; }
    QString WinampInstallPath() const { return m_winampInstallPath; }
    QString ApplicationSongPath() const { return {}; }

    void setCompactedDatabase(const QString& v) { m_compactedDatabase = v; }
    void setApplicationDatabaseFile(const QString& v) { m_applicationDatabaseFile = v; }
    void setApplicationSongPlayPath(const QString& v) { m_applicationSongPlayPath = v; }
    void setApplicationSongTempPath(const QString& v) { m_applicationSongTempPath = v; }

    // The shared data folder (with a trailing separator), and the name of the
    // working folder below it.
    static QString commonDataFolder();
    static QString workingFolderBelow(const QString& root);
    // The install folder: where the templates are.
    static QString installFolder();
    // The folder of the player's executable: that of `mpv` on PATH, else /usr/bin.
    static QString playerFolder();

private:
    QString m_compactedDatabase;
    QString m_applicationDatabaseFile;
    QString m_applicationSongPlayPath;
    QString m_applicationSongTempPath;
    QString m_applicationDocuments;
    QString m_applicationRootPath;
    QString m_applicationDataPath;
    QString m_applicationInstallPath;
    QString m_winampExecutable;
    QString m_winampInstallPath;
};
