#pragma once

#include "queueentrydetails.h"

#include <QAbstractTableModel>
#include <QList>
#include <QStringList>

// The singer queue itself: row order is queue order. A row is five text cells
// ("No", "Performer", "Artist", "Track", "Key") and a hidden tag holding the
// song file's path. There is no other copy of the queue; tblQueue is only a
// snapshot of this model (see queuestore.h).
class QueueModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { ColNo = 0, ColPerformer, ColArtist, ColTrack, ColKey, ColumnCount };
    // The role under which every cell of a row answers with the row's tag.
    static constexpr int TagRole = Qt::UserRole + 1;

    struct Row {
        QStringList cells; // always ColumnCount texts
        QString tag;
    };

    explicit QueueModel(QObject* parent = nullptr);

    // Adds a row at `position` (-1 or past the end: at the end). Missing cells
    // are empty, surplus ones dropped.
    void addItem(const QStringList& cells, const QString& tag, int position = -1);
    // The same with the cells joined by tab characters into one text.
    void addItemText(const QString& tabbedCells, const QString& tag, int position = -1);
    // Appends many rows in one step.
    void appendItems(const QList<Row>& rows);
    // Each returns false, changing nothing, when an index is not a row.
    bool removeItem(int row);
    bool swapItems(int a, int b);
    bool moveItem(int from, int to); // `to` is the row's index afterwards
    void clearItems();

    // A cell's text or the tag; empty for an index that is not a row.
    QString cellText(int row, int column) const;
    QString itemTag(int row) const;
    bool setCellText(int row, int column, const QString& text);
    const QList<Row>& items() const { return m_rows; }

    // The record of one row. Throws KvError for an index that is not a row.
    QueueEntryDetails details(int row) const;

    // A key cell's number: a text that is not a whole number gives 0.
    static qint32 keyFromText(const QString& text);

    // QAbstractItemModel
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool removeRows(int row, int count, const QModelIndex& parent = {}) override;
    void sort(int column, Qt::SortOrder order) override;
    Qt::DropActions supportedDropActions() const override;
    Qt::DropActions supportedDragActions() const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

signals:
    // A row was dragged within the list and dropped, landing at `to`.
    void itemDragDropped(int from, int to);

private:
    bool isRow(int row) const { return row >= 0 && row < m_rows.size(); }
    int draggedRow(const QMimeData* data) const;

    QList<Row> m_rows;
};
