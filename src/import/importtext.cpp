#include "importtext.h"

#include <algorithm>
#include <iterator>

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

// The extensions of the files that the host's names usually end in.
constexpr const char* kExtensions[] = {"zip", "cdg", "mp3", "mpg", "dat"};

// Whether the text's last four characters are "." and one of kExtensions.
bool endsInExtension(QStringView s) {
    if (s.size() < 4 || s[s.size() - 4] != QLatin1Char('.'))
        return false;
    const QStringView ext = s.last(3);
    return std::any_of(std::begin(kExtensions), std::end(kExtensions), [&](const char* e) {
        return sameAsciiLetter(ext[0], e[0]) && sameAsciiLetter(ext[1], e[1]) &&
               sameAsciiLetter(ext[2], e[2]);
    });
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

// The piece up to its first NUL, trimmed, less one leading underscore.
QStringView cutPiece(QStringView piece) {
    if (const qsizetype nul = piece.indexOf(QChar(0)); nul >= 0)
        piece = piece.left(nul);
    piece = trimBlanks(piece);
    if (piece.startsWith(QLatin1Char('_')))
        piece = piece.sliced(1);
    return piece;
}

} // namespace

QString CleanNamePart(QStringView piece) {
    QString s = cutPiece(piece).toString();
    if (s.contains(QLatin1Char('_')))
        s.replace(QLatin1Char('_'), QLatin1Char(' '));
    // The extensions, each removed everywhere in turn.
    if (s.contains(QLatin1Char('.'))) {
        for (const char* ext : kExtensions)
            removeExtension(s, ext);
    }
    const QStringView trimmed = trimBlanks(s);
    if (trimmed.size() != s.size())
        return trimmed.toString();
    return s;
}

QByteArray CleanNamePartUtf8(QStringView piece) {
    // Most pieces have no underscore in them, and no dot but that of an
    // extension at their end: the rest of them goes into UTF-8 as it stands.
    QStringView cut = trimBlanks(cutPiece(piece));
    if (cut.contains(QLatin1Char('_')))
        return CleanNamePart(piece).toUtf8();
    const qsizetype dots = cut.count(QLatin1Char('.'));
    if (dots == 1 && endsInExtension(cut))
        return trimBlanks(cut.chopped(4)).toUtf8();
    if (dots == 0)
        return cut.toUtf8();
    return CleanNamePart(piece).toUtf8();
}

namespace {

// Windows-1252 where it differs from Latin-1: the characters of 0x80 to 0x9F
// (the five bytes it leaves undefined keep their Latin-1 control code).
constexpr char16_t kWindows1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                       0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// The length of the well-formed UTF-8 character at the start of `b`, or 0.
qsizetype utf8CharLength(QByteArrayView b) {
    const auto byte = [&](qsizetype i) { return quint8(b[i]); };
    const quint8 lead = byte(0);
    qsizetype n = 0;
    char32_t min = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        n = 2;
        min = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        n = 3;
        min = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        n = 4;
        min = 0x10000;
    } else {
        return 0;
    }
    if (b.size() < n)
        return 0;
    char32_t c = lead & (0x7F >> n);
    for (qsizetype i = 1; i < n; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        c = (c << 6) | (byte(i) & 0x3F);
    }
    const bool surrogate = c >= 0xD800 && c <= 0xDFFF;
    return c >= min && c <= 0x10FFFF && !surrogate ? n : 0;
}

} // namespace

QString FileNameForDisplay(QByteArrayView bytes) {
    QString out;
    out.reserve(bytes.size());
    for (qsizetype i = 0; i < bytes.size();) {
        const quint8 b = quint8(bytes[i]);
        if (b < 0x80) {
            out += QChar(b);
            ++i;
        } else if (const qsizetype n = utf8CharLength(bytes.sliced(i))) {
            out += QString::fromUtf8(bytes.sliced(i, n));
            i += n;
        } else {
            out += QChar(b < 0xA0 ? kWindows1252[b - 0x80] : char16_t(b));
            ++i;
        }
    }
    return out;
}
