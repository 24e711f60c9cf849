#include "startupsettings.h"

#include "appsettings.h"
#include "cinifile.h"
#include "errorlog.h"
#include "globals.h"
#include "pathhelpers.h"
#include "prompts.h"

#include <QDir>

using namespace settingsfile;

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
    IsFirstStart = readBool(QStringLiteral("FirstStart"), true);
    if (!IsFirstStart)
        return;
    writeText(QStringLiteral("BGImagePath"), documentsFolder);
    writeText(QStringLiteral("MainImage"), installFolder + QStringLiteral("secondscreen.jpg"));
    writeInt(QStringLiteral("FirstStart"), 0);
}

namespace {

// One read of the sequence: a failed read is logged and the next one runs.
struct Reader {
    const QString& source;
    int line = 100;
    void operator()(const std::function<void()>& read) { Guarded(source, line++, read); }
};

} // namespace

void ReadStartupSettings(const QString& source) {
    Reader read{source};
    read([] { Cfg.SaveWindowPosition = readBool(QStringLiteral("SaveWindowPosition"), true); });
    read([] { Cfg.AutoPlayDelay = readInt(QStringLiteral("AutoPlayDelay"), 5); });
    read([] { Cfg.SaveHistory = readBool(QStringLiteral("SaveHistory"), true); });
    read([] { Cfg.NextPerformerPosition = readBool(QStringLiteral("NextPerformerPosition"), true); });
    read([] { Cfg.IncludeSongPath = readBool(QStringLiteral("IncludeSongPath"), false); });
    read([] { Cfg.FileSystemPath = readText(QStringLiteral("FileSystemPath"), defaultFolder()); });
    read([] { Cfg.JumpBackToQueue = readBool(QStringLiteral("JumpBackToQueue"), false); });
    read([] { Cfg.AllowDragAndDrop = readBool(QStringLiteral("AllowDragAndDrop"), true); });
    read([] { Cfg.AllowDoubleClicks = readBool(QStringLiteral("AllowDoubleClicks"), true); });
    read([] { Cfg.NoFadeOnRestart = readBool(QStringLiteral("NoFadeOnRestart"), true); });
    read([] { Cfg.AutoRemoveFromQueue = readBool(QStringLiteral("AutoRemoveFromQueue"), true); });
    read([] { Cfg.PromptForPerfomer = readBool(QStringLiteral("PromptForPerfomer"), true); });
    read([] { Cfg.ShowSecondScreen = readBool(QStringLiteral("ShowSecondScreen"), false); });
    read([] { Cfg.CompactDatabase = readBool(QStringLiteral("CompactDatabase"), true); });
    read([] { Cfg.ClearSearchCriteria = readBool(QStringLiteral("ClearSearchCriteria"), false); });
    read([] { Cfg.DefaultName = readText(QStringLiteral("DefaultName"), QStringLiteral("No Name")); });
    read([] { Cfg.PlayFromPosition1 = readBool(QStringLiteral("PlayFromPosition1"), true); });
    read([] { Cfg.ShowNextPerfomer = readBool(QStringLiteral("ShowNextPerfomer"), true); });
    read(
        [] { Cfg.UpdateScrollerImmediately = readBool(QStringLiteral("UpdateScrollerImmediately"), false); });
    read([] { Cfg.EnableNextPerfomer = readBool(QStringLiteral("EnableNextPerfomer"), false); });
    // Read twice in the sequence; the second read is the one that stands.
    read([] { Cfg.NoFadeOnRestart = readBool(QStringLiteral("NoFadeOnRestart"), true); });
    read([] { Cfg.DefaultPlayButtonAction = readInt(QStringLiteral("DefaultPlayButtonAction"), 0); });
    read([] { Cfg.InteractiveSearch = readBool(QStringLiteral("InteractiveSearch"), false); });
    read([] { Cfg.ScrollerPosition = readInt(QStringLiteral("ScrollerPosition"), 0); });
    read([] { Cfg.ViewAllSongsAtStartup = readBool(QStringLiteral("ViewAllSongsAtStartup"), false); });
    read([] {
        Cfg.ScrollerStartupText =
            readText(QStringLiteral("ScrollerStartupText"), QStringLiteral("Welcome to our show"));
    });
    // The one boolean read as text: only the text "0" (or any zero number) is false.
    read([] {
        Cfg.StopKaraokeTrackOnJinglePlay =
            readText(QStringLiteral("StopKaraokeTrackOnJinglePlay"), QStringLiteral("1")).toInt() != 0;
    });
    read([] {
        Cfg.ScrollerText = readText(QStringLiteral("ScrollerText"),
                                    QStringLiteral("Could %p singing %t please make their way to the stage "
                                                   "towards the end of this performance"));
    });
    read([] { Cfg.AllowSortingOnQueue = readBool(QStringLiteral("AllowSortingOnQueue"), false); });
}

void ReadLateStartupSettings(const QString& source) {
    Reader read{source, 200};
    read([] {
        Cfg.DefaultPerformerName = readText(QStringLiteral("DefaultPerformerName"), QStringLiteral("None"));
    });
    read([] { Cfg.DoubleClickAction = readInt(QStringLiteral("DoubleClickAction"), 1); });
}

bool CommandLineAsksForReset(const QString& commandLine) {
    if (commandLine == QLatin1String(" "))
        return false;
    return commandLine.contains(QLatin1String("/reset"), Qt::CaseSensitive);
}
