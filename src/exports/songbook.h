#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <functional>

// The songbook: the catalogue's artists, titles and discs in a small SQLite
// file (".kbd") that a phone app searches. The file's schema below is its
// format; another program reads it, so it stays exactly as it stands.
class Songbook {
public:
    static inline const QString kSource = QStringLiteral("KvAppPlus.frmOptions.cmdExportForMobile_Click");
    static inline const QString kExtension = QStringLiteral(".kbd");

    // Told the count so far and the total; returns false to cancel.
    using Progress = std::function<bool(qint64 done, qint64 total)>;

    struct Outcome {
        bool written = false;   // the file stands under its name
        bool cancelled = false; // the host stopped it: the file holds the songs so far
        qint64 songs = 0;
        QString error; // why nothing was written
    };

    // The songbook's path in `documents` for a title typed by the host, used
    // as typed (blanks kept). A title with a "/" or ".." in it, which could
    // put the file outside that folder, is refused: an empty path and the
    // host's message in `error`.
    static QString pathForTitle(const QString& documents, const QString& title, QString* error);
    // What is wrong with a title for that, or an empty text.
    static QString titleProblem(const QString& title);

    // The five statements that make the file's tables and indexes.
    static QStringList schema();
    // The one HostDetails row: the address goes in only when `useEmail`.
    static QString hostRow(bool useEmail, const QString& email);
    // The values of one KaraokeSongs row. They are composed as the row's text
    // always was: "%1" to "%4" replaced in turn in the whole row, so that a
    // name holding "%3" gets the disc put in its place.
    static std::array<QString, 4> songValues(const QString& artist, const QString& title,
                                             const QString& disc);

    // Writes the songbook to `path`, beside it first and renamed into place
    // at the end; an error is logged and leaves the old file as it was.
    static Outcome write(const QString& path, bool useEmail, const QString& email,
                         const Progress& progress = {});
};
