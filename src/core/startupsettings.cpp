#include "startupsettings.h"

#include "appsettings.h"
#include "cinifile.h"
#include "errorlog.h"
#include "globals.h"
#include "pathhelpers.h"
#include "prompts.h"
#include "settings.h"

#include <QDir>

using namespace settings;

bool SettingsFileCanBeRead() {
    if (!oSettings || !IsRegularFile(oSettings->FileName()))
        return true;
    const QString problem = oSettings->ReadProblem();
    if (problem.isEmpty())
        return true;
    prompts().msgBox(
        QStringLiteral("The settings file cannot be read: %1\n%2\n\nKorvane does not start without "
                       "its settings. The file has been left as it is.")
            .arg(problem, QDir::toNativeSeparators(oSettings->FileName())),
        Prompts::Critical, QStringLiteral("Settings File Cannot Be Read"));
    return false;
}

void ApplyFirstStart(const QString& documentsFolder, const QString& installFolder) {
    IsFirstStart = readBool(keys::FirstStart);
    if (!IsFirstStart)
        return;
    writeText(keys::BGImagePath, documentsFolder);
    writeText(keys::MainImage, installFolder + QStringLiteral("secondscreen.jpg"));
    writeInt(keys::FirstStart, 0);
}

namespace {

// One read of the sequence: a failed read is logged and the next one runs.
struct Reader {
    const QString& source;
    int line = 100;
    void operator()(const std::function<void()>& read) { Guarded(source, line++, read); }
    void operator()(bool& value, const SettingKey& key) {
        (*this)([&] { value = readBool(key); });
    }
    void operator()(int& value, const SettingKey& key) {
        (*this)([&] { value = readInt(key); });
    }
    void operator()(QString& value, const SettingKey& key) {
        (*this)([&] { value = readText(key); });
    }
};

} // namespace

void ReadStartupSettings(const QString& source) {
    Reader read{source};
    read(Cfg.SaveWindowPosition, keys::SaveWindowPosition);
    read(Cfg.AutoPlayDelay, keys::AutoPlayDelay);
    read(Cfg.SaveHistory, keys::SaveHistory);
    read(Cfg.NextPerformerPosition, keys::NextPerformerPosition);
    read(Cfg.IncludeSongPath, keys::IncludeSongPath);
    read(Cfg.FileSystemPath, keys::FileSystemPath);
    read(Cfg.JumpBackToQueue, keys::JumpBackToQueue);
    read(Cfg.AllowDragAndDrop, keys::AllowDragAndDrop);
    read(Cfg.AllowDoubleClicks, keys::AllowDoubleClicks);
    read(Cfg.NoFadeOnRestart, keys::NoFadeOnRestart);
    read(Cfg.AutoRemoveFromQueue, keys::AutoRemoveFromQueue);
    read(Cfg.PromptForPerfomer, keys::PromptForPerfomer);
    read(Cfg.ShowSecondScreen, keys::ShowSecondScreen);
    read(Cfg.CompactDatabase, keys::CompactDatabase);
    read(Cfg.ClearSearchCriteria, keys::ClearSearchCriteria);
    read(Cfg.DefaultName, keys::DefaultName);
    read(Cfg.PlayFromPosition1, keys::PlayFromPosition1);
    read(Cfg.ShowNextPerfomer, keys::ShowNextPerfomer);
    read(Cfg.UpdateScrollerImmediately, keys::UpdateScrollerImmediately);
    read(Cfg.EnableNextPerfomer, keys::EnableNextPerfomer);
    // Read twice in the sequence; the second read is the one that stands.
    read(Cfg.NoFadeOnRestart, keys::NoFadeOnRestart);
    read(Cfg.DefaultPlayButtonAction, keys::DefaultPlayButtonAction);
    read(Cfg.InteractiveSearch, keys::InteractiveSearch);
    read(Cfg.ScrollerPosition, keys::ScrollerPosition);
    read(Cfg.ViewAllSongsAtStartup, keys::ViewAllSongsAtStartup);
    read(Cfg.ScrollerStartupText, keys::ScrollerStartupText);
    // The one boolean read as text: only the text "0" (or any zero number) is false.
    read(
        [] { Cfg.StopKaraokeTrackOnJinglePlay = readText(keys::StopKaraokeTrackOnJinglePlay).toInt() != 0; });
    read(Cfg.ScrollerText, keys::ScrollerText);
    read(Cfg.AllowSortingOnQueue, keys::AllowSortingOnQueue);
}

void ReadLateStartupSettings(const QString& source) {
    Reader read{source, 200};
    read(Cfg.DefaultPerformerName, keys::DefaultPerformerName);
    read(Cfg.DoubleClickAction, keys::DoubleClickAction);
}

bool CommandLineAsksForReset(const QString& commandLine) {
    if (commandLine == QLatin1String(" "))
        return false;
    return commandLine.contains(QLatin1String("/reset"), Qt::CaseSensitive);
}
