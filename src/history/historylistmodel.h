#pragma once

#include "historystore.h"

#include <QAbstractTableModel>
#include <QList>
#include <QSqlQuery>

// The rows of the history list for one filter, read from the open statement
// block by block as the view scrolls down to them (canFetchMore/fetchMore),
// so that a history of a hundred thousand songs opens at once and holds only
// the rows looked at. The order is the statement's own.
//
// Columns: 0 TrackPath (the list keeps it at width 0), 1 singer, 2 artist,
// 3 title, 4 key.
class HistoryListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { ColTrackPath = 0, ColSinger, ColArtist, ColTitle, ColKey, ColumnCount };
    static constexpr int kDefaultBlockSize = 256;

    explicit HistoryListModel(QObject* parent = nullptr);

    // Replaces the rows with those of `filter`, reading the first block.
    // Throws a KvError with the driver's text when the statement fails; the
    // model is then empty.
    void load(const HistoryFilter& filter);
    void clear();
    // The filter of the rows shown.
    const HistoryFilter& filter() const { return m_filter; }

    void setBlockSize(int rows) { m_blockSize = qMax(1, rows); }
    // Reads on until `row` exists or the statement ends; -1 reads to the end.
    void fetchUpTo(int row);

    // The row's record; throws a KvError for an index that is not a row.
    HistoryRow historyRow(int row) const;

    static QStringList captions();

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool canFetchMore(const QModelIndex& parent = {}) const override;
    void fetchMore(const QModelIndex& parent = {}) override;

private:
    void appendRows(qint64 count);

    HistoryFilter m_filter;
    QList<HistoryRow> m_rows;
    QSqlQuery m_query;
    bool m_more = false;
    int m_blockSize = kDefaultBlockSize;
};
