#include "playerstartup.h"

#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "core/pathhelpers.h"
#include "playback/cencryptex.h"
#include "playback/modpacemaker.h"
#include "playback/winamp_control.h"

#include <QCoreApplication>

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
    if (link.WinampPath().isEmpty())
        return false;
    if (FileExists(link.WinampPath())) {
        if (link.StartPlayer()) {
            link.DisableRepeat();
            link.DisableShuffle();
            return true;
        }
    } else {
        // The fallback holds for this run only; the setting keeps what the host wrote.
        const QString fallback = oApplicationPaths ? oApplicationPaths->WinampExecutable()
                                                   : cApplicationPaths::playerFolder() + "/mpv";
        link.setWinampPath(fallback);
        if (link.StartPlayer())
            return true;
    }
    say("Unable To Start Winamp");
    return false;
}

void PreparePlaybackAtStartup(modPacemaker& pacemaker) {
    pacemaker.FindPaceMaker();
    BuildArchivePassword();
}

void ClosePlayerAtShutdown(PlayerLink& link) {
    if (!link.FindPlayer())
        return;
    link.ClearPlaylist();
    link.SendCommand(PlayerLink::CmdStop);
    link.SendCommand(PlayerLink::CmdClose);
}
