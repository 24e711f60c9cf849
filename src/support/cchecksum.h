#pragma once

#include <QObject>
#include <QString>

// A simple additive checksum of a file or a text: the sum of the 8-bit codes
// of its characters, kept in single precision. Beyond 2^24 small additions are
// lost, so two large files may agree by accident; that is the checksum as it
// is defined, and nothing security-minded may rely on it.
class CChecksum : public QObject {
    Q_OBJECT
public:
    static constexpr qint32 kErrFileNotFound = qint32(0x800442B9);
    static constexpr qint32 kErrFailure = qint32(0x800442BA);
    static constexpr int kBlock = 256;

    // Reads the file in blocks of 256 bytes, reporting progress after each.
    // The last block is summed whole: behind the file's end it holds what the
    // block before it left in the buffer (zeros for a file under 256 bytes).
    // Throws KvError "File not found" or "CChecksum component failure".
    float GetFileChecksum(const QString& fileName);
    // Each character counts with its Windows-1252 code; one that code page
    // lacks counts as "?".
    static float GetStringChecksum(const QString& text);

signals:
    void progress(qint16 percent);
};
