#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

// The text tools that turn a piece of a song file's name into a catalogue value.

// Cuts the piece at its first NUL, trims blanks, drops one leading "_", turns
// the other underscores into blanks, removes the extensions ".zip", ".cdg",
// ".mp3", ".mpg" and ".dat" wherever they stand (case-blind), and trims again.
// Other extensions (".ogg", ".divx", ...) stay in the piece on purpose.
QString CleanNamePart(QStringView piece);
// CleanNamePart(piece).toUtf8(), with fewer copies on the way.
QByteArray CleanNamePartUtf8(QStringView piece);
// The same for a piece of ASCII bytes. Where the value is the piece as it
// stands, or a part of it, the value shares the piece's bytes, and must not
// outlive them.
QByteArray CleanAsciiNamePart(QByteArrayView piece);

// How a file's name (or path) that is not UTF-8 text is shown to the host:
// what is UTF-8 reads as such, and every other byte as a Windows-1252
// character, the code page of the old Windows discs such names come from.
QString FileNameForDisplay(QByteArrayView bytes);
