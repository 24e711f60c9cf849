#include "importtext.h"

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

// Whether `c` is the ASCII letter or digit `lower`, in either case. No other
// character folds to one of the letters of the listed extensions.
bool sameAsciiLetter(QChar c, char lower) {
    const char16_t u = c.unicode();
    return u == char16_t(lower) || (lower >= 'a' && lower <= 'z' && u == char16_t(lower - 'a' + 'A'));
}

// Removes every "." + `ext` (three characters) from `s`, ignoring case, in one
// pass from the left: text that a removal joins together is not looked at
// again. Names hold many pieces, and this runs once per piece, so it does the
// work of a case-blind search-and-remove without its per-character folding.
void removeExtension(QString& s, const char* ext) {
    const qsizetype n = s.size();
    if (n < 4)
        return;
    QChar* p = s.data();
    qsizetype out = 0;
    for (qsizetype in = 0; in < n;) {
        if (p[in] == QLatin1Char('.') && in + 4 <= n && sameAsciiLetter(p[in + 1], ext[0]) &&
            sameAsciiLetter(p[in + 2], ext[1]) && sameAsciiLetter(p[in + 3], ext[2])) {
            in += 4;
            continue;
        }
        p[out++] = p[in++];
    }
    s.truncate(out);
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
    if (s.contains(QLatin1Char('.'))) {
        for (const char* ext : {"zip", "cdg", "mp3", "mpg", "dat"})
            removeExtension(s, ext);
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
