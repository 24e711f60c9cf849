#include "queuemodel.h"

#include "core/kverror.h"

#include <QCollator>
#include <QDataStream>
#include <QIODevice>
#include <QMimeData>
#include <algorithm>
#include <numeric>

namespace {

const QString kRowMime = QStringLiteral("application/x-korvane-queue-row");

const char* const kCaptions[QueueModel::ColumnCount] = {"No", "Performer", "Artist", "Track", "Key"};

QStringList normalised(QStringList cells) {
    while (cells.size() < QueueModel::ColumnCount)
        cells.append(QString());
    if (cells.size() > QueueModel::ColumnCount)
        cells.resize(QueueModel::ColumnCount);
    return cells;
}

} // namespace

QueueModel::QueueModel(QObject* parent) : QAbstractTableModel(parent) {}

qint32 QueueModel::keyFromText(const QString& text) {
    bool ok = false;
    const QString t = text.trimmed();
    const qint32 whole = t.toInt(&ok);
    if (ok)
        return whole;
    const double d = t.toDouble(&ok);
    if (ok && d > -2147483648.0 && d < 2147483647.0)
        return qRound(d);
    return 0;
}

void QueueModel::addItem(const QStringList& cells, const QString& tag, int position) {
    const int at = (position < 0 || position > m_rows.size()) ? int(m_rows.size()) : position;
    beginInsertRows({}, at, at);
    m_rows.insert(at, Row{normalised(cells), tag});
    endInsertRows();
}

void QueueModel::addItemText(const QString& tabbedCells, const QString& tag, int position) {
    addItem(tabbedCells.split(QLatin1Char('\t')), tag, position);
}

void QueueModel::appendItems(const QList<Row>& rows) {
    if (rows.isEmpty())
        return;
    const int first = int(m_rows.size());
    beginInsertRows({}, first, first + int(rows.size()) - 1);
    m_rows.reserve(m_rows.size() + rows.size());
    for (const Row& r : rows)
        m_rows.append(Row{normalised(r.cells), r.tag});
    endInsertRows();
}

bool QueueModel::removeItem(int row) {
    return removeRows(row, 1);
}

bool QueueModel::removeRows(int row, int count, const QModelIndex& parent) {
    if (parent.isValid() || count < 1 || row < 0 || row + count > m_rows.size())
        return false;
    beginRemoveRows({}, row, row + count - 1);
    m_rows.remove(row, count);
    endRemoveRows();
    return true;
}

bool QueueModel::moveItem(int from, int to) {
    if (!isRow(from) || !isRow(to))
        return false;
    if (from == to)
        return true;
    // Qt names the destination as the row before which the moved row is put.
    if (!beginMoveRows({}, from, from, {}, to > from ? to + 1 : to))
        return false;
    m_rows.move(from, to);
    endMoveRows();
    return true;
}

bool QueueModel::swapItems(int a, int b) {
    if (!isRow(a) || !isRow(b))
        return false;
    if (a == b)
        return true;
    const int low = std::min(a, b);
    const int high = std::max(a, b);
    // Two moves keep the views' persistent indexes (and so the selection) on the rows.
    moveItem(high, low);
    moveItem(low + 1, high);
    return true;
}

void QueueModel::clearItems() {
    beginResetModel();
    m_rows.clear();
    endResetModel();
}

QString QueueModel::cellText(int row, int column) const {
    if (!isRow(row) || column < 0 || column >= ColumnCount)
        return {};
    return m_rows.at(row).cells.at(column);
}

QString QueueModel::itemTag(int row) const {
    return isRow(row) ? m_rows.at(row).tag : QString();
}

bool QueueModel::setCellText(int row, int column, const QString& text) {
    if (!isRow(row) || column < 0 || column >= ColumnCount)
        return false;
    m_rows[row].cells[column] = text;
    const QModelIndex i = index(row, column);
    emit dataChanged(i, i, {Qt::DisplayRole});
    return true;
}

QueueEntryDetails QueueModel::details(int row) const {
    if (!isRow(row))
        throw KvError(
            381,
            QStringLiteral("There is no row %1 in the queue (it holds %2 rows)").arg(row).arg(m_rows.size()));
    const Row& r = m_rows.at(row);
    QueueEntryDetails d;
    d.ArtistName = r.cells.at(ColArtist);
    d.TrackName = r.cells.at(ColTrack);
    d.PerformerName = r.cells.at(ColPerformer);
    d.Key = keyFromText(r.cells.at(ColKey));
    d.TrackPath = r.tag;
    return d;
}

int QueueModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_rows.size());
}

int QueueModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant QueueModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || !isRow(index.row()))
        return {};
    const Row& r = m_rows.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
    case Qt::ToolTipRole:
        return r.cells.at(index.column());
    case TagRole:
        return r.tag;
    default:
        return {};
    }
}

QVariant QueueModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 && section < ColumnCount)
        return QString::fromLatin1(kCaptions[section]);
    return QAbstractTableModel::headerData(section, orientation, role);
}

Qt::ItemFlags QueueModel::flags(const QModelIndex& index) const {
    // Rows take drops between them only (the root takes them), never onto a row.
    if (!index.isValid())
        return Qt::ItemIsDropEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
}

void QueueModel::sort(int column, Qt::SortOrder order) {
    if (column < 0 || column >= ColumnCount || m_rows.size() < 2)
        return;
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QModelIndexList before = persistentIndexList();
    // Remember which row each persistent index stood on, by identity of the row.
    QList<int> order0(m_rows.size());
    std::iota(order0.begin(), order0.end(), 0);

    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(true);
    const bool numeric = column == ColKey;
    auto less = [&](int a, int b) {
        const QString& x = m_rows.at(a).cells.at(column);
        const QString& y = m_rows.at(b).cells.at(column);
        const int c = numeric ? (keyFromText(x) > keyFromText(y)) - (keyFromText(x) < keyFromText(y))
                              : collator.compare(x, y);
        return order == Qt::AscendingOrder ? c < 0 : c > 0;
    };
    std::stable_sort(order0.begin(), order0.end(), less);

    QList<Row> sorted;
    sorted.reserve(m_rows.size());
    QList<int> newPlace(m_rows.size());
    for (int i = 0; i < order0.size(); ++i) {
        sorted.append(m_rows.at(order0.at(i)));
        newPlace[order0.at(i)] = i;
    }
    m_rows = std::move(sorted);
    QModelIndexList after;
    after.reserve(before.size());
    for (const QModelIndex& i : before)
        after.append(index(newPlace.at(i.row()), i.column()));
    changePersistentIndexList(before, after);
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

Qt::DropActions QueueModel::supportedDropActions() const {
    return Qt::MoveAction;
}
Qt::DropActions QueueModel::supportedDragActions() const {
    return Qt::MoveAction;
}

QStringList QueueModel::mimeTypes() const {
    return {kRowMime};
}

QMimeData* QueueModel::mimeData(const QModelIndexList& indexes) const {
    if (indexes.isEmpty() || !isRow(indexes.first().row()))
        return nullptr;
    QByteArray payload;
    QDataStream out(&payload, QIODevice::WriteOnly);
    // The model's address marks the drag as this list's own.
    out << quint64(quintptr(this)) << qint32(indexes.first().row());
    auto* m = new QMimeData;
    m->setData(kRowMime, payload);
    return m;
}

int QueueModel::draggedRow(const QMimeData* data) const {
    if (!data || !data->hasFormat(kRowMime))
        return -1;
    QDataStream in(data->data(kRowMime));
    quint64 owner = 0;
    qint32 row = -1;
    in >> owner >> row;
    if (in.status() != QDataStream::Ok || owner != quint64(quintptr(this)) || !isRow(row))
        return -1;
    return row;
}

bool QueueModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int, int,
                                 const QModelIndex&) const {
    return action == Qt::MoveAction && draggedRow(data) >= 0;
}

bool QueueModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                              const QModelIndex& parent) {
    const int from = draggedRow(data);
    if (action != Qt::MoveAction || from < 0)
        return false;
    // `row` is the gap the row is dropped into; -1 is below the last row.
    int gap = parent.isValid() ? parent.row() : row;
    if (gap < 0 || gap > m_rows.size())
        gap = int(m_rows.size());
    const int to = gap > from ? gap - 1 : gap;
    moveItem(from, to);
    emit itemDragDropped(from, to);
    // The row has been moved here already: answering false keeps the view from
    // removing the dragged row a second time, as it would after a move elsewhere.
    return false;
}
