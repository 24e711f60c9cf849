#include "exportfile.h"

#include "catalogue/database.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QVariant>

namespace {
constexpr qsizetype kBufferBytes = 1 << 20;
}

QString exportPathIn(const QString& folder, const QString& name, QString* error) {
    const bool onlyDots = !name.isEmpty() && name.count(QLatin1Char('.')) == name.size();
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || name.contains(QChar(0)) || onlyDots) {
        *error = QStringLiteral("\"%1\" cannot be used as a file name: it must not be empty, hold a \"/\" "
                                "or be only dots.")
                     .arg(name);
        return {};
    }
    const QFileInfo dir(folder);
    if (!dir.isDir()) {
        *error = QStringLiteral("The folder %1 does not exist, so nothing was written.").arg(folder);
        return {};
    }
    error->clear();
    return QDir(folder).filePath(name);
}

QString desktopFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

QString fileNameFromText(const QString& text) {
    QString out = text;
    out.replace(QLatin1Char('/'), QLatin1Char('-'));
    out.replace(QChar(0), QLatin1Char('-'));
    return out;
}

ExportWriter::ExportWriter(const QString& path) : m_file(std::make_unique<QSaveFile>(path)) {
    m_buffer.reserve(kBufferBytes + 4096);
}

ExportWriter::~ExportWriter() {
    if (m_file->isOpen())
        m_file->cancelWriting();
}

bool ExportWriter::open() {
    m_failed = !m_file->open(QIODevice::WriteOnly);
    return !m_failed;
}

void ExportWriter::write(QByteArrayView bytes) {
    m_buffer += bytes;
    if (m_buffer.size() >= kBufferBytes)
        flush();
}

bool ExportWriter::flush() {
    if (!m_failed && !m_buffer.isEmpty() && m_file->write(m_buffer) != m_buffer.size())
        m_failed = true;
    // Emptied, not freed: the next lines go into the same room.
    m_buffer.resize(0);
    return !m_failed;
}

bool ExportWriter::commit() {
    if (!flush() || !m_file->isOpen()) {
        m_file->cancelWriting();
        m_failed = true;
        return false;
    }
    m_failed = !m_file->commit();
    return !m_failed;
}

QString ExportWriter::error() const {
    if (!m_failed)
        return {};
    return QStringLiteral("%1 could not be written: %2.").arg(m_file->fileName(), m_file->errorString());
}

LargeCatalogueCache::LargeCatalogueCache(int megabytes) {
    QSqlQuery q(dbConnection());
    if (q.exec(QStringLiteral("PRAGMA cache_size")) && q.next())
        m_previous = q.value(0).toString();
    QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA cache_size = -%1").arg(megabytes * 1024));
}

LargeCatalogueCache::~LargeCatalogueCache() {
    if (!m_previous.isEmpty())
        QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA cache_size = ") + m_previous);
}
