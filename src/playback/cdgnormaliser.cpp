#include "cdgnormaliser.h"

#include "core/pathhelpers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStorageInfo>

namespace {
constexpr char kCommandByte = 0x09; // "TV graphics" mode; instruction 0 does nothing
constexpr char kCommandMask = 0x3F;
// A whole number of packets, read and written at a time.
constexpr qint64 kChunkBytes = qint64(CdgNormaliser::kPacketSize) * 10240;

void neutralise(char* packet) {
    packet[0] = kCommandByte;
    std::fill(packet + 1, packet + CdgNormaliser::kPacketSize, '\0');
}
} // namespace

bool CdgNormaliser::isCommand(const char* packet) {
    return (packet[0] & kCommandMask) == kCommandByte;
}

void CdgNormaliser::normalisePacket(char* packet) {
    const qint64 index = m_packet++;
    if (m_leading) {
        if (!isCommand(packet)) {
            neutralise(packet);
            return;
        }
        m_leading = false;
    }
    if (index * kPacketSize < kHeaderBytes || isCommand(packet))
        return;
    if (++m_emptySeen % kEmptyStride == 0)
        neutralise(packet);
}

QByteArray CdgNormaliser::feed(QByteArrayView chunk) {
    QByteArray out = m_partial;
    out.append(chunk);
    const qsizetype whole = out.size() - out.size() % kPacketSize;
    m_partial = out.mid(whole);
    out.truncate(whole);
    for (qsizetype at = 0; at < whole; at += kPacketSize)
        normalisePacket(out.data() + at);
    return out;
}

QByteArray CdgNormaliser::finish() {
    QByteArray rest = m_partial;
    *this = CdgNormaliser();
    return rest;
}

QByteArray CdgNormaliser::normalise(const QByteArray& cdg) {
    CdgNormaliser n;
    QByteArray out = n.feed(cdg);
    out += n.finish();
    return out;
}

QString CdgNormaliser::companionOf(const QString& audioPath) {
    const QFileInfo fi(audioPath);
    const QString stem = fi.dir().filePath(fi.completeBaseName());
    for (const char* ext : {".cdg", ".CDG", ".Cdg"}) {
        const QString candidate = stem + QLatin1String(ext);
        if (QFileInfo(candidate).isFile())
            return candidate;
    }
    return {};
}

QString CdgNormaliser::copyPathFor(const QString& cdgPath, const QString& folder) {
    return AddBackslash(folder) + QFileInfo(cdgPath).completeBaseName() + QStringLiteral(".play.cdg");
}

bool CdgNormaliser::isCopyOf(const QString& copyPath, const QString& cdgPath) {
    const QFileInfo copy(copyPath), source(cdgPath);
    return copy.isFile() && source.isFile() && copy.size() == source.size() &&
           copy.lastModified() >= source.lastModified();
}

CdgNormaliser::Copy
CdgNormaliser::writeNormalisedCopy(const QString& cdgPath, const QString& folder,
                                   const std::function<qint64(const QString&)>& freeSpace) {
    Copy result;
    QFile in(cdgPath);
    if (!in.open(QIODevice::ReadOnly)) {
        result.error = in.errorString();
        return result;
    }
    result.size = in.size();
    if (result.size > kMaxBytes) {
        result.outcome = Copy::TooLarge;
        return result;
    }
    QDir().mkpath(folder);
    const qint64 room = freeSpace ? freeSpace(folder) : QStorageInfo(folder).bytesAvailable();
    if (room >= 0 && result.size > room) {
        result.error = QStringLiteral("there is not enough free space on the disk");
        return result;
    }
    const QString target = copyPathFor(cdgPath, folder);
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly)) {
        result.error = out.errorString();
        return result;
    }
    CdgNormaliser normaliser;
    QByteArray chunk(kChunkBytes, Qt::Uninitialized);
    for (;;) {
        const qint64 n = in.read(chunk.data(), chunk.size());
        if (n < 0) {
            result.error = in.errorString();
            return result;
        }
        const QByteArray ready =
            n > 0 ? normaliser.feed(QByteArrayView(chunk.constData(), n)) : normaliser.finish();
        if (out.write(ready) != ready.size()) {
            result.error = out.errorString();
            return result;
        }
        if (n == 0)
            break;
    }
    if (!out.commit()) {
        result.error = out.errorString();
        return result;
    }
    result.outcome = Copy::Written;
    result.path = target;
    return result;
}
