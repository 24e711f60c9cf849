#include "playerstartup.h"

#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "core/pathhelpers.h"
#include "playback/cencryptex.h"
#include "playback/modpacemaker.h"
#include "playback/winamp_control.h"

#include <QCoreApplication>

namespace {

// The program the start-up runs as the player: the one WinAmpPath names when
// it is there, else (for this run only; the setting keeps what the host wrote)
// the player of the install folder. None for an empty WinAmpPath.
QString startupProgram(const QString& winampPath) {
    if (winampPath.isEmpty() || FileExists(winampPath))
        return winampPath;
    return oApplicationPaths ? oApplicationPaths->WinampExecutable()
                             : cApplicationPaths::playerFolder() + "/mpv";
}

} // namespace

bool StartPlayerAtStartup(WinAMP_Control& link, const std::function<void(const QString&)>& progress,
                          const std::function<void()>& restoreQueue) {
    auto say = [&progress](const char* text) {
        if (progress)
            progress(QString::fromLatin1(text));
    };
    link.setWinampPath(Cfg.WinAmpPath);
    say("Restoring Queue");
    if (restoreQueue)
        restoreQueue();
    say("Starting Winamp Instance");
    QCoreApplication::processEvents();
    const QString program = startupProgram(link.WinampPath());
    if (program.isEmpty())
        return false;
    const bool own = program == link.WinampPath();
    link.setWinampPath(program);
    // The program goes on while the player comes up; it is made ready once it answers.
    const auto makeReady = [&link, own] {
        if (own) {
            link.DisableRepeat();
            link.DisableShuffle();
        }
    };
    if (link.StartPlayerInBackground(makeReady))
        return true;
    say("Unable To Start Winamp");
    return false;
}

void PreparePlaybackAtStartup(modPacemaker& pacemaker, WinAMP_Control& link) {
    // The shifter is looked for in the player, once it answers.
    link.whenReady([&pacemaker] { pacemaker.FindPaceMaker(); });
    BuildArchivePassword();
}

void ClosePlayerAtShutdown(PlayerLink& link) {
    if (!link.FindPlayer())
        return;
    link.ClearPlaylist();
    link.SendCommand(PlayerLink::CmdStop);
    link.SendCommand(PlayerLink::CmdClose);
}
