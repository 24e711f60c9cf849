#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <array>
#include <exception>
#include <string>

// What the cut of one song file's name gives: the six text values of its
// catalogue row, as the catalogue stores them, and what the host is to hear
// of the name. It asks nothing and touches nothing, so that it can run on any
// thread, ahead of the rows' inserts.
struct NameCut {
    enum Value { TrackName, ArtistName, DiscName, TrackNo, Filename, TrackPath };
    using Values = std::array<QByteArrayView, 6>;
    // The values in the order of Value, empty when the name could not be
    // cut. They are kept in one block: a walk holds thousands of cuts at once,
    // and each block is one allocation to make and to free.
    QByteArrayView value(int v) const {
        return QByteArrayView(m_text.data() + m_bounds[size_t(v)],
                              m_bounds[size_t(v) + 1] - m_bounds[size_t(v)]);
    }
    Values values() const;
    void setValues(const Values& values);
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

private:
    // Value v is m_text[m_bounds[v], m_bounds[v + 1]).
    std::string m_text;
    std::array<quint32, 7> m_bounds{};
};

// Cuts the file name at the end of `path` (a full path) by the file-name
// convention `convention` of FileConventions(). `pathUtf8`, when the caller
// has it at hand, is the path's UTF-8; it is made here otherwise.
NameCut CutFileName(const QString& path, int convention, QByteArrayView pathUtf8 = {});
