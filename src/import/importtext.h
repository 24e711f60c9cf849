#pragma once

#include <QString>
#include <QStringView>

// The text tools that turn a piece of a song file's name into a catalogue value.

// Cuts the piece at its first NUL, trims blanks, drops one leading "_", turns
// the other underscores into blanks, removes the extensions ".zip", ".cdg",
// ".mp3", ".mpg" and ".dat" wherever they stand (case-blind), and trims again.
// Other extensions (".ogg", ".divx", ...) stay in the piece on purpose.
QString CleanNamePart(QStringView piece);

// Doubles every apostrophe, for a value joined into an SQL literal.
QString EscapeQuotes(QStringView text);
QString EscapeQuotes(QString&& text);
