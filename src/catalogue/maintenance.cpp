#include "maintenance.h"

#include "catalogue/cataloguestore.h"
#include "catalogue/songsearch.h"
#include "core/errorlog.h"
#include "core/prompts.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace maintenance {

namespace {

const QString kRenameTitle = QStringLiteral("Rename File");

QString trim(const QString& text) {
    return SongSearch::trimBlanks(text);
}

// Renames `from` to `to` unless `to` exists, in one step where the file
// system can (no other program can slip a file in between); 0 or an errno.
int renameNoReplace(const QByteArray& from, const QByteArray& to) {
    if (::renameat2(AT_FDCWD, from.constData(), AT_FDCWD, to.constData(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    // A file system without the no-replace rename: a second name, then the
    // old one dropped; link() never replaces either.
    if (::link(from.constData(), to.constData()) == 0) {
        if (::unlink(from.constData()) == 0)
            return 0;
        const int why = errno;
        ::unlink(to.constData());
        return why;
    }
    if (errno != EPERM && errno != EOPNOTSUPP)
        return errno;
    // Nor links (a FAT stick): look first, then rename.
    if (::access(to.constData(), F_OK) == 0)
        return EEXIST;
    return ::rename(from.constData(), to.constData()) == 0 ? 0 : errno;
}

QString reasonOf(int error) {
    switch (error) {
    case EEXIST:
    case ENOTEMPTY:
        return QStringLiteral("a file of that name is there already");
    case EROFS:
        return QStringLiteral("the file is on read-only media");
    case EACCES:
    case EPERM:
        return QStringLiteral("there is no permission to rename files in that folder");
    case ENOENT:
        return QStringLiteral("the file is not there");
    case ENAMETOOLONG:
        return QStringLiteral("the new name is too long for the disk");
    default:
        return QString::fromLocal8Bit(std::strerror(error));
    }
}

QString failure(const QString& from, const QString& to, const QString& why) {
    return QStringLiteral("The file\n%1\ncould not be renamed to\n%2\nbecause %3. Nothing was changed.")
        .arg(QDir::toNativeSeparators(from), QDir::toNativeSeparators(to), why);
}

} // namespace

std::optional<QString> RemoveExtrasFromArtist(const QString& artist) {
    const QString name = trim(artist);
    const qsizetype comma = name.indexOf(QLatin1Char(','));
    if (comma < 0)
        return std::nullopt;
    QString front = name.left(comma);
    const QString back = name.mid(comma + 1);
    const qsizetype amp = back.indexOf(QLatin1Char('&'));
    if (amp >= 0)
        return trim(back.left(amp)) + QLatin1Char(' ') +
               trim(front + QStringLiteral(" &") + back.mid(amp + 1));
    return trim(back) + QLatin1Char(' ') + trim(front.remove(QLatin1Char(',')));
}

QString renamedPath(const QString& oldPath, const QString& artist, const QString& track, const QString& disc,
                    const QString& trackNo) {
    const QString folder = oldPath.left(oldPath.lastIndexOf(QLatin1Char('/')) + 1);
    return folder + disc + QLatin1Char('-') + trackNo + QStringLiteral(" - ") + artist +
           QStringLiteral(" - ") + track + QStringLiteral(".zip");
}

RenameOutcome renameSongFile(qint64 id, const QString& artist, const QString& track, const QString& disc,
                             const QString& trackNo) {
    RenameOutcome out;
    QString oldPath;
    try {
        oldPath = CatalogueStore::TrackPath(id);
    } catch (...) {
        out.error = QStringLiteral("The song is no longer in the catalogue: %1.")
                        .arg(describeException(std::current_exception()));
        return out;
    }
    out.newPath = renamedPath(oldPath, artist, track, disc, trackNo);
    const QString newName = out.newPath.mid(oldPath.lastIndexOf(QLatin1Char('/')) + 1);
    // The names come from the row; one with a "/" would put the file into
    // another folder.
    if (newName.contains(QLatin1Char('/')) || newName.contains(QChar(0))) {
        out.error = failure(oldPath, out.newPath, QStringLiteral("the new name would hold a \"/\""));
        return out;
    }
    if (out.newPath == oldPath) {
        out.renamed = QFileInfo::exists(oldPath);
        if (!out.renamed)
            out.error = failure(oldPath, out.newPath, reasonOf(ENOENT));
        return out;
    }
    const QByteArray from = QFile::encodeName(oldPath);
    const QByteArray to = QFile::encodeName(out.newPath);
    if (const int why = renameNoReplace(from, to); why != 0) {
        out.error = failure(oldPath, out.newPath, reasonOf(why));
        return out;
    }
    try {
        CatalogueStore::SetTrackPath(id, out.newPath);
    } catch (...) {
        // The row keeps the old path, so the file goes back to its old name.
        const QString why = describeException(std::current_exception());
        ::rename(to.constData(), from.constData());
        out.error = failure(oldPath, out.newPath,
                            QStringLiteral("the catalogue did not take the new path (%1)").arg(why));
        return out;
    }
    out.renamed = true;
    return out;
}

bool RenameSongFile(qint64 id, const QString& artist, const QString& track, const QString& disc,
                    const QString& trackNo) {
    const RenameOutcome out = renameSongFile(id, artist, track, disc, trackNo);
    if (!out.renamed)
        prompts().msgBox(out.error, Prompts::Exclamation, kRenameTitle);
    return out.renamed;
}

} // namespace maintenance
