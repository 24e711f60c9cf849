#include "cdgnormaliser.h"

#include "core/pathhelpers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {
constexpr char kCommandByte = 0x09; // "TV graphics" mode; instruction 0 does nothing
constexpr char kCommandMask = 0x3F;
} // namespace

bool CdgNormaliser::isCommand(const char* packet) {
    return (packet[0] & kCommandMask) == kCommandByte;
}

QByteArray CdgNormaliser::normalise(const QByteArray& cdg) {
    QByteArray out = cdg;
    const qsizetype packets = out.size() / kPacketSize;
    auto neutralise = [&out](qsizetype i) {
        char* p = out.data() + i * kPacketSize;
        p[0] = kCommandByte;
        std::fill(p + 1, p + kPacketSize, '\0');
    };
    qsizetype i = 0;
    for (; i < packets && !isCommand(out.constData() + i * kPacketSize); ++i)
        neutralise(i);
    int emptySeen = 0;
    for (; i < packets; ++i) {
        if (i * kPacketSize < kHeaderBytes || isCommand(out.constData() + i * kPacketSize))
            continue;
        if (++emptySeen % kEmptyStride == 0)
            neutralise(i);
    }
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

QString CdgNormaliser::writeNormalisedCopy(const QString& cdgPath, const QString& folder) {
    QFile in(cdgPath);
    if (!in.open(QIODevice::ReadOnly))
        return {};
    const QByteArray data = normalise(in.readAll());
    in.close();
    QDir().mkpath(folder);
    const QString target =
        AddBackslash(folder) + QFileInfo(cdgPath).completeBaseName() + QStringLiteral(".play.cdg");
    QSaveFile out(target);
    if (!out.open(QIODevice::WriteOnly) || out.write(data) != data.size() || !out.commit())
        return {};
    return target;
}
