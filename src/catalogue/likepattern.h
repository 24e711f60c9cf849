#pragma once

#include <string>
#include <string_view>
#include <vector>

// The rules of the catalogue's LIKE, shared by the SQL function and by the
// in-memory song index, so that both give the same answer for every text:
// each character is folded by Unicode's simple case folding (and, when the
// host asks for it, stripped of its accents), "%" stands for any run of
// characters and "_" for exactly one character (not one byte).
namespace likepattern {

// Pattern elements above every character stand for the two wildcards.
constexpr char32_t kAnyRun = 0x200000;
constexpr char32_t kAnyOne = 0x200001;
constexpr char32_t kBadByte = 0xFFFD;
// What fold() gives for a character that an accent-blind compare drops (a
// combining accent standing on its own).
constexpr char32_t kDropped = 0x200002;

// Decodes one character of UTF-8 at `p` (before `end`) and moves past it. A
// stray or cut byte reads as one replacement character, so that no input can
// stop the scan.
char32_t nextCodePoint(const unsigned char*& p, const unsigned char* end);
// Appends the UTF-8 form of `c` (up to 21 bits; 0xFF never occurs in it).
void appendUtf8(char32_t c, std::string& out);

// The folded form of one character: its case fold, and with `accentBlind`
// also its base letter ("É" gives "e"), or kDropped for a lone accent.
char32_t fold(char32_t c, bool accentBlind);
// The folded characters of a UTF-8 text, into `out` (cleared first).
void foldText(const unsigned char* p, int bytes, bool accentBlind, std::vector<char32_t>& out);
// The folded text as UTF-8, appended to `out`.
void foldTextUtf8(const unsigned char* p, int bytes, bool accentBlind, std::string& out);

// A pattern as folded characters and wildcards.
struct Pattern {
    std::vector<char32_t> elements;
    // An escape as the pattern's last character escapes nothing: no text
    // matches such a pattern, as with SQLite's own LIKE.
    bool neverMatches = false;
};
Pattern compile(const unsigned char* p, int bytes, bool accentBlind, char32_t escape = 0,
                bool hasEscape = false);
// Whether the folded `text` matches the pattern's elements.
bool matches(const std::vector<char32_t>& pattern, const std::vector<char32_t>& text);

} // namespace likepattern
