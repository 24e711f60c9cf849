#include "searchresultslist.h"

#include "catalogue/searchresultsmodel.h"
#include "catalogue/songsearch.h"
#include "core/kverror.h"

#include <QHeaderView>
#include <QItemSelectionModel>
#include <QScopeGuard>
#include <QTableView>

SearchResultsList::SearchResultsList(QTableView* view, QObject* parent)
    : QObject(parent), m_view(view), m_model(new SearchResultsModel(this)) {
    m_view->setModel(m_model);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setSelectionMode(QAbstractItemView::SingleSelection);
    m_view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_view->setSortingEnabled(false);
    m_view->setWordWrap(false);
    m_view->verticalHeader()->hide();
    // Rows of one height let the view place a million rows without measuring them.
    m_view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_view->horizontalHeader()->setMinimumSectionSize(0);
    m_view->horizontalHeader()->setStretchLastSection(false);
    const auto columns = SongSearch::resultColumns();
    for (int c = 0; c < columns.size() && c < m_model->columnCount(); ++c)
        m_view->setColumnWidth(c, columns[c].width);
}

void SearchResultsList::loadFromSql(const QSqlDatabase& db, const QString& sql) {
    keepingWidths([&] { m_model->load(db, sql); });
}

void SearchResultsList::loadFromSource(std::unique_ptr<SongRowSource> source) {
    keepingWidths([&] { m_model->load(std::move(source)); });
}

void SearchResultsList::loadFromWindow(std::unique_ptr<ListingWindow> window) {
    keepingWidths([&] { m_model->load(std::move(window)); });
}

void SearchResultsList::keepingWidths(const std::function<void()>& load) {
    // Keep the widths across the reset, which may lay the header out afresh.
    QList<int> widths;
    for (int c = 0; c < columnCount(); ++c)
        widths << columnWidth(c);
    const auto restore = qScopeGuard([&] {
        for (int c = 0; c < widths.size(); ++c)
            m_view->setColumnWidth(c, widths[c]);
    });
    load();
}

void SearchResultsList::clear() {
    m_model->clear();
}

QTableView* SearchResultsList::view() const {
    return m_view;
}

int SearchResultsList::rowCount() const {
    return m_model->rowCount();
}

void SearchResultsList::setUpdateHold(bool hold) {
    m_hold = hold;
    m_view->setUpdatesEnabled(!hold);
}

int SearchResultsList::columnCount() const {
    return m_model->columnCount();
}

int SearchResultsList::columnWidth(int column) const {
    return m_view->columnWidth(column);
}

void SearchResultsList::setColumnWidth(int column, int width) {
    if (column < 0 || column >= columnCount() || width < 0)
        throw KvError(380, QStringLiteral("Invalid property value"));
    m_view->setColumnWidth(column, width);
}

void SearchResultsList::refresh() {
    m_view->horizontalHeader()->viewport()->update();
    m_view->viewport()->update();
}

int SearchResultsList::selectedRow() const {
    const QModelIndexList rows = m_view->selectionModel()->selectedRows();
    if (!rows.isEmpty())
        return rows.first().row();
    const QModelIndex current = m_view->currentIndex();
    return current.isValid() && m_view->selectionModel()->isRowSelected(current.row()) ? current.row() : -1;
}

void SearchResultsList::setSelectedRow(int row) {
    if (row < 0 || row >= rowCount()) {
        m_view->selectionModel()->clearSelection();
        return;
    }
    m_view->selectRow(row);
}

qint64 SearchResultsList::trackIdAt(int row) const {
    return m_model->trackId(row);
}
