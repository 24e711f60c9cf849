#pragma once

#include <functional>
#include <memory>

#include <QObject>
#include <QPointer>
#include <QSqlDatabase>

class QTableView;
class SearchResultsModel;
class SongRowSource;
class ListingWindow;

// The results list of the search around the table view that the main window
// owns: loads itself from a statement, keeps the hidden id column, per-column
// widths, the selected row, and a hold on repainting while it loads.
class SearchResultsList : public QObject {
    Q_OBJECT
public:
    // Sets its own model on `view` and lays the columns out as the results
    // format gives them (the id column at width 0).
    explicit SearchResultsList(QTableView* view, QObject* parent = nullptr);

    QTableView* view() const;
    SearchResultsModel* model() const { return m_model; }

    // Replaces the rows with the result of `sql`; throws a KvError when the
    // statement fails (the list is then empty).
    void loadFromSql(const QSqlDatabase& db, const QString& sql);
    // Replaces the rows with those of `source`.
    void loadFromSource(std::unique_ptr<SongRowSource> source);
    void loadFromWindow(std::unique_ptr<ListingWindow> window);
    void clear();
    int rowCount() const;

    // The hold on repainting: set before a load, cleared after it.
    void setUpdateHold(bool hold);
    bool updateHold() const { return m_hold; }

    int columnCount() const;
    int columnWidth(int column) const;
    // Throws a KvError for a column that does not exist or a negative width.
    void setColumnWidth(int column, int width);
    // Repaints the list and its header.
    void refresh();

    // The selected row, -1 when none.
    int selectedRow() const;
    void setSelectedRow(int row);
    // The track id of a row (the text of its first cell as a number); throws
    // a KvError for a row that does not exist.
    qint64 trackIdAt(int row) const;

private:
    void keepingWidths(const std::function<void()>& load);
    QPointer<QTableView> m_view;
    SearchResultsModel* m_model;
    bool m_hold = false;
};
