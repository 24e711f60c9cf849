#include "songunpacker.h"

#include "core/pathhelpers.h"
#include "playback/cdgnormaliser.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStorageInfo>

#include <zip.h>

#include <limits>
#include <memory>

namespace {

struct ZipCloser {
    void operator()(zip_t* z) const { zip_discard(z); }
};
struct ZipFileCloser {
    void operator()(zip_file_t* f) const { zip_fclose(f); }
};

// The entry's extension with its point, lowered; empty when the name has none.
QString lowerExtension(const QString& entryName) {
    const QString base = entryName.section(QRegularExpression(QStringLiteral("[/\\\\]")), -1);
    const int dot = base.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : base.mid(dot).toLower();
}

bool matchesFilter(const QString& ext) {
    for (const QString& pattern : SongUnpacker::kFilter)
        if (pattern.mid(1) == ext)
            return true;
    return false;
}

// An entry that passed the filter.
struct Planned {
    zip_uint64_t index;
    QString stem; // the entry's name without its extension, lowered
    QString ext;
    qint64 size;
    bool encrypted;
};

bool isGraphics(const Planned& p) {
    return p.ext == QLatin1String(".cdg");
}

// The song's own entries, in archive order: the last audio entry, and the
// graphics of the same name beside it (or, without such, the last graphics).
QList<Planned> songEntries(const QList<Planned>& candidates) {
    const Planned* audio = nullptr;
    for (const Planned& p : candidates)
        if (!isGraphics(p))
            audio = &p;
    const Planned* graphics = nullptr;
    const Planned* ownGraphics = nullptr;
    for (const Planned& p : candidates) {
        if (!isGraphics(p))
            continue;
        graphics = &p;
        if (audio && p.stem == audio->stem)
            ownGraphics = &p;
    }
    if (ownGraphics)
        graphics = ownGraphics;
    QList<Planned> chosen;
    for (const Planned& p : candidates)
        if (&p == audio || &p == graphics)
            chosen.append(p);
    return chosen;
}

} // namespace

SongUnpacker::SongUnpacker(QString unpackFolder, QString password, FreeSpaceProbe freeSpace)
    : UnpackFolder(AddBackslash(std::move(unpackFolder))), m_password(std::move(password)),
      m_freeSpace(std::move(freeSpace)) {
    if (!m_freeSpace)
        m_freeSpace = [](const QString& folder) {
            const QStorageInfo disk(folder);
            return disk.isValid() ? disk.bytesAvailable() : std::numeric_limits<qint64>::max();
        };
}

QString SongUnpacker::describe(int result) {
    switch (result) {
    case TooLarge:
        return QStringLiteral("A song file in it is too large for the free space on the disk.");
    case EntryTooLarge:
        return QStringLiteral("A song file in it is far larger than any song needs.");
    case Overrun:
        return QStringLiteral("The archive is damaged or is not a zip file.");
    case WriteFailed:
        return QStringLiteral("The song could not be written to the Temp folder.");
    default:
        break;
    }
    switch (result - ZipErrorBase) {
    case ZIP_ER_NOZIP:
    case ZIP_ER_INCONS:
    case ZIP_ER_CRC:
    case ZIP_ER_ZLIB:
    case ZIP_ER_EOF:
    case ZIP_ER_COMPRESSED_DATA:
        return QStringLiteral("The archive is damaged or is not a zip file.");
    case ZIP_ER_NOPASSWD:
        return QStringLiteral("The archive needs a password, and none is set.");
    case ZIP_ER_WRONGPASSWD:
        return QStringLiteral("The archive needs a different password from the one that is set.");
    case ZIP_ER_OPEN:
    case ZIP_ER_READ:
    case ZIP_ER_SEEK:
    case ZIP_ER_NOENT:
        return QStringLiteral("The file could not be opened or read.");
    case ZIP_ER_MULTIDISK:
    case ZIP_ER_COMPNOTSUPP:
    case ZIP_ER_ENCRNOTSUPP:
        return QStringLiteral("The archive is packed in a way that cannot be unpacked here.");
    case ZIP_ER_MEMORY:
        return QStringLiteral("There was not enough memory to unpack it.");
    default:
        break;
    }
    zip_error_t error;
    zip_error_init_with_code(&error, result - ZipErrorBase);
    const QString text = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return text + QLatin1Char('.');
}

bool SongUnpacker::IsArchive(const QString& path) {
    // The file's own extension decides: a folder named "Best.Zip Hits" holds
    // plain songs like any other.
    const QString ext = lowerExtension(path);
    return ext == QLatin1String(".zip") || ext == QLatin1String(".kma");
}

