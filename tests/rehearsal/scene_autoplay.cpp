// Anna's song ends and Auto Play calls the next singer without the host.

#include "cast.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "show.h"

#include <QLabel>

namespace {

void autoPlayCallsBen(Show& show) {
    const LibrarySong& song = ShowLibrary::paperLanterns();
    show.expectSoon([&] { return show.window().lblCurrentPerformer->text() == cast::ben().singer; },
                    QStringLiteral("Ben on stage when Anna's song has ended"),
                    [&] {
                        return QStringLiteral("%1 on stage, the player %2 at %3 s")
                            .arg(show.window().lblCurrentPerformer->text(), show.status())
                            .arg(show.position());
                    },
                    int(ShowLibrary::neonHarbour().seconds * 1000) + 10000);
    show.expectPlayer(QStringLiteral("PLAYING"), Span::below(5));
    show.expectStage(cast::ben());
    show.expectQueue({cast::cleo(), show.noted(cast::kKamikaze)});
    show.expectHistory({cast::anna(), cast::ben()});
    show.expectPicture(song);
    show.shot(QStringLiteral("ben-sings"),
              QStringLiteral("Auto Play has called Ben: \"Paper Lanterns\", a bare "
                             "mp3+CD+G pair."));
}

} // namespace

KV_SCENE(60, "Auto Play calls the next singer", autoPlayCallsBen)
