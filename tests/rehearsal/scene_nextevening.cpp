// The host closes the console for the night and starts it again the next
// evening: the player went with it, the Temp folder is gone, and the queue
// comes back as it was.

#include "cast.h"
#include "scene.h"
#include "show.h"
#include "workspace.h"

#include <QDir>

namespace {

void expectNoTempFiles(Show& show) {
    const QDir temp(TestWorkspace::workingFolder() + QStringLiteral("Temp"));
    show.expect(!temp.exists() || temp.isEmpty(),
                QStringLiteral("no song left in the Temp folder: ") +
                    temp.entryList(QDir::AllEntries | QDir::NoDotAndDotDot).join(QStringLiteral(", ")));
}

void closingForTheNight(Show& show) {
    show.quitProgram();
    show.expectNoPlayerLeft();
    expectNoTempFiles(show);
    show.expectCleanLog();
    show.shot(QStringLiteral("closed"), QStringLiteral("The console is closed, and the player with it."));
}

void theNextEvening(Show& show) {
    show.startProgram();
    show.expectQueue({cast::cleo(), show.noted(cast::kKamikaze)});
    show.expectHistory({cast::anna(), cast::ben()});
    show.expectPlayer(QStringLiteral("STOPPED"));
    show.shot(QStringLiteral("next-evening"),
              QStringLiteral("Started again: Cleo and Dev are still in the queue."));
    show.expectBlackPlayer();
    show.quitProgram();
}

void afterTheShow(Show& show) {
    show.expectNoPlayerLeft();
    expectNoTempFiles(show);
    show.expectCleanLog();
}

} // namespace

KV_SCENE(80, "closing for the night", closingForTheNight)
KV_SCENE(90, "the next evening", theNextEvening)
KV_SCENE(1000, "after the show", afterTheShow)
