#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

// One prepared statement straight on SQLite, for the loops that read or write
// a whole catalogue: texts go in and come out as UTF-8 bytes, with none of the
// conversions and copies of a query object per value.
class SqliteStatement {
public:
    SqliteStatement(sqlite3* db, QByteArrayView sql);
    ~SqliteStatement();
    SqliteStatement(const SqliteStatement&) = delete;
    SqliteStatement& operator=(const SqliteStatement&) = delete;

    bool ok() const { return m_stmt != nullptr; }
    // The database's last error message.
    QString error() const;

    // Moves to the next row: true while there is one. After the last row, or
    // on an error, false; failed() tells which.
    bool next();
    bool failed() const { return m_failed; }

    int columnCount() const;
    QString columnName(int column) const;
    bool isNull(int column) const;
    bool isInteger(int column) const;
    qint64 integer(int column) const;
    // Valid until the next call of next().
    QByteArrayView text(int column) const;

    // Binds the values of a statement's "?" marks, from 1; the bytes are copied.
    void bind(int index, QByteArrayView utf8);
    // The same without a copy: the bytes must stay as they are until the
    // statement has run.
    void bindUncopied(int index, QByteArrayView utf8);
    void bind(int index, qint64 value);
    void bindNull(int index);
    // Runs a statement that returns no rows, and makes it ready to run again.
    // False when the database refused it (a constraint, say).
    bool run();
    // Makes a statement that returned rows ready to run again (the bound
    // values stay).
    void reset();

private:
    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_stmt = nullptr;
    bool m_failed = false;
};
