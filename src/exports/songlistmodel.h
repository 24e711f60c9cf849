#pragma once

#include <QAbstractTableModel>
#include <QByteArray>
#include <QSqlQuery>
#include <QStringList>
#include <vector>

// The rows of the options screen's song list, read from an open statement on
// the catalogue a block at a time as the view scrolls down to them
// (canFetchMore/fetchMore). The columns and their captions are the
// statement's own. Only the rows read so far are held, each packed as UTF-8
// into large shared blocks, so showing a catalogue of a million songs costs
// the first screenful, and scrolling through all of it a few tens of bytes a
// song.
class SongListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int kDefaultBlockSize = 256;

    explicit SongListModel(QObject* parent = nullptr);

    // Replaces the rows with the result of `sql` on the catalogue, reading its
    // first block. Throws a KvError with the driver's text when the statement
    // fails; the model is then empty.
    void load(const QString& sql);
    // Empties the model and lets go of the statement.
    void clear();
    // Keeps the rows read so far and lets go of the statement, so that its
    // table can be changed or dropped; no more rows come.
    void release();

    // The statement of the last load, empty when none.
    QString statement() const { return m_sql; }
    void setBlockSize(int rows) { m_blockSize = qMax(1, rows); }
    // The text of a cell; empty for one that does not exist.
    QString cell(int row, int column) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    bool canFetchMore(const QModelIndex& parent = {}) const override;
    void fetchMore(const QModelIndex& parent = {}) override;

    qint64 bytesHeld() const;

private:
    struct Entry {
        quint32 block;
        quint32 offset;
    };
    static constexpr qsizetype kBlockBytes = 1 << 20;

    void appendRow();
    const char* at(const Entry& e) const { return m_blocks[e.block].constData() + e.offset; }

    QString m_sql;
    QStringList m_columns;
    QSqlQuery m_query;
    bool m_more = false;
    int m_blockSize = kDefaultBlockSize;
    std::vector<QByteArray> m_blocks;
    std::vector<Entry> m_index;
    QByteArray m_row; // scratch for the row being packed
};
