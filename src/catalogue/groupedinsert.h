#pragma once

#include "sqlitestatement.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <memory>
#include <string>
#include <vector>

struct sqlite3;

// Rows inserted in groups, one statement for many rows ("Values (...),
// (...), ..."): SQLite's cost of running a statement, which for a narrow row
// is most of an insert's cost, is paid once a group instead of once a row.
// The values are held here until their group runs, so the caller's own may
// change at once.
//
// An "or ignore" statement passes over the rows its table refuses and takes
// the rest of their group; a plain one refuses the whole group.
class GroupedInsert {
public:
    // `head` is the statement up to and including "Values".
    GroupedInsert(sqlite3* db, QByteArrayView head, int columns, int rowsPerGroup = 64);

    bool ok() const { return m_full.ok(); }

    // The values of a row, in turn, then endRow(), which runs a full group:
    // false when the database refused it (error() says why).
    void add(qint64 value);
    void add(QByteArrayView utf8);
    void addNull();
    bool endRow();
    // Runs the rows added so far as a shorter group, with the same answer;
    // more rows may follow.
    bool finish();

    // The rows the table took so far.
    qint64 inserted() const { return m_inserted; }
    QString error() const { return m_error; }

    // The last group the database refused, row by row as it was added (so
    // that a caller can find the row at fault).
    int refusedRows() const { return m_refusedRows; }
    QByteArrayView refusedText(int row, int column) const;
    qint64 refusedInteger(int row, int column) const;

private:
    struct Value {
        enum Kind { Integer, Text, Null } kind;
        qint64 integer; // the offset in m_bytes for a text
        qsizetype length;
    };

    QByteArray sql(int rows) const;
    bool run(SqliteStatement& statement);

    sqlite3* m_db;
    QByteArray m_head;
    int m_columns;
    int m_rowsPerGroup;
    SqliteStatement m_full;
    // The statements of shorter groups, by their number of rows.
    std::vector<std::unique_ptr<SqliteStatement>> m_tails;
    std::vector<Value> m_values;
    // std::string: appending to it is a plain copy, and clear() keeps its room.
    std::string m_bytes;
    int m_rows = 0;
    std::vector<Value> m_refusedValues;
    std::string m_refusedBytes;
    int m_refusedRows = 0;
    qint64 m_inserted = 0;
    QString m_error;
};
