#include "likepattern.h"

#include "core/wildcardmatch.h"

#include <QChar>
#include <QString>

#include <array>
#include <memory>

namespace likepattern {

char32_t nextCodePoint(const unsigned char*& p, const unsigned char* end) {
    const unsigned char lead = *p++;
    if (lead < 0x80)
        return lead;
    int extra = 0;
    char32_t c = 0;
    if ((lead & 0xE0) == 0xC0) {
        extra = 1;
        c = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        extra = 2;
        c = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        extra = 3;
        c = lead & 0x07;
    } else {
        return kBadByte;
    }
    for (int i = 0; i < extra; ++i) {
        if (p == end || (*p & 0xC0) != 0x80)
            return kBadByte;
        c = (c << 6) | (*p++ & 0x3F);
    }
    return c;
}

void appendUtf8(char32_t c, std::string& out) {
    if (c < 0x80) {
        out.push_back(char(c));
    } else if (c < 0x800) {
        out.push_back(char(0xC0 | (c >> 6)));
        out.push_back(char(0x80 | (c & 0x3F)));
    } else if (c < 0x10000) {
        out.push_back(char(0xE0 | (c >> 12)));
        out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(char(0x80 | (c & 0x3F)));
    } else {
        out.push_back(char(0xF0 | ((c >> 18) & 0x07)));
        out.push_back(char(0x80 | ((c >> 12) & 0x3F)));
        out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
        out.push_back(char(0x80 | (c & 0x3F)));
    }
}

namespace {

char32_t caseFold(char32_t c) {
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    if (c > 0x10FFFF)
        return c;
    return QChar::toCaseFolded(c);
}

// The base letter of a character by its canonical decomposition ("é" is "e"
// and a combining acute), followed down to the end; kDropped for a
// combining mark on its own.
char32_t baseLetter(char32_t c) {
    for (int depth = 0; depth < 4; ++depth) {
        if (QChar::category(c) == QChar::Mark_NonSpacing)
            return kDropped;
        if (QChar::decompositionTag(c) != QChar::Canonical)
            return c;
        const QString parts = QChar::decomposition(c);
        if (parts.isEmpty())
            return c;
        c = parts.at(0).isHighSurrogate() && parts.size() > 1
                ? QChar::surrogateToUcs4(parts.at(0), parts.at(1))
                : parts.at(0).unicode();
    }
    return c;
}

// Accent-blind folds of the first 64K characters, worked out once: the
// decomposition tables are too slow to ask for every character of a million
// file names.
const std::array<char32_t, 0x10000>& blindTable() {
    static const std::unique_ptr<std::array<char32_t, 0x10000>> table = [] {
        auto t = std::make_unique<std::array<char32_t, 0x10000>>();
        for (char32_t c = 0; c < 0x10000; ++c) {
            const char32_t base = baseLetter(caseFold(c));
            (*t)[c] = base == kDropped ? kDropped : caseFold(base);
        }
        return t;
    }();
    return *table;
}

} // namespace

char32_t fold(char32_t c, bool accentBlind) {
    if (c < 0x80)
        return (c >= 'A' && c <= 'Z') ? c + 32 : c;
    if (!accentBlind)
        return caseFold(c);
    if (c < 0x10000)
        return blindTable()[c];
    if (c > 0x10FFFF)
        return c;
    const char32_t base = baseLetter(caseFold(c));
    return base == kDropped ? kDropped : caseFold(base);
}

void foldText(const unsigned char* p, int bytes, bool accentBlind, std::vector<char32_t>& out) {
    out.clear();
    const unsigned char* end = p + bytes;
    while (p < end) {
        const char32_t c = fold(nextCodePoint(p, end), accentBlind);
        if (c != kDropped)
            out.push_back(c);
    }
}

void foldTextUtf8(const unsigned char* p, int bytes, bool accentBlind, std::string& out) {
    const unsigned char* end = p + bytes;
    while (p < end) {
        // The common case: a run of ASCII, made small in one go.
        const unsigned char* run = p;
        while (p < end && *p < 0x80)
            ++p;
        if (p > run) {
            const size_t at = out.size();
            out.resize(at + size_t(p - run));
            char* o = out.data() + at;
            for (const unsigned char* q = run; q < p; ++q)
                *o++ = char((*q >= 'A' && *q <= 'Z') ? *q + 32 : *q);
        }
        if (p == end)
            break;
        const char32_t c = fold(nextCodePoint(p, end), accentBlind);
        if (c != kDropped)
            appendUtf8(c, out);
    }
}

Pattern compile(const unsigned char* p, int bytes, bool accentBlind, char32_t escape, bool hasEscape) {
    Pattern out;
    const unsigned char* end = p + bytes;
    while (p < end) {
        const char32_t c = nextCodePoint(p, end);
        if (hasEscape && c == escape) {
            if (p == end) {
                out.neverMatches = true;
                return out;
            }
            const char32_t literal = fold(nextCodePoint(p, end), accentBlind);
            if (literal != kDropped)
                out.elements.push_back(literal);
        } else if (c == U'%') {
            // Runs of "%" match as one.
            if (out.elements.empty() || out.elements.back() != kAnyRun)
                out.elements.push_back(kAnyRun);
        } else if (c == U'_') {
            out.elements.push_back(kAnyOne);
        } else if (const char32_t f = fold(c, accentBlind); f != kDropped) {
            out.elements.push_back(f);
        }
    }
    return out;
}

bool matches(const std::vector<char32_t>& pattern, const std::vector<char32_t>& text) {
    return WildcardMatch(
        pattern, text, [](char32_t c) { return c == kAnyRun; },
        [](char32_t p, char32_t t) { return p == kAnyOne || p == t; });
}

} // namespace likepattern
