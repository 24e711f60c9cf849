#include "unicodelike.h"

#include "likepattern.h"

#include <QChar>

#include <atomic>
#include <sqlite3.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace {

using likepattern::kAnyRun;
using likepattern::nextCodePoint;

std::atomic<bool> g_accentBlind{false};

// A pattern compiled once per statement: folded literals and wildcards.
struct CompiledPattern {
    std::vector<char32_t> elements;
    bool accentBlind = false;
    bool hasEscape = false;
    char32_t escape = 0;
    bool neverMatches = false;
    // The shape of every typed search, "%words%" (or without either "%"),
    // with ASCII words: on an ASCII text it is a plain search for `literal`.
    bool plainAscii = false;
    bool anyBefore = false;
    bool anyAfter = false;
    std::string literal;
    // What the scan for a candidate stops at: the literal's first letter in
    // both cases, and the first bytes of the letters beyond ASCII that fold
    // to an ASCII one.
    std::string stops;
};

// The letters beyond ASCII that fold to ASCII ones ("ſ" to "s", the Kelvin
// sign to "k"), found once from the folding table itself.
const std::vector<char32_t>& lettersFoldingToAscii() {
    static const std::vector<char32_t> letters = [] {
        std::vector<char32_t> out;
        for (char32_t c = 0x80; c <= 0x10FFFF; ++c)
            if ((c < 0xD800 || c > 0xDFFF) && QChar::toCaseFolded(c) < 0x80)
                out.push_back(c);
        return out;
    }();
    return letters;
}

// The first byte of the UTF-8 form of `c` (which is beyond ASCII).
char leadByte(char32_t c) {
    if (c < 0x800)
        return char(0xC0 | (c >> 6));
    if (c < 0x10000)
        return char(0xE0 | (c >> 12));
    return char(0xF0 | (c >> 18));
}

// The capital of an ASCII letter; anything else as it is. (The C library's
// toupper follows the locale, and a Turkish one has no capital for "i".)
unsigned char upperAscii(char c) {
    const auto b = static_cast<unsigned char>(c);
    return (b >= 'a' && b <= 'z') ? b - 32 : b;
}

// Notes whether the compiled pattern has the plain shape.
void notePlainShape(CompiledPattern& c) {
    const auto& e = c.elements;
    const size_t from = (!e.empty() && e.front() == kAnyRun) ? 1 : 0;
    size_t to = e.size();
    if (to > from && e.back() == kAnyRun)
        --to;
    for (size_t i = from; i < to; ++i) {
        if (e[i] >= 0x80)
            return; // a wildcard or a letter beyond ASCII
        c.literal.push_back(char(e[i]));
    }
    c.anyBefore = from == 1;
    c.anyAfter = to < e.size();
    c.plainAscii = true;
    if (!c.literal.empty()) {
        c.stops.push_back(c.literal[0]);
        c.stops.push_back(char(upperAscii(c.literal[0])));
        for (char32_t letter : lettersFoldingToAscii())
            if (c.stops.find(leadByte(letter)) == std::string::npos)
                c.stops.push_back(leadByte(letter));
    }
}

// Whether the bytes at `p` begin with the lower-case ASCII `word`, ignoring case.
bool equalsFolded(const unsigned char* p, std::string_view word) {
    for (size_t i = 0; i < word.size(); ++i)
        if (p[i] != static_cast<unsigned char>(word[i]) && p[i] != upperAscii(word[i]))
            return false;
    return true;
}

bool hasNonAscii(const unsigned char* p, int bytes) {
    unsigned char seen = 0;
    for (int i = 0; i < bytes; ++i)
        seen |= p[i];
    return (seen & 0x80) != 0;
}

// Matches a plain pattern on the bytes of the text. A match found among ASCII
// characters is a match; no match is only sure when the text holds nothing
// but ASCII (a few other letters fold to ASCII ones). Returns 1, 0, or -1 for
// "let the general match decide".
int plainMatch(const CompiledPattern& c, const unsigned char* p, int bytes) {
    const std::string_view word(c.literal);
    const auto n = size_t(bytes);
    bool found = false;
    if (!c.anyBefore) {
        found = n >= word.size() && equalsFolded(p, word) && (c.anyAfter || n == word.size());
    } else if (!c.anyAfter) {
        found = n >= word.size() && equalsFolded(p + n - word.size(), word);
    } else if (word.empty()) {
        found = true;
    } else {
        // Candidates are found as SQLite's own LIKE finds them: a fast scan
        // for the first letter in either case, then a comparison. The scan
        // also stops at a letter that folds to ASCII, which only the general
        // match can weigh.
        const char* at = reinterpret_cast<const char*>(p);
        const char* end = at + n;
        while (!found) {
            at += std::strcspn(at, c.stops.c_str());
            if (at >= end)
                return 0;
            const auto* here = reinterpret_cast<const unsigned char*>(at);
            if (*here >= 0x80) {
                const unsigned char* next = here;
                const char32_t letter = nextCodePoint(next, p + n);
                for (char32_t special : lettersFoldingToAscii())
                    if (letter == special)
                        return -1;
            } else if (*here != 0 && size_t(end - at) >= word.size()) {
                found = equalsFolded(here, word);
            }
            ++at;
        }
    }
    if (found)
        return 1;
    return hasNonAscii(p, bytes) ? -1 : 0;
}

