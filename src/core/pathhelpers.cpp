#include "pathhelpers.h"

#include <QDir>
#include <QFileInfo>

QString AddBackslash(const QString& path) {
    if (path.endsWith(QLatin1Char('/')))
        return path;
    return path + QLatin1Char('/');
}

bool FileExists(const QString& path) {
    return !path.isEmpty() && QFileInfo::exists(path);
}

bool IsRegularFile(const QString& path) {
    return !path.isEmpty() && QFileInfo(path).isFile();
}

bool DirectoryExists(const QString& path) {
    QString p = path;
    while (p.size() > 1 && p.endsWith(QLatin1Char('/')))
        p.chop(1);
    return !p.isEmpty() && QFileInfo(p).isDir();
}

int MakeDirectoryPath(const QString& path) {
    const QString full = AddBackslash(path);
    const QStringList parts = full.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    QString prefix = full.startsWith(QLatin1Char('/')) ? QStringLiteral("/") : QString();
    QDir root;
    for (const QString& part : parts) {
        prefix += part + QLatin1Char('/');
        root.mkdir(prefix); // a level that exists or cannot be made is passed over
    }
    return int(parts.size());
}
