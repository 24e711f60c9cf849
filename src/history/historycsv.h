#pragma once

#include "historystore.h"

#include <QString>
#include <QStringList>
#include <functional>

// The history's CSV file, one form for export and import: a header line
// ("Column1","Singer","Artist Name","Track Name","Key") and one line per row
// with TrackPath, singer, artist, title and key, in CsvWriter's form. Reading
// goes by position and skips the header line whatever its words; further
// columns are ignored, so files of older installations load too.
class HistoryCsv {
public:
    static inline const QString kImportSource = QStringLiteral("KvApp.frmHistory.ImportCSV");

    struct ExportOutcome {
        bool written = false;
        qint64 rows = 0;
        QString path;  // the file written (or that would have been)
        QString error; // what went wrong, for the host; empty when written
    };
    struct ImportOutcome {
        bool ok = true;
        qint64 rows = 0; // rows added to the history, also when an error ended the reading
        QString error;   // empty when every row was read
    };

    // The name of the export of what the singer combo shows: "(All) History.csv",
    // "Ann History.csv". A "/" in the name becomes "-", so the file stays in its folder.
    static QString exportFileName(const QString& comboText);
    // The desktop folder, where the screen's export goes and its import dialog opens.
    static QString desktopFolder();

    // Writes the rows of `filter`, in the list's order, to `path`: beside it
    // first, then renamed over it, so a failure leaves the old file or none.
    static ExportOutcome write(const HistoryFilter& filter, const QString& path);
    // The screen's export: the rows of `filter` to exportFileName(comboText)
    // in `folder`, which must exist.
    static ExportOutcome exportToFolder(const HistoryFilter& filter, const QString& comboText,
                                        const QString& folder);

    // Adds every row of the file at `path` to the history, one statement a
    // row, never rolled back: an error ends the reading and the rows before it
    // stay. `afterRow` runs after each row added (the screen lets pending
    // events through there). Writes no log; the caller does.
    static ImportOutcome read(const QString& path, const std::function<void(qint64 rows)>& afterRow = {});

    // The record of one line's fields; false with `error` set when the line
    // is no history row (the key missing, empty or no whole number, text that
    // holds a NUL character).
    static bool rowFromFields(const QStringList& fields, HistoryRow* row, QString* error);
};
