#pragma once

#include "core/kverror.h"

#include <QString>
#include <QStringList>

// The 128-byte ID3v1 / ID3v1.1 tag at the end of an audio file: read, write and
// remove. Text is Latin-1, one character a byte. No operation raises: each
// leaves its outcome (number, description, source) in LastError(), which the
// caller reads.
class clsID3v1Tag {
public:
    // Outcome numbers.
    static constexpr qint32 kSuccess = qint32(0x80040000u);
    static constexpr qint32 kInvalidFile = qint32(0x80040001u);
    static constexpr qint32 kNoTag = qint32(0x80040002u);
    static constexpr qint32 kUnknownError = qint32(0x8003FFFFu);
    static constexpr quint8 kNoGenre = 255;

    clsID3v1Tag();

    QString FileName;

    // The tag's fields; empty strings, Track 0 and Genre 255 when there is none.
    QString ID;
    QString Title;
    QString Artist;
    QString Album;
    QString Year;
    QString Comment;
    quint8 Track = 0;
    quint8 Genre = kNoGenre;

    // "" for 255, the genre's name for 0..147, "Unknown" for any other number.
    QString GenreString() const;
    // Genre becomes the number of the first genre of that name, 255 when none has it.
    void setGenreString(const QString& name);

    // Reads the tag of FileName. True on success; `version` gets 1.0 or 1.1.
    bool ReadTag(float* version = nullptr);
    // Writes the fields over the file's tag, or appends one. A Track above 0
    // gives the 1.1 layout.
    bool WriteTag();
    // Cuts the tag off the end of the file.
    bool RemoveTag();

    const KvError& LastError() const { return m_outcome; }

    // The 148 genre names, numbers 0 to 147.
    static const QStringList& Genres();

private:
    void clearFields();
    bool finish(const QString& operation, qint32 number, const QString& what);

    KvError m_outcome{0, QString()};
};
