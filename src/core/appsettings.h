#pragma once

#include <QString>

// The settings the program runs on, read once from settings.ini into these
// variables (each named after its key, spellings of the file included), and
// written by the options screen to the variable and the file in one step.
struct AppSettings {
    bool AllowDoubleClicks = true;
    bool AllowDragAndDrop = true;
    bool AllowSortingOnQueue = false;
    int AudioDevice = 0;
    int AutoPlayDelay = 5;
    bool AutoRemoveFromQueue = true;
    bool ClearSearchCriteria = false;
    int ColorScheme = 0;
    bool CompactDatabase = true;
    QString DefaultName = QStringLiteral("No Name");
    QString DefaultPerformerName = QStringLiteral("None");
    int DefaultPlayButtonAction = 0;
    int DoubleClickAction = 1;
    bool EnableNextPerfomer = false;
    QString FileSystemPath;
    bool IncludeSongPath = false;
    bool InteractiveSearch = false;
    bool JumpBackToQueue = false;
    bool NextPerformerPosition = true;
    bool NoFadeOnRestart = true;
    bool PlayFromPosition1 = true;
    bool PromptForPerfomer = true;
    bool SaveHistory = true;
    bool SaveWindowPosition = true;
    int ScrollerPosition = 0;
    QString ScrollerStartupText = QStringLiteral("Welcome to our show");
    QString ScrollerText = QStringLiteral(
        "Could %p singing %t please make their way to the stage towards the end of this performance");
    bool ShowNextPerfomer = true;
    bool ShowSecondScreen = false;
    bool StopKaraokeTrackOnJinglePlay = true;
    bool UpdateScrollerImmediately = false;
    bool ViewAllSongsAtStartup = false;
    QString WinAmpPath;
};

// The one set of settings of the running program.
extern AppSettings Cfg;

namespace settingsfile {

inline const QString kSection = QStringLiteral("Settings");

// Defaults that name a folder or the player: the places a Linux host has them.
QString defaultFolder();     // the home folder, with a trailing separator
QString defaultPlayerPath(); // /usr/bin/mpv

// Reads of section "Settings" through oSettings, each with its default.
bool readBool(const QString& key, bool defaultValue);
int readInt(const QString& key, int defaultValue);
QString readText(const QString& key, const QString& defaultValue);
// Writes through oSettings (numbers as 16-bit values, as the file store takes them).
void writeBool(const QString& key, bool value);
void writeInt(const QString& key, int value);
void writeText(const QString& key, const QString& value);

} // namespace settingsfile
