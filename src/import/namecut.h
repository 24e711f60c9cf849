#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <exception>

// What the cut of one song file's name gives: the six text values of its
// catalogue row, as the catalogue stores them, and what the host is to hear
// of the name. It asks nothing and touches nothing, so that it can run on any
// thread, ahead of the rows' inserts.
struct NameCut {
    enum Value { TrackName, ArtistName, DiscName, TrackNo, Filename, TrackPath };
    std::array<QByteArray, 6> values;
    // The convention that cut the name.
    int convention = 0;
    // How many times a statement of the convention read a piece the name
    // lacks. Each is one question to the host (unless the host has said no
    // more) and one more file counted, as the import has always counted.
    int missingPieces = 0;
    // The name as that question shows it: underscores made blanks.
    QString shownName;
    // Set when the name could not be cut at all: the file is passed over.
    std::exception_ptr failure;
};

// Cuts the file name at the end of `path` (a full path) by the file-name
// convention `convention` of FileConventions(). `pathUtf8`, when the caller
// has it at hand, is the path's UTF-8; it is made here otherwise.
NameCut CutFileName(const QString& path, int convention, QByteArray pathUtf8 = {});