void SongUnpacker::ResetZipDetails() {
    HasCdgFile = false;
    HasAudioFile = false;
    AudioFilePath.clear();
    ArchiveStem.clear();
    m_written.clear();
}

void SongUnpacker::discardWritten() {
    for (const QString& f : std::as_const(m_written))
        QFile::remove(f);
    m_written.clear();
    HasCdgFile = false;
    HasAudioFile = false;
    AudioFilePath.clear();
}

int SongUnpacker::unpack(const QString& archive) {
    ResetZipDetails();
    ArchiveStem = QFileInfo(archive).completeBaseName();
    QDir().mkpath(UnpackFolder);
    const QString folder = QDir(UnpackFolder).canonicalPath();

    int err = 0;
    std::unique_ptr<zip_t, ZipCloser> za(zip_open(QFile::encodeName(archive).constData(), ZIP_RDONLY, &err));
    if (!za)
        return ZipErrorBase + err;
    const zip_int64_t count = zip_get_num_entries(za.get(), 0);
    const QByteArray password = m_password.toUtf8();

    QList<Planned> candidates;
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t st;
        zip_stat_init(&st);
        if (zip_stat_index(za.get(), zip_uint64_t(i), 0, &st) != 0)
            return ZipErrorBase + zip_error_code_zip(zip_get_error(za.get()));
        const QString name = QString::fromUtf8(st.name);
        const QString ext = lowerExtension(name);
        // A folder, a file of another kind, or an empty entry is no song file.
        if (name.endsWith(QLatin1Char('/')) || !matchesFilter(ext) || !(st.valid & ZIP_STAT_SIZE) ||
            st.size == 0)
            continue;
        const bool encrypted = (st.valid & ZIP_STAT_ENCRYPTION_METHOD) && st.encryption_method != ZIP_EM_NONE;
        candidates.append({zip_uint64_t(i), name.left(name.size() - ext.size()).toLower(), ext,
                           qint64(std::min<zip_uint64_t>(st.size, std::numeric_limits<qint64>::max())),
                           encrypted});
    }
    const QList<Planned> plan = songEntries(candidates);
    const bool skipped = plan.size() < count;

    qint64 total = 0;
    for (const Planned& p : plan) {
        if (p.size > (isGraphics(p) ? CdgNormaliser::kMaxBytes : kMaxEntryBytes))
            return EntryTooLarge;
        total += p.size;
    }
    if (total > m_freeSpace(folder))
        return TooLarge;

    QByteArray buffer(256 * 1024, Qt::Uninitialized);
    for (const Planned& p : plan) {
        // Whatever the entry was called, it lands in the unpack folder under the archive's stem.
        const QString target = QDir(folder).filePath(ArchiveStem + p.ext);
        if (QFileInfo(target).absolutePath() != folder) {
            discardWritten();
            return WriteFailed;
        }
        // What was written before this entry took its share of the disk.
        if (p.size > m_freeSpace(folder)) {
            discardWritten();
            return TooLarge;
        }
        std::unique_ptr<zip_file_t, ZipFileCloser> in(
            p.encrypted ? zip_fopen_index_encrypted(za.get(), p.index, 0,
                                                    password.isEmpty() ? nullptr : password.constData())
                        : zip_fopen_index(za.get(), p.index, 0));
        if (!in) {
            const int code = zip_error_code_zip(zip_get_error(za.get()));
            discardWritten();
            return ZipErrorBase + code;
        }
        QFile out(target);
        if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            discardWritten();
            return WriteFailed;
        }
        if (!m_written.contains(target))
            m_written.append(target);
        qint64 written = 0;
        for (;;) {
            const zip_int64_t n = zip_fread(in.get(), buffer.data(), zip_uint64_t(buffer.size()));
            if (n < 0) {
                const int code = zip_error_code_zip(zip_file_get_error(in.get()));
                out.close();
                discardWritten();
                return ZipErrorBase + code;
            }
            if (n == 0)
                break;
            written += n;
            if (written > p.size) {
                out.close();
                discardWritten();
                return Overrun;
            }
            if (out.write(buffer.constData(), n) != n) {
                out.close();
                discardWritten();
                return WriteFailed;
            }
        }
        if (!out.flush()) {
            out.close();
            discardWritten();
            return WriteFailed;
        }
        out.close();
        if (p.ext == QLatin1String(".cdg")) {
            HasCdgFile = true;
        } else {
            HasAudioFile = true;
            AudioFilePath = target; // with two audio entries the last wins
        }
    }
    return skipped ? SomeSkipped : Ok;
}
