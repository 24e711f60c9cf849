#include "historylistmodel.h"

#include "core/kverror.h"

HistoryListModel::HistoryListModel(QObject* parent) : QAbstractTableModel(parent) {}

QStringList HistoryListModel::captions() {
    return {QStringLiteral("Column1"), QStringLiteral("Singer"), QStringLiteral("Artist Name"),
            QStringLiteral("Track Name"), QStringLiteral("Key")};
}

void HistoryListModel::load(const HistoryFilter& filter) {
    beginResetModel();
    m_filter = filter;
    m_rows.clear();
    m_query = QSqlQuery();
    m_more = false;
    try {
        m_query = HistoryStore::openList(filter);
        m_more = true;
    } catch (...) {
        endResetModel();
        throw;
    }
    endResetModel();
    appendRows(m_blockSize);
}

void HistoryListModel::clear() {
    beginResetModel();
    m_rows.clear();
    m_query = QSqlQuery();
    m_more = false;
    endResetModel();
}

void HistoryListModel::appendRows(qint64 count) {
    if (!m_more)
        return;
    QList<HistoryRow> block;
    while (count != 0) {
        if (!m_query.next()) {
            m_more = false;
            m_query = QSqlQuery();
            break;
        }
        block.append({m_query.value(1).toString(), m_query.value(2).toString(), m_query.value(3).toString(),
                      m_query.value(4).toInt(), m_query.value(0).toString()});
        if (count > 0)
            --count;
    }
    if (block.isEmpty())
        return;
    beginInsertRows({}, int(m_rows.size()), int(m_rows.size() + block.size() - 1));
    m_rows.append(std::move(block));
    endInsertRows();
}

void HistoryListModel::fetchUpTo(int row) {
    if (row < 0)
        appendRows(-1);
    else if (row >= m_rows.size())
        appendRows(qint64(row) - m_rows.size() + 1);
}

HistoryRow HistoryListModel::historyRow(int row) const {
    if (row < 0 || row >= m_rows.size())
        throw KvError(380, QStringLiteral("Invalid property value"));
    return m_rows.at(row);
}

int HistoryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int HistoryListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant HistoryListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= m_rows.size() ||
        (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    const HistoryRow& r = m_rows.at(index.row());
    switch (index.column()) {
    case ColTrackPath:
        return r.TrackPath;
    case ColSinger:
        return r.SingerName;
    case ColArtist:
        return r.Artist;
    case ColTitle:
        return r.Title;
    case ColKey:
        return r.Key;
    default:
        return {};
    }
}

QVariant HistoryListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    return captions().value(section);
}

bool HistoryListModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && m_more;
}

void HistoryListModel::fetchMore(const QModelIndex& parent) {
    if (!parent.isValid())
        appendRows(m_blockSize);
}
