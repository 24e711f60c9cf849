#pragma once

#include <QString>

// The song lists of the options screen's database page: what "Show" lists for
// each entry of its choice box, and the writing of a list to "SongExport.csv".
class SongList {
public:
    enum Kind { AllSongs = 0, AllSongsNoDuplicates = 1, SongsWithErrors = 2 };

    static inline const QString kFileName = QStringLiteral("SongExport.csv");

    // The statement that fills the list. The list without duplicates reads
    // tblDedup, which the caller builds first.
    static QString statement(Kind kind);

    // Writes every row of `sql` to `path`: a header line of the statement's
    // column names, then the rows, texts quoted and numbers bare. False with
    // `error` set when the statement or the file failed; the old file then
    // stays as it was. An empty statement (a list never filled) gives an
    // empty file.
    static bool write(const QString& sql, const QString& path, QString* error);
};
