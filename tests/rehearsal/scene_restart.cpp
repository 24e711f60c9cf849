// Ben has false starts: the host restarts his song with a fade, three times,
// with Auto Play on; then restarts once more and stops at once. A restart must
// always start the same song again, and a stop must win over it.

#include "cast.h"
#include "scene.h"
#include "show.h"

namespace {

void falseStartsAndAStop(Show& show) {
    const QList<SingerRow> waiting{cast::cleo(), show.noted(cast::kKamikaze)};
    for (int take = 0; take < 3; ++take) {
        show.expectPlayer(QStringLiteral("PLAYING"), Span::atLeast(2));
        show.click(QStringLiteral("btnRestart"));
        // The song fades out for two seconds, then starts again from the top.
        show.expectPlayer(QStringLiteral("PLAYING"), Span::below(2));
        show.expectStage(cast::ben());
        show.expectQueue(waiting);
    }
    show.expectHistory({cast::anna(), cast::ben()});

    show.expectPlayer(QStringLiteral("PLAYING"), Span::atLeast(1));
    show.click(QStringLiteral("btnRestart"));
    show.click(QStringLiteral("btnStop"));
    const QString stopped = QStringLiteral("STOPPED");
    show.expect(show.status() == stopped,
                QStringLiteral("the player stopped by Stop, not %1").arg(show.status()));
    // Long enough for the restart's timer to have struck several times.
    show.wait(2000);
    const QString after = show.status();
    show.expect(after == stopped,
                QStringLiteral("the song to stay stopped: the restart pressed before Stop brought "
                               "it back (%1 at %2 s)")
                    .arg(after)
                    .arg(show.position()));
    show.expectStage({QString(), QString(), QString(), 0});
    show.expectQueue(waiting);
    show.shot(QStringLiteral("stopped"),
              QStringLiteral("Stopped after a restart: the stage is empty, Cleo and Dev "
                             "still wait, the player's window is black."));
    show.expectBlackPlayer();
}

} // namespace

KV_SCENE(70, "Ben's false starts, and a stop", falseStartsAndAStop)
