#include "importtext.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

// A piece's character `i` as a UTF-16 code unit: pieces come as text, or as
// bytes of ASCII, and every character the cleaning looks at is ASCII.
char16_t unitAt(QStringView s, qsizetype i) {
    return s[i].unicode();
}
char16_t unitAt(QByteArrayView s, qsizetype i) {
    return char16_t(quint8(s[i]));
}

// Trims blanks only: tabs and other white space belong to the name.
template <class View> View trimBlanks(View s) {
    qsizetype from = 0;
    qsizetype to = s.size();
    while (from < to && unitAt(s, from) == u' ')
        ++from;
    while (to > from && unitAt(s, to - 1) == u' ')
        --to;
    return s.sliced(from, to - from);
}

// Whether `u` is the ASCII letter or digit `lower`, in either case. No other
// character folds to one of the letters of the listed extensions.
bool sameAsciiLetter(char16_t u, char lower) {
    return u == char16_t(lower) || (lower >= 'a' && lower <= 'z' && u == char16_t(lower - 'a' + 'A'));
}

// The extensions of the files that the host's names usually end in.
constexpr const char* kExtensions[] = {"zip", "cdg", "mp3", "mpg", "dat"};

// Whether the text's last four characters are "." and one of kExtensions.
template <class View> bool endsInExtension(View s) {
    const qsizetype n = s.size();
    if (n < 4 || unitAt(s, n - 4) != u'.')
        return false;
    return std::any_of(std::begin(kExtensions), std::end(kExtensions), [&](const char* e) {
        return sameAsciiLetter(unitAt(s, n - 3), e[0]) && sameAsciiLetter(unitAt(s, n - 2), e[1]) &&
               sameAsciiLetter(unitAt(s, n - 1), e[2]);
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
        if (p[in] == QLatin1Char('.') && in + 4 <= n && sameAsciiLetter(p[in + 1].unicode(), ext[0]) &&
            sameAsciiLetter(p[in + 2].unicode(), ext[1]) && sameAsciiLetter(p[in + 3].unicode(), ext[2])) {
            in += 4;
            continue;
        }
        p[out++] = p[in++];
    }
    s.truncate(out);
}

// The piece up to its first NUL, trimmed, less one leading underscore.
template <class View> View cutPiece(View piece) {
    for (qsizetype i = 0; i < piece.size(); ++i) {
        if (unitAt(piece, i) == 0) {
            piece = piece.first(i);
            break;
        }
    }
    piece = trimBlanks(piece);
    if (!piece.isEmpty() && unitAt(piece, 0) == u'_')
        piece = piece.sliced(1);
    return piece;
}

// Whether CleanNamePart leaves the cut piece as it is but for an extension
// at its end, and where it ends then: most pieces have no underscore in them,
// and no dot but that of an extension at their end.
template <class View> std::optional<View> cleanedAsItStands(View cut) {
    qsizetype dots = 0;
    for (qsizetype i = 0; i < cut.size(); ++i) {
        const char16_t u = unitAt(cut, i);
        if (u == u'_')
            return std::nullopt;
        dots += u == u'.';
    }
    if (dots == 0)
        return cut;
    if (dots == 1 && endsInExtension(cut))
        return trimBlanks(cut.chopped(4));
    return std::nullopt;
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
    const QStringView trimmed = trimBlanks(QStringView(s));
    if (trimmed.size() != s.size())
        return trimmed.toString();
    return s;
}

QByteArray CleanNamePartUtf8(QStringView piece) {
    if (const std::optional<QStringView> value = cleanedAsItStands(trimBlanks(cutPiece(piece))))
        return value->toUtf8();
    return CleanNamePart(piece).toUtf8();
}

QByteArray CleanAsciiNamePart(QByteArrayView piece) {
    if (const std::optional<QByteArrayView> value = cleanedAsItStands(trimBlanks(cutPiece(piece))))
        return QByteArray::fromRawData(value->data(), value->size());
    return CleanNamePart(QString::fromLatin1(piece)).toLatin1();
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
