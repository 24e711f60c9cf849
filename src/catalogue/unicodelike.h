#pragma once

struct sqlite3;

// SQLite's own LIKE ignores case for the 26 ASCII letters only: "ärzte" would
// not find "Die Ärzte", nor "песня" "ПЕСНЯ". The catalogue's connection gets
// a LIKE of its own that ignores case for every letter (by Unicode's simple
// case folding) and keeps everything else of the operator: "%" for any run of
// characters, "_" for exactly one character (not one byte), an optional
// one-character ESCAPE, NULL for a NULL operand, and SQLite's limit on the
// pattern's length. Accents count ("Edith" does not match "Édith") unless
// the host has asked for accent-blind searching.
//
// Returns false when SQLite refused the function (the connection then keeps
// its own LIKE).
bool InstallUnicodeLike(sqlite3* db);

// Whether the catalogue's LIKE ignores accents ("beyonce" finds "Beyoncé"),
// for every connection of the process; off until set.
void SetAccentBlindLike(bool on);
bool AccentBlindLike();
