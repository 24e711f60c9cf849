#include "songlistmodel.h"

#include "catalogue/database.h"
#include "core/kverror.h"

#include <QSqlError>
#include <QSqlRecord>
#include <cstring>

SongListModel::SongListModel(QObject* parent) : QAbstractTableModel(parent) {}

void SongListModel::load(const QString& sql) {
    beginResetModel();
    m_query = QSqlQuery();
    m_blocks.clear();
    m_index.clear();
    m_columns.clear();
    m_more = false;
    m_sql = sql;
    QString failure;
    qint32 number = 0;
    QSqlDatabase db = dbConnection();
    if (!db.isOpen()) {
        failure = QStringLiteral("Operation is not allowed when the object is closed.");
        number = 3704;
    } else {
        m_query = QSqlQuery(db);
        m_query.setForwardOnly(true);
        if (m_query.exec(sql)) {
            const QSqlRecord fields = m_query.record();
            for (int c = 0; c < fields.count(); ++c)
                m_columns << fields.fieldName(c);
            m_more = true;
        } else {
            failure = m_query.lastError().databaseText();
            number = m_query.lastError().nativeErrorCode().toInt();
            m_query = QSqlQuery();
        }
    }
    endResetModel();
    if (!failure.isEmpty())
        throw KvError(number, failure);
    fetchMore();
}

void SongListModel::clear() {
    beginResetModel();
    m_query = QSqlQuery();
    m_blocks.clear();
    m_index.clear();
    m_columns.clear();
    m_sql.clear();
    m_more = false;
    endResetModel();
}

void SongListModel::release() {
    m_query = QSqlQuery();
    m_more = false;
}

void SongListModel::appendRow() {
    // Each cell: its length (4 bytes) and its UTF-8 bytes.
    m_row.clear();
    for (int c = 0; c < m_columns.size(); ++c) {
        const QByteArray text = m_query.value(c).toString().toUtf8();
        const quint32 size = quint32(text.size());
        m_row.append(reinterpret_cast<const char*>(&size), sizeof size);
        m_row.append(text);
    }
    if (m_blocks.empty() || m_blocks.back().size() + m_row.size() > qMax(kBlockBytes, m_row.size())) {
        m_blocks.emplace_back();
        m_blocks.back().reserve(qMax(kBlockBytes, m_row.size()));
    }
    QByteArray& block = m_blocks.back();
    m_index.push_back({quint32(m_blocks.size() - 1), quint32(block.size())});
    block.append(m_row);
}

bool SongListModel::canFetchMore(const QModelIndex& parent) const {
    return !parent.isValid() && m_more;
}

void SongListModel::fetchMore(const QModelIndex& parent) {
    if (parent.isValid() || !m_more)
        return;
    const int first = int(m_index.size());
    for (int n = 0; n < m_blockSize; ++n) {
        if (!m_query.next()) {
            // The end, or the statement was ended under us (the connection
            // closed): either way there is nothing more to read.
            release();
            break;
        }
        appendRow();
    }
    const int last = int(m_index.size()) - 1;
    if (last >= first) {
        // The rows are packed already; the view is told of them in one step.
        beginInsertRows({}, first, last);
        endInsertRows();
    }
}

QString SongListModel::cell(int row, int column) const {
    if (row < 0 || row >= int(m_index.size()) || column < 0 || column >= m_columns.size())
        return {};
    const char* p = at(m_index[size_t(row)]);
    for (int c = 0;; ++c) {
        quint32 size = 0;
        std::memcpy(&size, p, sizeof size);
        p += sizeof size;
        if (c == column)
            return QString::fromUtf8(p, qsizetype(size));
        p += size;
    }
}

int SongListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_index.size());
}

int SongListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant SongListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || (role != Qt::DisplayRole && role != Qt::ToolTipRole))
        return {};
    return cell(index.row(), index.column());
}

QVariant SongListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole && section >= 0 &&
        section < m_columns.size())
        return m_columns.at(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}

qint64 SongListModel::bytesHeld() const {
    qint64 bytes = qint64(m_index.capacity() * sizeof(Entry));
    for (const QByteArray& b : m_blocks)
        bytes += b.capacity();
    return bytes;
}
