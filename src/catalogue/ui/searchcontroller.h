#pragma once

#include "queue/keyboardhookcontrol.h"

#include <QObject>
#include <QPoint>
#include <QPointer>

class KeyboardHook;
class QAbstractButton;
class QLineEdit;
class QTableView;
class QTimer;
class SearchResultsList;
class SearchResultsModel;

// The widgets of the search frame, made and owned by the main window.
struct SearchWidgets {
    QLineEdit* txtSearch = nullptr;
    QAbstractButton* btnSearch = nullptr;
    QAbstractButton* btnClearSearch = nullptr;
    QTableView* olvSearchResults = nullptr;
    QTimer* tmrSearch = nullptr;
};

// The typed song search of the main window: the search box with its buttons,
// the delay of search as you type, the results list, its column widths, and
// the keyboard hook's key table. The main window hands over its widgets; the
// controller connects to them, sets its own model on the results list, and
// tells the rest of the program about a chosen song through signals.
//
// The settings it acts on are read live from Cfg: InteractiveSearch,
// IncludeSongPath, ViewAllSongsAtStartup.
class SearchController : public QObject, public KeyboardHookControl {
    Q_OBJECT
public:
    explicit SearchController(const SearchWidgets& widgets, QObject* parent = nullptr);
    ~SearchController() override;

    // Runs the search of the text in txtSearch and fills the results list.
    void FilterIt();
    // The condition of a file-name search for the text in txtSearch.
    QString FilterList();
    // Lists the whole catalogue, songs marked as faulty included.
    void LoadAllSongs();
    // Returns the results to their idle state (the whole catalogue when
    // ViewAllSongsAtStartup is on, else empty) and gives txtSearch the focus.
    void ClearSearchList();
    // The track id of a row of the results list; throws a KvError for a row
    // that does not exist.
    qint64 GetSelectedSong(int row) const;
    // Column widths of the results list from and to SearchColumns (start-up, shutdown).
    void RetrieveSearchColumns();
    void SaveSearchColumns();

    // Handlers of the search frame's events.
    void txtSearch_Change();
    void tmrSearch_Timer();
    void btnClearSearch_Click();
    // The key table of the keyboard hook: acts only while the widget with the
    // focus is named "txtSearch". A key code set to 0 swallows the key.
    void oKeyboard_KeyDown(int& keyCode, int& shift);

    // The keyboard hook, made and dropped by the main window: at start-up and
    // exit, and dropped while a dialog that takes text is open.
    void createKeyboardHook() override;
    void releaseKeyboardHook() override;
    KeyboardHook* keyboardHook() const;

    // Always 0, the search by file name: nothing changes it.
    int SearchMode() const { return m_searchMode; }

    SearchResultsList* list() const { return m_list; }
    SearchResultsModel* model() const;
    const SearchWidgets& widgets() const { return m_w; }

signals:
    // A double click on a result: the song of that row goes to the queue.
    void addSongRequested(int row, qint64 trackId);
    // The right button let go over a list with rows: the pop-up menu of the
    // catalogue repairs opens at `globalPos` (the row under the pointer is
    // already selected).
    void searchOptionsRequested(const QPoint& globalPos);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Loads the list from `sql`; a failing statement is logged under `source`
    // without the error box, and leaves the list empty.
    void loadList(const QString& sql, const QString& source, int line);

    SearchWidgets m_w;
    SearchResultsList* m_list;
    QPointer<KeyboardHook> m_keyboard;
    const int m_searchMode = 0;
};
