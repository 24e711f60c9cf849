#include "sqlitestatement.h"

#include <sqlite3.h>

SqliteStatement::SqliteStatement(sqlite3* db, QByteArrayView sql) : m_db(db) {
    if (!db || sqlite3_prepare_v2(db, sql.data(), int(sql.size()), &m_stmt, nullptr) != SQLITE_OK) {
        sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
        m_failed = true;
    }
}

SqliteStatement::~SqliteStatement() {
    sqlite3_finalize(m_stmt);
}

QString SqliteStatement::error() const {
    return m_db ? QString::fromUtf8(sqlite3_errmsg(m_db)) : QStringLiteral("the catalogue is not open");
}

bool SqliteStatement::next() {
    if (!m_stmt)
        return false;
    const int rc = sqlite3_step(m_stmt);
    m_failed = rc != SQLITE_ROW && rc != SQLITE_DONE;
    return rc == SQLITE_ROW;
}

int SqliteStatement::columnCount() const {
    return m_stmt ? sqlite3_column_count(m_stmt) : 0;
}

QString SqliteStatement::columnName(int column) const {
    return QString::fromUtf8(sqlite3_column_name(m_stmt, column));
}

bool SqliteStatement::isNull(int column) const {
    return sqlite3_column_type(m_stmt, column) == SQLITE_NULL;
}

bool SqliteStatement::isInteger(int column) const {
    return sqlite3_column_type(m_stmt, column) == SQLITE_INTEGER;
}

qint64 SqliteStatement::integer(int column) const {
    return sqlite3_column_int64(m_stmt, column);
}

QByteArrayView SqliteStatement::text(int column) const {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_stmt, column));
    return QByteArrayView(bytes, bytes ? sqlite3_column_bytes(m_stmt, column) : 0);
}

void SqliteStatement::bind(int index, QByteArrayView utf8) {
    sqlite3_bind_text(m_stmt, index, utf8.data() ? utf8.data() : "", int(utf8.size()), SQLITE_TRANSIENT);
}

void SqliteStatement::bindUncopied(int index, QByteArrayView utf8) {
    sqlite3_bind_text(m_stmt, index, utf8.data() ? utf8.data() : "", int(utf8.size()), SQLITE_STATIC);
}

void SqliteStatement::bind(int index, qint64 value) {
    sqlite3_bind_int64(m_stmt, index, value);
}

void SqliteStatement::bindNull(int index) {
    sqlite3_bind_null(m_stmt, index);
}

bool SqliteStatement::run() {
    if (!m_stmt)
        return false;
    const int rc = sqlite3_step(m_stmt);
    sqlite3_reset(m_stmt);
    m_failed = rc != SQLITE_DONE;
    return !m_failed;
}

void SqliteStatement::reset() {
    if (m_stmt)
        sqlite3_reset(m_stmt);
    m_failed = false;
}
