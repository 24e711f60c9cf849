#pragma once

#include <QString>

// The cipher behind the setting `mus`, which holds the password of encrypted
// song archives. It is a reversible scrambling, not protection: it keeps the
// password from being read at a glance in settings.ini, nothing more.
//
// Encipher: the password's UTF-8 bytes are each XORed with the byte of a fixed
// key at the same position (the key repeating), then with the position itself
// (mod 256), and the result is written as lower-case hexadecimal. Decipher is
// the same steps backwards. A text that is not such hexadecimal deciphers to
// an empty password.
class CEncryptEx {
public:
    static QString encipher(const QString& plain);
    static QString decipher(const QString& stored);
};

// The password given to encrypted archive entries; built at start-up.
extern QString ArchivePassword;
// Builds ArchivePassword from the setting `mus` (read only).
void BuildArchivePassword();
