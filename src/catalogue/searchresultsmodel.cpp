#include "searchresultsmodel.h"

#include "catalogue/songsearch.h"
#include "core/kverror.h"

SearchResultsModel::SearchResultsModel(QObject* parent) : QAbstractTableModel(parent) {}

QStringList SearchResultsModel::captions() {
    QStringList c;
    for (const SongSearch::Column& col : SongSearch::resultColumns())
        c << col.caption;
    return c;
}

void SearchResultsModel::load(const QSqlDatabase& db, const QString& sql) {
    std::unique_ptr<SongRowSource> source;
    try {
        source = std::make_unique<StatementRowSource>(db, sql);
    } catch (...) {
        clear();
        throw;
    }
    load(std::move(source));
}

void SearchResultsModel::load(std::unique_ptr<SongRowSource> source) {
    beginResetModel();
    m_window.reset();
    m_source = std::move(source);
    m_rows.clear();
    m_shown = 0;
    m_more = m_source != nullptr;
    endResetModel();
    appendRows(m_blockSize);
}

void SearchResultsModel::load(std::unique_ptr<ListingWindow> window) {
    beginResetModel();
    m_source.reset();
    m_rows.clear();
    m_more = false;
    m_window = std::move(window);
    m_shown = m_window ? m_window->size() : 0;
    endResetModel();
}

void SearchResultsModel::clear() {
    beginResetModel();
    m_window.reset();
    m_source.reset();
    m_rows.clear();
    m_shown = 0;
    m_more = false;
    endResetModel();
}

void SearchResultsModel::appendRows(qint64 count) {
    if (!m_more)
        return;
    const int first = m_rows.size();
    qint64 id = 0;
    CompactRowStore::Texts texts;
    while (count != 0) {
        if (!m_source->next(id, texts)) {
            m_more = false;
            m_source.reset();
            break;
        }
        m_rows.append(id, texts);
        if (count > 0)
            --count;
    }
    if (m_source)
        m_source->pause();
    if (m_rows.size() > first) {
        beginInsertRows({}, first, m_rows.size() - 1);
        m_shown = m_rows.size();
        endInsertRows();
    }
}

void SearchResultsModel::fetchUpTo(int row) {
    if (row < 0)
        appendRows(-1);
    else if (row >= m_shown)
        appendRows(qint64(row) - m_shown + 1);
}

qint64 SearchResultsModel::trackId(int row) const {
    if (row < 0 || row >= m_shown)
        throw KvError(380, QStringLiteral("Invalid property value"));
    return m_window ? m_window->id(row) : m_rows.id(row);
}

void SearchResultsModel::setCellText(int row, int column, const QString& text) {
    if (row < 0 || row >= m_shown || column < 1 || column >= kColumns)
        throw KvError(380, QStringLiteral("Invalid property value"));
    CompactRowStore::Texts t = m_window ? m_window->texts(row) : m_rows.texts(row);
    t[column - 1] = text;
    if (m_window)
        m_window->replace(row, t);
    else
        m_rows.replace(row, t);
    emit dataChanged(index(row, column), index(row, column));
}

void SearchResultsModel::removeTrackRow(int row) {
    if (row < 0 || row >= m_shown)
        throw KvError(380, QStringLiteral("Invalid property value"));
    beginRemoveRows({}, row, row);
    if (m_window) {
        m_window->removeAt(row);
        m_shown = m_window->size();
    } else {
        m_rows.removeAt(row);
        m_shown = m_rows.size();
    }
    endRemoveRows();
}

int SearchResultsModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_shown;
}

int SearchResultsModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumns;
}

QVariant SearchResultsModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_shown || index.column() >= kColumns)
        return {};
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole)
        return {};
    if (index.column() == 0)
        return m_window ? m_window->id(index.row()) : m_rows.id(index.row());
    return m_window ? m_window->text(index.row(), index.column() - 1)
                    : m_rows.text(index.row(), index.column() - 1);
}

QVariant SearchResultsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    static const QStringList names = captions();
    return names.value(section);
}

bool SearchResultsModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && m_more;
}

void SearchResultsModel::fetchMore(const QModelIndex& parent) {
    if (!parent.isValid())
        appendRows(m_blockSize);
}
