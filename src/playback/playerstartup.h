#pragma once

#include <QString>
#include <functional>

class PlayerLink;
class WinAMP_Control;
class modPacemaker;

// The player's share of the program's start and end, for frmMain to call.

// InitialiseStartup, steps 16 to 20: WinAmpPath into the link, "Restoring
// Queue" and `restoreQueue`, "Starting Winamp Instance", then the player: from
// WinAmpPath when that file exists (with repeat and shuffle switched off once
// it answers), else from the player's install folder, for this run only. An
// empty WinAmpPath starts no player. `progress` shows a text on the splash.
// The start does not wait for the player to answer: it is made ready in the
// background, or by the first thing asked of it. Returns true when its process runs.
bool StartPlayerAtStartup(WinAMP_Control& link, const std::function<void(const QString&)>& progress,
                          const std::function<void()>& restoreQueue);

// Form_Load, steps 15 and 18: find the key changer once the player answers (a
// miss is no failure) and
// build ArchivePassword. (Step 16's optional pitch object does not exist here.)
void PreparePlaybackAtStartup(modPacemaker& pacemaker, WinAMP_Control& link);

// Form_Unload, step 4: when the player is there, empty its list, stop it and
// close it, so that the private instance ends with the program.
void ClosePlayerAtShutdown(PlayerLink& link);
