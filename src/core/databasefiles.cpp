#include "databasefiles.h"

#include "pathhelpers.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>
#include <fcntl.h>
#include <sqlite3.h>
#include <thread>
#include <unistd.h>

namespace {

const QStringList kSideSuffixes = {QStringLiteral("-journal"), QStringLiteral("-wal"),
                                   QStringLiteral("-shm")};

// Moves one file, replacing what is at `to`; across file systems by copy and removal.
bool moveFile(const QString& from, const QString& to) {
    QFile::remove(to);
    if (QFile::rename(from, to))
        return true;
    return QFile::copy(from, to) && QFile::remove(from);
}

bool copyFile(const QString& from, const QString& to) {
    QFile::remove(to);
    return QFile::copy(from, to);
}

} // namespace

QStringList SideFiles(const QString& path) {
    QStringList files;
    for (const QString& suffix : kSideSuffixes)
        files << path + suffix;
    return files;
}

bool HasSideFileContent(const QString& path) {
    for (const QString& side : SideFiles(path))
        if (QFileInfo(side).size() > 0)
            return true;
    return false;
}

int SettleDatabaseFile(const QString& path) {
    if (!IsRegularFile(path))
        return SQLITE_CANTOPEN;
    sqlite3* db = nullptr;
    int rc = sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READWRITE, nullptr);
    if (rc == SQLITE_OK) {
        sqlite3_busy_timeout(db, 2000);
        // The first read rolls back an unfinished write from its journal, or
        // takes up the write-ahead log; the checkpoint folds the log in.
        rc = sqlite3_exec(db, "SELECT count(*) FROM sqlite_master", nullptr, nullptr, nullptr);
        if (rc == SQLITE_OK)
            rc = sqlite3_exec(db, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
        if (rc != SQLITE_OK)
            rc = sqlite3_errcode(db);
    }
    // The last connection to close removes the log and its index.
    sqlite3_close(db);
    return rc;
}

bool RemoveDatabaseFile(const QString& path) {
    for (const QString& side : SideFiles(path))
        QFile::remove(side);
    return !QFileInfo::exists(path) || QFile::remove(path);
}

bool MoveDatabaseFile(const QString& from, const QString& to) {
    for (const QString& side : SideFiles(to))
        QFile::remove(side);
    const QStringList fromSides = SideFiles(from);
    const QStringList toSides = SideFiles(to);
    for (qsizetype i = 0; i < fromSides.size(); ++i)
        if (QFileInfo::exists(fromSides[i]))
            moveFile(fromSides[i], toSides[i]);
    return QFileInfo::exists(from) && moveFile(from, to);
}

bool ReplaceFile(const QString& from, const QString& to) {
    return ::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

bool CopyDatabaseFile(const QString& from, const QString& to) {
    if (!IsRegularFile(from) || !copyFile(from, to))
        return false;
    const QStringList fromSides = SideFiles(from);
    const QStringList toSides = SideFiles(to);
    for (qsizetype i = 0; i < fromSides.size(); ++i) {
        QFile::remove(toSides[i]);
        if (QFileInfo::exists(fromSides[i]))
            copyFile(fromSides[i], toSides[i]);
    }
    return true;
}

QString StampedName(const QString& file, const QString& folder, bool unique) {
    const QString name = QFileInfo(file).fileName();
    const qsizetype firstDot = name.indexOf(QLatin1Char('.'));
    const qsizetype lastDot = name.lastIndexOf(QLatin1Char('.'));
    const QString stem = firstDot < 0 ? name : name.left(firstDot);
    const QString ext = lastDot < 0 ? QString() : name.mid(lastDot + 1);
    QString stamp = QDateTime::currentDateTime().toString(QStringLiteral("dd/MM/yyyy hh:mm:ss"));
    stamp.replace(QLatin1Char(':'), QLatin1Char('-')).replace(QLatin1Char('/'), QLatin1Char('-'));
    const QString base = stem + QLatin1Char('.') + stamp;
    QString candidate = base + QLatin1Char('.') + ext;
    for (int n = 2; unique && QFileInfo::exists(AddBackslash(folder) + candidate); ++n)
        candidate = base + QStringLiteral(" (%1).").arg(n) + ext;
    return candidate;
}

void SyncToDisk(const QString& path) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

RetiringFile::RetiringFile(const QString& path)
    : m_fd(::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC)) {}

RetiringFile::~RetiringFile() {
    if (m_fd < 0)
        return;
    std::thread([fd = m_fd] { ::close(fd); }).detach();
}
