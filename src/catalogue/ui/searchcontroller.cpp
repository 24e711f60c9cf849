#include "searchcontroller.h"

#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songrowsource.h"
#include "catalogue/songsearch.h"
#include "catalogue/ui/searchresultslist.h"
#include "core/appsettings.h"
#include "core/errorlog.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "core/ui/headerwidths.h"
#include "support/ui/keyboardhook.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QTableView>
#include <QTimer>

namespace {

const QString kFilterIt = QStringLiteral("KvApp.frmMain.FilterIt");
const QString kFilterList = QStringLiteral("KvApp.frmMain.FilterList");
const QString kLoadAllSongs = QStringLiteral("KvApp.frmMain.LoadAllSongs");
const QString kClearSearchList = QStringLiteral("KvApp.frmMain.ClearSearchList");
const QString kClearClick = QStringLiteral("KvApp.frmMain.btnClearSearch_Click");
const QString kKeyDown = QStringLiteral("KvApp.frmMain.oKeyboard_KeyDown");

bool isSearchKey(int keyCode) {
    return keyCode == 32 || (keyCode >= 48 && keyCode <= 57) || (keyCode >= 65 && keyCode <= 90);
}

} // namespace

SearchController::SearchController(const SearchWidgets& widgets, QObject* parent)
    : QObject(parent), m_w(widgets), m_list(new SearchResultsList(widgets.olvSearchResults, this)) {
    connect(m_w.btnSearch, &QAbstractButton::clicked, this, [this] { FilterIt(); });
    connect(m_w.btnClearSearch, &QAbstractButton::clicked, this, [this] { btnClearSearch_Click(); });
    connect(m_w.txtSearch, &QLineEdit::textChanged, this, [this] { txtSearch_Change(); });
    connect(m_w.tmrSearch, &QTimer::timeout, this, [this] { tmrSearch_Timer(); });
    connect(m_w.olvSearchResults, &QAbstractItemView::doubleClicked, this, [this](const QModelIndex& index) {
        if (!index.isValid())
            return;
        qint64 id = 0;
        try {
            id = GetSelectedSong(index.row());
        } catch (...) {
            return;
        }
        emit addSongRequested(index.row(), id);
    });
    m_w.txtSearch->installEventFilter(this);
    m_w.olvSearchResults->viewport()->installEventFilter(this);
}

SearchController::~SearchController() {
    releaseKeyboardHook();
}

SearchResultsModel* SearchController::model() const {
    return m_list->model();
}

void SearchController::loadList(const QString& sql, const QString& source, int line) {
    try {
        m_list->loadFromSql(dbConnection(), sql);
    } catch (...) {
        // Logged without the box: the host is typing, and a box for each
        // keystroke's search would stand in the way.
        LogErrorQuietly(describeException(std::current_exception()), source, line);
    }
}

QString SearchController::FilterList() {
    QString condition;
    Guarded(kFilterList, 1,
            [&] { condition = SongSearch::filterList(m_w.txtSearch->text(), Cfg.IncludeSongPath); });
    return condition;
}

void SearchController::FilterIt() {
    Guarded(kFilterIt, 1, [&] { m_list->setUpdateHold(true); });
    QString text;
    Guarded(kFilterIt, 2, [&] { text = m_w.txtSearch->text(); });

    // The Like dialect and the list's format cannot take these: cut the last
    // character, whichever it is, and search nothing on this pass. Writing the
    // text raises the change, so search as you type comes back to cut again.
    // The hold on repainting stays set, as it does for an empty text.
    if (SongSearch::hasRefusedCharacter(text)) {
        Guarded(kFilterIt, 3, [&] { m_w.txtSearch->setText(SongSearch::cutLastCharacter(text)); });
        return;
    }
    if (SongSearch::trimBlanks(text).isEmpty())
        return;

    QString condition;
    Guarded(kFilterIt, 4, [&] {
        condition = m_searchMode == SongSearch::ByFileName
                        ? FilterList()
                        : SongSearch::condition(m_searchMode, text, Cfg.IncludeSongPath);
    });
    const QString sql = SongSearch::filterSql(condition);
    Guarded(kFilterIt, 5, [&] { m_list->setUpdateHold(true); });
    // A search of the file names is answered by the song index when it is in
    // step with the catalogue; the rows and their order are the statement's.
    std::unique_ptr<SongRowSource> indexed;
    if (m_searchMode == SongSearch::ByFileName && !Cfg.IncludeSongPath)
        indexed = IndexedSearch(dbConnection(), SongSearch::searchWords(text));
    if (indexed)
        m_list->loadFromSource(std::move(indexed));
    else
        loadList(sql, kFilterIt, 6);
    Guarded(kFilterIt, 7, [&] { m_list->setColumnWidth(0, 0); });
    Guarded(kFilterIt, 8, [&] { m_list->setUpdateHold(false); });
}

void SearchController::LoadAllSongs() {
    Guarded(kLoadAllSongs, 1, [&] { m_list->setUpdateHold(true); });
    if (std::unique_ptr<ListingWindow> indexed = IndexedListing(dbConnection()))
        m_list->loadFromWindow(std::move(indexed));
    else
        loadList(SongSearch::loadAllSql(), kLoadAllSongs, 2);
    Guarded(kLoadAllSongs, 3, [&] { m_list->setColumnWidth(0, 0); });
    Guarded(kLoadAllSongs, 4, [&] { m_list->setUpdateHold(false); });
}

