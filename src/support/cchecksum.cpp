#include "cchecksum.h"

#include "core/kverror.h"

#include <QFile>
#include <QFileInfo>
#include <array>

namespace {

// The code of `c` in Windows-1252, or '?' when it has none.
unsigned char ansiCode(QChar c) {
    static constexpr char16_t kHigh[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                           0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                           0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                           0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
    const char16_t u = c.unicode();
    if (u < 0x80 || (u >= 0xA0 && u <= 0xFF))
        return static_cast<unsigned char>(u);
    for (int i = 0; i < 32; ++i)
        if (kHigh[i] == u)
            return static_cast<unsigned char>(0x80 + i);
    return '?';
}

} // namespace

float CChecksum::GetStringChecksum(const QString& text) {
    float sum = 0;
    for (QChar c : text)
        sum += float(ansiCode(c));
    return sum;
}

float CChecksum::GetFileChecksum(const QString& fileName) {
    if (!QFileInfo(fileName).isFile())
        throw KvError(kErrFileNotFound, QStringLiteral("File not found"),
                      kAppName + QStringLiteral(".CAppSetting"));
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw KvError(kErrFailure, QStringLiteral("CChecksum component failure"),
                      kAppName + QStringLiteral(".CChecksum"));
    const float blocks = float(file.size()) / float(kBlock);
    std::array<unsigned char, kBlock> buffer{};
    float sum = 0;
    float count = 0;
    while (!file.atEnd()) {
        const qint64 got = file.read(reinterpret_cast<char*>(buffer.data()), kBlock);
        if (got < 0)
            throw KvError(kErrFailure, QStringLiteral("CChecksum component failure"),
                          kAppName + QStringLiteral(".CChecksum"));
        count = std::min(count + 1, blocks);
        emit progress(qint16(count * 100 / blocks));
        for (unsigned char b : buffer)
            sum += float(b);
    }
    return sum;
}
