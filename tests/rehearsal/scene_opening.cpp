// The evening begins: the song library is on disk, the host's settings name
// the player and the password of the locked archives, and the console starts
// as it does from the desktop.

#include "playback/cencryptex.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "show.h"

namespace {

void theConsoleOpens(Show& show) {
    show.makeLibrary();
    show.seedSettings({{QStringLiteral("WinAmpPath"), show.playerWrapper()},
                       {QStringLiteral("mus"), CEncryptEx::encipher(ShowLibrary::archivePassword())},
                       {QStringLiteral("NoFadeOnRestart"), QStringLiteral("0")}});
    show.startProgram();
    show.expect(show.window().windowTitle().startsWith(QStringLiteral("Korvane v3 - ")),
                QStringLiteral("the main window titled \"Korvane v3 - \" and the version, not \"%1\"")
                    .arg(show.window().windowTitle()));
    show.expectPlayer(QStringLiteral("STOPPED"));
    show.expectQueue({});
    show.shot(QStringLiteral("opening"),
              QStringLiteral("The console is up with an empty queue; the player's window "
                             "waits on the audience's monitor, on the right."));
    show.expectBlackPlayer();
}

} // namespace

KV_SCENE(10, "the console opens", theConsoleOpens)
