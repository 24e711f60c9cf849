#pragma once

#include <QList>
#include <QString>

// The text side of the typed song search: how the words of the search box
// become the condition and the statement of the results list, which characters
// the search refuses, and the column layout of the results list. Nothing here
// touches a widget or the database.
class SongSearch {
public:
    // The search modes. Only ByFileName is ever selected; the others keep their
    // conditions for a search on one column.
    enum Mode { ByFileName = 0, ByDiscName = 1, ByArtistName = 2, ByTrackName = 3 };

    // The layout of the results list: one "|"-separated entry a column, each a
    // caption and a width followed by fields of the list itself.
    static const QString kResultsFormat;
    struct Column {
        QString caption;
        int width = 0;
    };
    static QList<Column> resultColumns();

    // Column widths of the results list in settings.ini.
    static const QString kColumnsSaveFallback; // written when the widths cannot be
    // The widths of a SearchColumns text in order, up to the first element that
    // is not a width (an empty element, a word, a negative number): the list
    // takes the widths before it and keeps its own for the rest.
    static QList<int> leadingWidths(const QString& text);
    // Joins widths as SearchColumns keeps them: ";" after each of the first four
    // and nothing after the fifth or later ones.
    static QString joinWidths(const QList<int>& widths);

    // True when the text holds a character that the search refuses: "[", "|", "*", "/".
    static bool hasRefusedCharacter(const QString& text);
    // The text with its last character cut (whichever it is).
    static QString cutLastCharacter(const QString& text);

    // Blanks only, as the search counts them (tabs and other white space stay).
    static QString trimBlanks(const QString& text);
    static QString leftTrimBlanks(const QString& text);

    // The condition of a file-name search: every word must be found in the file
    // name (or the whole path), and songs marked as faulty are left out.
    static QString filterList(const QString& text, bool includeSongPath);
    // The words of a file-name search, each of which filterList looks for.
    static QStringList searchWords(const QString& text);
    // The condition for a mode; ByFileName is filterList.
    static QString condition(int mode, const QString& text, bool includeSongPath);

    // The statement of a typed search with its condition.
    static QString filterSql(const QString& condition);
    // The statement that lists the whole catalogue, faulty songs included.
    static QString loadAllSql();

    // Search as you type waits this long after the last change, and starts
    // from this many characters counted after leading blanks.
    static constexpr int kTypingDelayMs = 500;
    static constexpr int kTypingMinimumLength = 4;
};
