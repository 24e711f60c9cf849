#include "importtext.h"

#include <array>

namespace {

// Trims blanks only: tabs and other white space belong to the name.
QStringView trimBlanks(QStringView s) {
    qsizetype from = 0;
    qsizetype to = s.size();
    while (from < to && s[from] == QLatin1Char(' '))
        ++from;
    while (to > from && s[to - 1] == QLatin1Char(' '))
        --to;
    return s.sliced(from, to - from);
}

} // namespace

QString CleanNamePart(QStringView piece) {
    if (const qsizetype nul = piece.indexOf(QChar(0)); nul >= 0)
        piece = piece.left(nul);
    piece = trimBlanks(piece);
    if (piece.startsWith(QLatin1Char('_')))
        piece = piece.sliced(1);

    QString s = piece.toString();
    if (s.contains(QLatin1Char('_')))
        s.replace(QLatin1Char('_'), QLatin1Char(' '));
    // The extensions of the files that the host's names usually end in, each
    // removed everywhere in turn.
    static constexpr std::array<QLatin1String, 5> kExtensions = {QLatin1String(".zip"), QLatin1String(".cdg"),
                                                                 QLatin1String(".mp3"), QLatin1String(".mpg"),
                                                                 QLatin1String(".dat")};
    // Most pieces hold no dot at all: one plain scan spares them the five
    // case-blind searches.
    if (s.contains(QLatin1Char('.'))) {
        for (QLatin1String ext : kExtensions) {
            if (s.contains(ext, Qt::CaseInsensitive))
                s.remove(ext, Qt::CaseInsensitive);
        }
    }
    const QStringView trimmed = trimBlanks(s);
    if (trimmed.size() != s.size())
        return trimmed.toString();
    return s;
}

QString EscapeQuotes(QStringView text) {
    return EscapeQuotes(text.toString());
}

QString EscapeQuotes(QString&& text) {
    if (text.contains(QLatin1Char('\'')))
        text.replace(QLatin1Char('\''), QStringLiteral("''"));
    return std::move(text);
}
