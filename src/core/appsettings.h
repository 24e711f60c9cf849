#pragma once

#include "settingkeys.h"

#include <QString>

// The settings the program runs on, read once from settings.ini into these
// variables (each named after its key, spellings of the file included), and
// written by the options screen to the variable and the file in one step.
// Until the start-up has read them, each holds its key's default.
struct AppSettings {
    bool AllowDoubleClicks = keys::AllowDoubleClicks.defaultBool();
    bool AllowDragAndDrop = keys::AllowDragAndDrop.defaultBool();
    bool AllowSortingOnQueue = keys::AllowSortingOnQueue.defaultBool();
    int AudioDevice = keys::AudioDevice.defaultInt();
    int AutoPlayDelay = keys::AutoPlayDelay.defaultInt();
    bool AutoRemoveFromQueue = keys::AutoRemoveFromQueue.defaultBool();
    bool ClearSearchCriteria = keys::ClearSearchCriteria.defaultBool();
    int ColorScheme = keys::ColorScheme.defaultInt();
    bool CompactDatabase = keys::CompactDatabase.defaultBool();
    QString DefaultName = keys::DefaultName.defaultText();
    QString DefaultPerformerName = keys::DefaultPerformerName.defaultText();
    int DefaultPlayButtonAction = keys::DefaultPlayButtonAction.defaultInt();
    int DoubleClickAction = keys::DoubleClickAction.defaultInt();
    bool EnableNextPerfomer = keys::EnableNextPerfomer.defaultBool();
    QString FileSystemPath;
    bool IncludeSongPath = keys::IncludeSongPath.defaultBool();
    bool InteractiveSearch = keys::InteractiveSearch.defaultBool();
    bool JumpBackToQueue = keys::JumpBackToQueue.defaultBool();
    bool NextPerformerPosition = keys::NextPerformerPosition.defaultBool();
    bool NoFadeOnRestart = keys::NoFadeOnRestart.defaultBool();
    bool PlayFromPosition1 = keys::PlayFromPosition1.defaultBool();
    bool PromptForPerfomer = keys::PromptForPerfomer.defaultBool();
    bool SaveHistory = keys::SaveHistory.defaultBool();
    bool SaveWindowPosition = keys::SaveWindowPosition.defaultBool();
    int ScrollerPosition = keys::ScrollerPosition.defaultInt();
    QString ScrollerStartupText = keys::ScrollerStartupText.defaultText();
    QString ScrollerText = keys::ScrollerText.defaultText();
    bool ShowNextPerfomer = keys::ShowNextPerfomer.defaultBool();
    bool ShowSecondScreen = keys::ShowSecondScreen.defaultBool();
    bool StopKaraokeTrackOnJinglePlay = keys::StopKaraokeTrackOnJinglePlay.defaultBool();
    bool UpdateScrollerImmediately = keys::UpdateScrollerImmediately.defaultBool();
    bool ViewAllSongsAtStartup = keys::ViewAllSongsAtStartup.defaultBool();
    QString WinAmpPath;
};

// The one set of settings of the running program.
extern AppSettings Cfg;
