// Singers come to the desk: three ask for a song and a key, a fourth wants a
// kamikaze pick, and a walk-in's file from a stick is looked at and put back.

#include "cast.h"
#include "scene.h"
#include "show.h"

#include <QDialog>

namespace {

void searchFor(Show& show, const QString& words, const QString& title) {
    show.click(QStringLiteral("btnClearSearch"));
    show.type(QStringLiteral("txtSearch"), words);
    show.expectSoon(
        [&] {
            const QList<QStringList> rows = show.searchResults();
            return std::any_of(rows.begin(), rows.end(),
                               [&](const QStringList& r) { return r.value(1) == title; });
        },
        QStringLiteral("\"%1\" found for \"%2\"").arg(title, words),
        [&] { return QStringLiteral("%1 rows").arg(show.searchResults().size()); });
}

void theSingersComeToTheDesk(Show& show) {
    // Anna's song is already on the list; her name is typed as she says it.
    show.answer(QStringLiteral("Choose Singer"), show.singer(QStringLiteral("anna"), -2));
    show.doubleClickResult(cast::anna().title);
    searchFor(show, QStringLiteral("lanterns"), cast::ben().title);
    show.answer(QStringLiteral("Choose Singer"), show.singer(QStringLiteral("Ben"), 0));
    show.doubleClickResult(cast::ben().title);
    searchFor(show, QStringLiteral("copper rain"), cast::cleo().title);
    show.answer(QStringLiteral("Choose Singer"), show.singer(QStringLiteral("Cleo"), 3));
    show.doubleClickResult(cast::cleo().title);
    show.expectQueue({cast::anna(), cast::ben(), cast::cleo()});

    show.answer(QStringLiteral("Choose Singer"), show.singer(QStringLiteral("Dev"), 0));
    show.click(QStringLiteral("btnKami"));
    const QList<SingerRow> rows = show.queue();
    show.expect(rows.size() == 4, QStringLiteral("a fourth row for the kamikaze pick"));
    const SingerRow dev = rows.last();
    const QList<LibrarySong> picks = show.library().kamikazeSongs();
    show.expect(
        dev.singer == QLatin1String("Dev") && dev.key == 0 &&
            std::any_of(picks.begin(), picks.end(),
                        [&](const LibrarySong& s) { return s.title == dev.title && s.artist == dev.artist; }),
        QStringLiteral("Dev with a song of the kamikaze folder, not %1").arg(dev.text()));
    show.note(cast::kKamikaze, dev);
    show.expectQueue({cast::anna(), cast::ben(), cast::cleo(), dev});

    // A walk-in's file: its tag names artist and title; the host thinks again.
    show.answerFile(show.library().path(ShowLibrary::taggedTake()));
    show.answer(QStringLiteral("Add song From File System"), [&show](QDialog& d) {
        const QString artist = show.textOf(d, QStringLiteral("txtArtistName"));
        const QString title = show.textOf(d, QStringLiteral("txtFileName"));
        show.expect(artist == ShowLibrary::taggedArtist() && title == ShowLibrary::taggedTitle(),
                    QStringLiteral("the file's tag in the dialog, not \"%1\" / \"%2\"").arg(artist, title));
        show.click(d, QStringLiteral("cmdCancel"));
    });
    show.click(QStringLiteral("cmdFF"));
    show.expectQueue({cast::anna(), cast::ben(), cast::cleo(), dev});
    show.shot(QStringLiteral("queue"),
              QStringLiteral("Four singers in the queue: Anna (-2), Ben, Cleo (+3) and "
                             "Dev's kamikaze pick."));
}

} // namespace

KV_SCENE(40, "the singers come to the desk", theSingersComeToTheDesk)
