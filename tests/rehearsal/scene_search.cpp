// The host types part of a title into the search box and, half a second
// after the last key, the list shows every song whose file name holds it.

#include "scene.h"
#include "screens/frmmain.h"
#include "show.h"

#include <QTableView>

namespace {

void aSongIsSearchedFor(Show& show) {
    const QList<LibrarySong> expected = show.library().matching({QStringLiteral("harbour")});
    show.expect(show.searchResults().isEmpty(),
                QStringLiteral("an empty result list before the first search"));
    show.type(QStringLiteral("txtSearch"), QStringLiteral("harbour"));
    show.expect(show.searchResults().isEmpty(), QStringLiteral("no search while the host is still typing"));
    qint64 listedAfter = 0;
    show.expectSoon(
        [&] {
            listedAfter = show.sinceLastKey();
            return show.searchResults().size() == expected.size();
        },
        QStringLiteral("%1 songs found for \"harbour\"").arg(expected.size()),
        [&] { return QStringLiteral("%1 rows").arg(show.searchResults().size()); });
    // The search waits 500 ms after the last key: a timer may strike late, and
    // at most 5% early.
    show.expect(listedAfter >= 475,
                QStringLiteral("the list to wait for the search timer (it came %1 ms after the last key)")
                    .arg(listedAfter));
    QStringList titles;
    for (const QStringList& row : show.searchResults())
        titles << row.value(1);
    for (const LibrarySong& s : expected)
        show.expect(titles.contains(s.title), QStringLiteral("\"%1\" among the results").arg(s.title));
    // The name was cut by its convention: artist, title, disc and number each in their column.
    const LibrarySong& song = ShowLibrary::neonHarbour();
    const QStringList wanted{song.artist, song.title, song.disc, song.trackNo};
    show.expect(show.searchResults().contains(wanted),
                QStringLiteral("the row %1").arg(wanted.join(QStringLiteral(" | "))));
    show.shot(QStringLiteral("search"), QStringLiteral("\"harbour\" typed: the songs whose names hold it."));
}

} // namespace

KV_SCENE(30, "a song is searched for", aSongIsSearchedFor)
