// Anna sings. The host puts the evening on Auto Play and starts the queue;
// during the song the host pauses for a moment and goes on, lifts the key a
// semitone, and the player freezes for three seconds (as a slow disk or a busy
// machine makes it): the song must go on each time, never start again, and the
// queue must not move.

#include "cast.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "show.h"

#include <QCheckBox>
#include <QLabel>
#include <QRegularExpression>

namespace {

void annaSings(Show& show) {
    const QList<SingerRow> waiting{cast::ben(), cast::cleo(), show.noted(cast::kKamikaze)};
    show.click(QStringLiteral("chkAutoPlay"));
    show.expect(show.window().chkAutoPlay->isChecked(), QStringLiteral("Auto Play ticked"));
    show.click(QStringLiteral("btnPlayTrack"));
    show.expectPlayer(QStringLiteral("PLAYING"));
    show.expectStage(cast::anna());
    show.expectQueue(waiting);
    show.expectHistory({cast::anna()});
    show.expectPicture(ShowLibrary::neonHarbour());
    show.shot(QStringLiteral("anna-sings"),
              QStringLiteral("Anna sings \"Neon Harbour\" (from the locked zip) two "
                             "semitones down; the CD+G picture is on the right."));

    // A pause of two seconds, and on from where it stopped.
    show.expectPlayer(QStringLiteral("PLAYING"), Span::atLeast(2));
    show.click(QStringLiteral("btnPause"));
    show.expectPlayer(QStringLiteral("PAUSED"));
    const int pausedAt = show.position();
    show.wait(2000);
    show.expectPlayer(QStringLiteral("PAUSED"), {pausedAt, pausedAt});
    show.click(QStringLiteral("btnPause"));
    show.expectSongGoesOnFrom(pausedAt);
    // The clock shows the song's length and counts the time left down.
    show.expectSoon(
        [&] {
            const QString total = show.window().lblTotalTime->text();
            const QString left = show.window().lblPosition->text();
            return (total == QLatin1String("0:12") || total == QLatin1String("0:11")) && left < total &&
                   left.startsWith(QLatin1String("0:"));
        },
        QStringLiteral("the clock at 0:12 in all, counting down"),
        [&] {
            return show.window().lblTotalTime->text() + QStringLiteral(", ") +
                   show.window().lblPosition->text();
        },
        3000);

    // One semitone up, mid-song.
    const int keyAt = show.position();
    show.click(QStringLiteral("btnKeyUp"));
    show.expectStage(cast::anna(-1));
    show.expectSongGoesOnFrom(keyAt);

    // The player stops answering for three seconds: the program may note that once in its log.
    show.allowLogEntry(QRegularExpression(QStringLiteral("gave no answer.*time-out")));
    const int frozenAt = show.position();
    show.freezePlayer(3000);
    show.expectSongGoesOnFrom(frozenAt);
    show.expectStage(cast::anna(-1));
    show.expectQueue(waiting);
    show.expectHistory({cast::anna()});
    show.shot(QStringLiteral("anna-goes-on"),
              QStringLiteral("After a pause, a key change and a frozen player, Anna's "
                             "song goes on, one semitone down."));
}

} // namespace

KV_SCENE(50, "Anna sings: a pause, a key change, a frozen player", annaSings)
