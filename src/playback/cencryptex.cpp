#include "cencryptex.h"

#include "core/appsettings.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/settings.h"

#include <QByteArray>

QString ArchivePassword;

namespace {

const QByteArray kKey = QByteArrayLiteral("KVPLAY-karaoke-console");

QByteArray scramble(QByteArray bytes) {
    for (qsizetype i = 0; i < bytes.size(); ++i)
        bytes[i] = char(bytes[i] ^ kKey[i % kKey.size()] ^ char(i & 0xFF));
    return bytes;
}

} // namespace

QString CEncryptEx::encipher(const QString& plain) {
    return QString::fromLatin1(scramble(plain.toUtf8()).toHex());
}

QString CEncryptEx::decipher(const QString& stored) {
    const QByteArray hex = stored.trimmed().toLatin1();
    if (hex.size() % 2 != 0)
        return {};
    for (char c : hex)
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return {};
    return QString::fromUtf8(scramble(QByteArray::fromHex(hex)));
}

void BuildArchivePassword() {
    ArchivePassword = oSettings ? CEncryptEx::decipher(settings::readText(keys::mus)) : QString();
}
