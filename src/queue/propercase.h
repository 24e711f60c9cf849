#pragma once

#include <QString>

// A singer's name with each word capitalised and the rest in lower case, so
// that a name typed in any case becomes one name: "mary-jane o'brien" gives
// "Mary-Jane O'Brien". A letter after a blank or a hyphen starts a word; after
// an apostrophe only when one letter stands before it ("O'Brien", but "Don't").
QString ProperCase(const QString& text);
