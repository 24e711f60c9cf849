#include "propercase.h"

namespace {

bool isApostrophe(QChar c) {
    return c == QLatin1Char('\'') || c == QChar(0x2019);
}

} // namespace

QString ProperCase(const QString& text) {
    QString out = text.toLower();
    bool wordStart = true;
    int lettersInWord = 0;
    for (qsizetype i = 0; i < out.size(); ++i) {
        const QChar c = out.at(i);
        if (c.isLetter()) {
            if (wordStart)
                out[i] = c.toTitleCase();
            wordStart = false;
            ++lettersInWord;
        } else if (c.isSpace() || c == QLatin1Char('-')) {
            wordStart = true;
            lettersInWord = 0;
        } else if (isApostrophe(c)) {
            wordStart = lettersInWord == 1;
            lettersInWord = 0;
        } else if (c.isDigit()) {
            // "2nd" stays as it is: a word that starts with a digit has started.
            wordStart = false;
            lettersInWord = 0;
        } else if (!c.isMark()) {
            lettersInWord = 0;
        }
    }
    return out;
}