void SearchController::ClearSearchList() {
    Guarded(kClearSearchList, 1, [&] {
        if (Cfg.ViewAllSongsAtStartup) {
            LoadAllSongs();
        } else {
            m_list->clear();
            // An empty list must show as empty, even after a pass that left
            // the hold set.
            m_list->setUpdateHold(false);
        }
    });
    if (m_w.txtSearch)
        m_w.txtSearch->setFocus(Qt::OtherFocusReason);
}

qint64 SearchController::GetSelectedSong(int row) const {
    return m_list->trackIdAt(row);
}

void SearchController::RetrieveSearchColumns() {
    // Element i sets column i, the hidden id column first; the first element
    // that is not a width ends the loop (the default's empty fifth one does),
    // and the columns after it keep the widths they have.
    try {
        const QString text = settings::readText(keys::SearchColumns);
        const QList<int> widths = SongSearch::leadingWidths(text);
        for (int i = 0; i < widths.size(); ++i)
            m_list->setColumnWidth(i, widths[i]);
    } catch (...) {
    }
    m_list->refresh();
}

void SearchController::SaveSearchColumns() {
    headerwidths::saveWidths(
        keys::SearchColumns,
        [this] {
            QList<int> widths;
            for (int c = 0; c < m_list->columnCount(); ++c)
                widths << m_list->columnWidth(c);
            return SongSearch::joinWidths(widths);
        },
        SongSearch::kColumnsSaveFallback);
}

void SearchController::txtSearch_Change() {
    if (!Cfg.InteractiveSearch)
        return;
    // Each change starts the wait afresh.
    m_w.tmrSearch->stop();
    m_w.tmrSearch->setInterval(0);
    m_w.tmrSearch->setInterval(SongSearch::kTypingDelayMs);
    m_w.tmrSearch->start();
}

void SearchController::tmrSearch_Timer() {
    // The timer is stopped first: a pass that cuts a refused character changes
    // the text, and that change must be able to start the timer again.
    m_w.tmrSearch->stop();
    if (!Cfg.InteractiveSearch)
        return;
    // Timer events swallow their errors; the procedures called log their own.
    try {
        const QString text = m_w.txtSearch->text();
        const qsizetype length = SongSearch::leftTrimBlanks(text).size();
        if (length == 0)
            ClearSearchList();
        else if (length >= SongSearch::kTypingMinimumLength || SongSearch::hasRefusedCharacter(text))
            FilterIt();
    } catch (...) {
    }
}

void SearchController::btnClearSearch_Click() {
    Guarded(kClearClick, 1, [&] { m_w.txtSearch->setText(QString()); });
    Guarded(kClearClick, 2, [&] { ClearSearchList(); });
}

void SearchController::oKeyboard_KeyDown(int& keyCode, int& shift) {
    Guarded(kKeyDown, 1, [&] {
        const QWidget* focus = QApplication::focusWidget();
        if (!focus || focus->objectName() != QLatin1String("txtSearch"))
            return;
        switch (keyCode) {
        case 8: // Backspace: the text box's own
            return;
        case 13: // Enter: search, and the key goes no further
            m_w.btnSearch->click();
            keyCode = 0;
            return;
        case 46: // Delete: empties the whole search, wherever the caret stands
            m_w.btnClearSearch->click();
            return;
        case 189: {
            // The minus key always adds at the end of the text. The box would
            // put a second one at the caret, so the key stops here.
            const QString added = shift != 0 ? QStringLiteral("_") : QStringLiteral("-");
            m_w.txtSearch->setText(m_w.txtSearch->text() + added);
            m_w.txtSearch->setCursorPosition(int(m_w.txtSearch->text().size()));
            txtSearch_Change();
            keyCode = 0;
            return;
        }
        default:
            if (isSearchKey(keyCode) && shift < KeyboardHook::kCtrl)
                txtSearch_Change();
        }
    });
}

void SearchController::createKeyboardHook() {
    if (m_keyboard)
        return;
    m_keyboard = new KeyboardHook(this);
    m_keyboard->setKeyDownHandler([this](int& keyCode, int& shift) { oKeyboard_KeyDown(keyCode, shift); });
}

void SearchController::releaseKeyboardHook() {
    delete m_keyboard.data();
}

KeyboardHook* SearchController::keyboardHook() const {
    return m_keyboard;
}

bool SearchController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_w.txtSearch && event->type() == QEvent::KeyPress) {
        // Enter searches and Escape clears; neither reaches the box, so no
        // character and no beep.
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            m_w.btnSearch->click();
            return true;
        }
        if (key == Qt::Key_Escape) {
            m_w.btnClearSearch->click();
            return true;
        }
    } else if (watched == m_w.olvSearchResults->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton && m_list->rowCount() >= 1)
            emit searchOptionsRequested(mouse->globalPosition().toPoint());
    }
    return QObject::eventFilter(watched, event);
}
