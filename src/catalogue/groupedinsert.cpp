#include "groupedinsert.h"

#include <sqlite3.h>

GroupedInsert::GroupedInsert(sqlite3* db, QByteArrayView head, int columns, int rowsPerGroup)
    : m_db(db), m_head(head.toByteArray()), m_columns(columns), m_rowsPerGroup(rowsPerGroup),
      m_full(db, sql(rowsPerGroup)), m_tails(size_t(rowsPerGroup)) {
    m_values.reserve(size_t(columns) * size_t(rowsPerGroup));
}

QByteArray GroupedInsert::sql(int rows) const {
    QByteArray row("(?");
    for (int c = 1; c < m_columns; ++c)
        row += ", ?";
    row += ')';
    QByteArray text = m_head;
    for (int r = 0; r < rows; ++r) {
        if (r > 0)
            text += ',';
        text += row;
    }
    return text;
}

void GroupedInsert::add(qint64 value) {
    m_values.push_back({Value::Integer, value, 0});
}

void GroupedInsert::add(QByteArrayView utf8) {
    m_values.push_back({Value::Text, qint64(m_bytes.size()), utf8.size()});
    m_bytes.append(utf8.data(), size_t(utf8.size()));
}

void GroupedInsert::addNull() {
    m_values.push_back({Value::Null, 0, 0});
}

bool GroupedInsert::endRow() {
    Q_ASSERT(m_values.size() == size_t(m_rows + 1) * size_t(m_columns));
    return ++m_rows < m_rowsPerGroup || run(m_full);
}

bool GroupedInsert::finish() {
    if (m_rows == 0)
        return true;
    // A caller that finishes often (before each look at the screen) meets
    // the same few lengths again: each is prepared once.
    std::unique_ptr<SqliteStatement>& tail = m_tails[size_t(m_rows)];
    if (!tail)
        tail = std::make_unique<SqliteStatement>(m_db, sql(m_rows));
    return run(*tail);
}

bool GroupedInsert::run(SqliteStatement& statement) {
    int at = 1;
    for (const Value& v : m_values) {
        switch (v.kind) {
        case Value::Integer:
            statement.bind(at, v.integer);
            break;
        case Value::Text:
            // The bytes stay put until the statement has run.
            statement.bindUncopied(at, QByteArrayView(m_bytes.data() + v.integer, v.length));
            break;
        case Value::Null:
            statement.bindNull(at);
            break;
        }
        ++at;
    }
    const bool ran = statement.run();
    // The error and the rows stay the last refusal's.
    if (ran) {
        m_inserted += sqlite3_changes(m_db);
    } else {
        m_error = statement.error();
        m_refusedValues.swap(m_values);
        m_refusedBytes.swap(m_bytes);
        m_refusedRows = m_rows;
    }
    m_values.clear();
    m_bytes.clear();
    m_rows = 0;
    return ran;
}

QByteArrayView GroupedInsert::refusedText(int row, int column) const {
    const Value& v = m_refusedValues[size_t(row) * size_t(m_columns) + size_t(column)];
    return v.kind == Value::Text ? QByteArrayView(m_refusedBytes.data() + v.integer, v.length)
                                 : QByteArrayView();
}

qint64 GroupedInsert::refusedInteger(int row, int column) const {
    const Value& v = m_refusedValues[size_t(row) * size_t(m_columns) + size_t(column)];
    return v.kind == Value::Integer ? v.integer : 0;
}
