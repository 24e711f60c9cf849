#include "searchoptionsmenu.h"

#include "catalogue/cataloguestore.h"
#include "catalogue/maintenance.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/ui/searchresultslist.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "core/prompts.h"

#include <QAction>
#include <QMenu>

namespace {

const QString kForm = QStringLiteral("KvApp.frmMain.");

// Cells of a results row: 0 the id, 1 artist, 2 track, 3 disc, 4 track number.
enum Cell { Id = 0, Artist = 1, Track = 2, Disc = 3, TrackNo = 4 };

QString cell(SearchResultsList* list, int row, int column) {
    return list->model()->data(list->model()->index(row, column)).toString();
}

} // namespace

SearchOptionsMenu::SearchOptionsMenu(QMenu* menu, SearchResultsList* list, QObject* parent)
    : QObject(parent), m_menu(menu), m_list(list) {
    const std::pair<const char*, void (SearchOptionsMenu::*)()> handlers[] = {
        {"mnuSearchOptionsSwap", &SearchOptionsMenu::mnuSearchOptionsSwap_Click},
        {"mnuSearchOptionsComma", &SearchOptionsMenu::mnuSearchOptionsComma_Click},
        {"mnuSearchOptionMarkError", &SearchOptionsMenu::mnuSearchOptionMarkError_Click},
        {"mnuSearchOptionRemove", &SearchOptionsMenu::mnuSearchOptionRemove_Click},
        {"mnuSearchOptionRename", &SearchOptionsMenu::mnuSearchOptionRename_Click}};
    for (const auto& [name, handler] : handlers)
        if (QAction* a = menu->findChild<QAction*>(QLatin1String(name)))
            connect(a, &QAction::triggered, this, handler);
}

void SearchOptionsMenu::mnuSearchOptionsSwap_Click() {
    Guarded(kForm + QStringLiteral("mnuSearchOptionsSwap_Click"), 1, [this] {
        const int row = m_list ? m_list->selectedRow() : -1;
        if (row < 0)
            return;
        const qint64 id = m_list->trackIdAt(row);
        const QString artist = cell(m_list, row, Artist);
        const QString track = cell(m_list, row, Track);
        m_list->model()->setCellText(row, Artist, track);
        m_list->model()->setCellText(row, Track, artist);
        m_list->refresh();
        try {
            CatalogueStore::SwapArtistTitle(track, artist, id);
        } catch (...) {
            ShowApplicationError(describeException(std::current_exception()),
                                 QStringLiteral("in TessalyWorks.modDatabase.SwapArtistTitle "), 1);
        }
    });
}

void SearchOptionsMenu::mnuSearchOptionsComma_Click() {
    RemoveExtrasFromArtist();
}

void SearchOptionsMenu::RemoveExtrasFromArtist() {
    Guarded(kForm + QStringLiteral("RemoveExtrasFromArtist"), 1, [this] {
        const int row = m_list ? m_list->selectedRow() : -1;
        if (row < 0)
            return;
        const std::optional<QString> artist = maintenance::RemoveExtrasFromArtist(cell(m_list, row, Artist));
        if (!artist)
            return;
        m_list->model()->setCellText(row, Artist, *artist);
        m_list->refresh();
        const qint64 id = m_list->trackIdAt(row);
        // The list keeps the new text even when the catalogue refuses it.
        Guarded(kForm + QStringLiteral("ChangeArtist"), 1,
                [&] { CatalogueStore::ChangeArtist(*artist, id); });
    });
}

void SearchOptionsMenu::mnuSearchOptionMarkError_Click() {
    Guarded(kForm + QStringLiteral("mnuSearchOptionMarkError_Click"), 1, [this] {
        if (!m_list || m_list->selectedRow() < 0)
            return;
        if (prompts().msgBox(QStringLiteral("Are you sure you wish to mark this song as having errors"),
                             Prompts::OkCancel | Prompts::Question,
                             QStringLiteral("Mark the song as having errors")) != Prompts::Ok)
            return;
        const int row = m_list->selectedRow();
        if (row < 0)
            return;
        const qint64 id = m_list->trackIdAt(row);
        // A cancelled box gives an empty text, which is accepted like any other.
        const QString notes =
            prompts()
                .inputBox(QStringLiteral("Error Details"), QStringLiteral("Enter Error Details"), {})
                .value_or(QString());
        CatalogueStore::MarkAsError(id, notes);
    });
}

void SearchOptionsMenu::mnuSearchOptionRemove_Click() {
    Guarded(kForm + QStringLiteral("mnuSearchOptionRemove_Click"), 1, [this] {
        if (!m_list || m_list->selectedRow() < 0)
            return;
        if (prompts().msgBox(QStringLiteral("Are you sure you wish to remove this song?"),
                             Prompts::OkCancel | Prompts::Question,
                             QStringLiteral("Remove Song From Database")) != Prompts::Ok)
            return;
        const int row = m_list->selectedRow();
        if (row < 0)
            return;
        // The catalogue first: a song it still holds stays in the list too.
        CatalogueStore::RemoveTrack(m_list->trackIdAt(row));
        m_list->model()->removeTrackRow(row);
        m_list->setSelectedRow(row);
    });
}

void SearchOptionsMenu::mnuSearchOptionRename_Click() {
    Guarded(kForm + QStringLiteral("mnuSearchOptionRename_Click"), 1, [this] {
        const int row = m_list ? m_list->selectedRow() : -1;
        if (row < 0)
            return;
        maintenance::RenameSongFile(m_list->trackIdAt(row), cell(m_list, row, Artist),
                                    cell(m_list, row, Track), cell(m_list, row, Disc),
                                    cell(m_list, row, TrackNo));
    });
}