CompiledPattern compile(const unsigned char* p, int bytes, char32_t escape, bool hasEscape,
                        bool accentBlind) {
    CompiledPattern out;
    out.hasEscape = hasEscape;
    out.escape = escape;
    out.accentBlind = accentBlind;
    likepattern::Pattern compiled = likepattern::compile(p, bytes, accentBlind, escape, hasEscape);
    out.neverMatches = compiled.neverMatches;
    out.elements = std::move(compiled.elements);
    if (!out.neverMatches)
        notePlainShape(out);
    return out;
}

void deleteCompiled(void* p) {
    delete static_cast<CompiledPattern*>(p);
}

// like(pattern, text) and like(pattern, text, escape), as SQLite calls them
// for "text LIKE pattern [ESCAPE escape]".
void likeFunction(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    for (int i = 0; i < argc; ++i) {
        if (sqlite3_value_type(argv[i]) == SQLITE_NULL) {
            sqlite3_result_null(ctx);
            return;
        }
    }
    char32_t escape = 0;
    const bool hasEscape = argc == 3;
    if (hasEscape) {
        const auto* e = sqlite3_value_text(argv[2]);
        const int bytes = sqlite3_value_bytes(argv[2]);
        const unsigned char* p = e;
        escape = bytes > 0 ? nextCodePoint(p, e + bytes) : 0;
        if (bytes == 0 || p != e + bytes) {
            sqlite3_result_error(ctx, "ESCAPE expression must be a single character", -1);
            return;
        }
    }

    // The pattern is the same for every row of a search: it is compiled for
    // the first row and kept by SQLite for the others. SQLite may drop what it
    // is given to keep at once, so it is handed over after the last use.
    const bool accentBlind = g_accentBlind.load(std::memory_order_relaxed);
    const auto* kept = static_cast<const CompiledPattern*>(sqlite3_get_auxdata(ctx, 0));
    if (kept && (kept->hasEscape != hasEscape || kept->escape != escape || kept->accentBlind != accentBlind))
        kept = nullptr;
    std::unique_ptr<CompiledPattern> fresh;
    if (!kept) {
        const unsigned char* patternText = sqlite3_value_text(argv[0]);
        const int patternBytes = patternText ? sqlite3_value_bytes(argv[0]) : 0;
        if (patternBytes >
            sqlite3_limit(sqlite3_context_db_handle(ctx), SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1)) {
            sqlite3_result_error(ctx, "LIKE or GLOB pattern too complex", -1);
            return;
        }
        fresh = std::make_unique<CompiledPattern>(
            compile(patternText, patternBytes, escape, hasEscape, accentBlind));
    }
    const CompiledPattern& pattern = kept ? *kept : *fresh;
    const unsigned char* textBytes = sqlite3_value_text(argv[1]);
    const int textLength = sqlite3_value_bytes(argv[1]);
    if (!textBytes) // an empty blob may give no pointer at all
        textBytes = reinterpret_cast<const unsigned char*>("");
    int result = pattern.neverMatches ? 0
                 : pattern.plainAscii ? plainMatch(pattern, textBytes, textLength)
                                      : -1;
    // Ignoring accents, any letter beyond ASCII may stand for an ASCII one:
    // only a match is sure without the general compare.
    if (result == 0 && accentBlind && hasNonAscii(textBytes, textLength))
        result = -1;
    if (result < 0) {
        thread_local std::vector<char32_t> text;
        likepattern::foldText(textBytes, textLength, accentBlind, text);
        result = likepattern::matches(pattern.elements, text) ? 1 : 0;
    }
    sqlite3_result_int(ctx, result);
    if (fresh)
        sqlite3_set_auxdata(ctx, 0, fresh.release(), deleteCompiled);
}

} // namespace

bool InstallUnicodeLike(sqlite3* db) {
    if (!db)
        return false;
    constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    return sqlite3_create_function_v2(db, "like", 2, kFlags, nullptr, likeFunction, nullptr, nullptr,
                                      nullptr) == SQLITE_OK &&
           sqlite3_create_function_v2(db, "like", 3, kFlags, nullptr, likeFunction, nullptr, nullptr,
                                      nullptr) == SQLITE_OK;
}

void SetAccentBlindLike(bool on) {
    g_accentBlind.store(on, std::memory_order_relaxed);
}

bool AccentBlindLike() {
    return g_accentBlind.load(std::memory_order_relaxed);
}
