// A singer asks for "Cafe Lights" and the host types it without the accent.
// The catalogue counts accents until the host asks the search to ignore them
// on the options screen; then the song is found at once, and the host turns
// it off again for the evening.

#include "core/settings.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "show.h"

#include <QDialog>

namespace {

bool listed(Show& show, const LibrarySong& song) {
    const QList<QStringList> rows = show.searchResults();
    return std::any_of(rows.begin(), rows.end(),
                       [&](const QStringList& r) { return r.value(1) == song.title; });
}

void setAccentBlind(Show& show, bool on) {
    show.answer(QStringLiteral("Options"), [&](QDialog& d) {
        show.click(d, QStringLiteral("btnGeneral"));
        show.click(d, QStringLiteral("chkAccentBlindSearch"));
        d.close();
    });
    show.click(QStringLiteral("btnOptions"));
    show.expect(settings::readBool(keys::AccentBlindSearch) == on,
                QStringLiteral("accent-blind searching %1 in the settings file").arg(on ? "on" : "off"));
}

void accentsIgnoredOnRequest(Show& show) {
    const LibrarySong& song = ShowLibrary::cafeLights();
    const int harbourRows = int(show.searchResults().size());

    show.retype(show.window(), QStringLiteral("txtSearch"), QStringLiteral("cafe lights"));
    // The search runs half a second after the last key.
    show.wait(1200);
    show.expect(!listed(show, song),
                QStringLiteral("\"cafe lights\" not to find \"Café Lights\" while accents count"));

    setAccentBlind(show, true);
    show.retype(show.window(), QStringLiteral("txtSearch"), QStringLiteral("cafe lights"));
    show.expectSoon([&] { return listed(show, song); },
                    QStringLiteral("\"cafe lights\" to find \"Café Lights\" with accents ignored"),
                    [&] { return QStringLiteral("%1 rows").arg(show.searchResults().size()); });
    show.retype(show.window(), QStringLiteral("txtSearch"), QStringLiteral("RENEE"));
    show.expectSoon([&] { return listed(show, song); },
                    QStringLiteral("\"RENEE\" to find \"Renée Fontaine\" with accents ignored"),
                    [&] { return QStringLiteral("%1 rows").arg(show.searchResults().size()); });
    show.shot(QStringLiteral("search-accents"),
              QStringLiteral("\"RENEE\" typed, accents ignored: Renée Fontaine."));

    // Back as the evening expects it: accents count, the harbour songs listed.
    setAccentBlind(show, false);
    show.retype(show.window(), QStringLiteral("txtSearch"), QStringLiteral("harbour"));
    show.expectSoon([&] { return int(show.searchResults().size()) == harbourRows; },
                    QStringLiteral("the %1 harbour songs listed again").arg(harbourRows),
                    [&] { return QStringLiteral("%1 rows").arg(show.searchResults().size()); });
}

} // namespace

KV_SCENE(36, "a name typed without its accents", accentsIgnoredOnRequest)
