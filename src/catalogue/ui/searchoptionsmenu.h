#pragma once

#include <QObject>
#include <QPointer>

class QMenu;
class SearchResultsList;

// The repairs of the search list's pop-up menu "Search Options": swap artist
// and title, put an artist's first name first, mark a song as faulty, remove
// it from the catalogue, rename its file after its row. The main window owns
// the menu and the list; this object finds the menu's entries by name and acts
// on the selected row of the list.
class SearchOptionsMenu : public QObject {
    Q_OBJECT
public:
    SearchOptionsMenu(QMenu* menu, SearchResultsList* list, QObject* parent = nullptr);

    // The menu's handlers, each on the selected row (nothing without one).
    void mnuSearchOptionsSwap_Click();
    void mnuSearchOptionsComma_Click();
    void mnuSearchOptionMarkError_Click();
    void mnuSearchOptionRemove_Click();
    void mnuSearchOptionRename_Click();

    // The list's own repair: the selected row's artist put first name first,
    // then written to the catalogue.
    void RemoveExtrasFromArtist();

private:
    QPointer<QMenu> m_menu;
    QPointer<SearchResultsList> m_list;
};
