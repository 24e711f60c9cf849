#pragma once

#include "catalogue/compactrowstore.h"
#include "catalogue/songrowsource.h"

#include <QAbstractTableModel>
#include <QSqlDatabase>
#include <QStringList>

#include <memory>

// The rows of the search results: the track id and four texts of each song a
// statement (or the song index) gives, read block by block as a view scrolls
// down to them (canFetchMore/fetchMore). Only the rows
// fetched so far are held, packed small, so listing a whole catalogue of a
// million songs stays cheap until it is scrolled through. The order is the
// statement's own ("Order By"); the model does not sort.
//
// Columns: 0 the track id (the key of the row), 1 artist, 2 track, 3 disc,
// 4 track number. A statement may select more columns; they are not shown.
class SearchResultsModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kColumns = 5;
    static constexpr int kDefaultBlockSize = 64;

    explicit SearchResultsModel(QObject* parent = nullptr);

    // Replaces the rows with the result of `sql` on `db`, reading its first
    // block. Throws a KvError with the driver's text when the statement fails;
    // the model is then empty.
    void load(const QSqlDatabase& db, const QString& sql);
    // Replaces the rows with those of `source`, reading its first block.
    void load(std::unique_ptr<SongRowSource> source);
    // Replaces the rows with the whole catalogue, every row there at once and
    // its texts read as the view shows them.
    void load(std::unique_ptr<ListingWindow> window);
    // Empties the model and lets go of the statement.
    void clear();

    // Rows read at each fetchMore.
    void setBlockSize(int rows) { m_blockSize = qMax(1, rows); }
    int blockSize() const { return m_blockSize; }
    // Reads on until `row` exists or the statement has no more rows; with -1,
    // reads to the end. Rows arrive in one insertion.
    void fetchUpTo(int row);

    // The track id of a row; throws a KvError for a row that does not exist.
    qint64 trackId(int row) const;
    // Cell texts for the list's own edits (a swap of artist and title, a
    // corrected artist); the catalogue itself is not touched.
    void setCellText(int row, int column, const QString& text);
    // Drops a row from the list (after the song has left the catalogue).
    void removeTrackRow(int row);

    // The captions of the results list's columns.
    static QStringList captions();
    qint64 bytesHeld() const { return m_rows.bytesHeld() + (m_window ? m_window->bytesHeld() : 0); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool canFetchMore(const QModelIndex& parent = {}) const override;
    void fetchMore(const QModelIndex& parent = {}) override;

private:
    // Reads up to `count` more rows (all with -1) and shows them; lets go of the
    // statement at its end.
    void appendRows(qint64 count);

    // Rows are stored before the view is told of them; m_shown is what it knows.
    CompactRowStore m_rows;
    int m_shown = 0;
    std::unique_ptr<SongRowSource> m_source;
    // Set while the whole catalogue is listed; m_rows is then empty.
    std::unique_ptr<ListingWindow> m_window;
    bool m_more = false;
    int m_blockSize = kDefaultBlockSize;
};
