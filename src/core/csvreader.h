#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <functional>

class QIODevice;

// Reads the CSV files a host brings back: our own exports and those of older
// installations made on Windows. Fields are comma-separated; a field in double
// quotes may hold commas, doubled quotes and line breaks; lines end in CRLF or
// LF, the last one with or without its end. A file that is valid UTF-8 (with
// or without a byte-order mark) is read as UTF-8, any other as Windows-1252,
// the code page those older files were written in.
//
// Rows are handed over one at a time, so that a large file costs the memory of
// one row. A field over kMaxFieldBytes or a row over kMaxFields ends the
// reading with an error: such a file is not a song list.
class CsvReader {
public:
    enum class Encoding { Utf8, Windows1252 };
    struct Result {
        bool ok = true;
        QString error;   // empty when ok
        qint64 rows = 0; // rows handed over, the header line included
        Encoding encoding = Encoding::Utf8;
    };
    // Receives the fields of one row; returns false to stop the reading there.
    using RowHandler = std::function<bool(const QStringList& fields)>;

    static constexpr qint64 kMaxFieldBytes = 1024 * 1024;
    static constexpr qsizetype kMaxFields = 1000;

    static Result readFile(const QString& path, const RowHandler& onRow);
    static Result readDevice(QIODevice& device, const RowHandler& onRow);

    static QString fromWindows1252(QByteArrayView bytes);
    // True when the device's bytes from its current position on are valid
    // UTF-8; leaves the position where it was.
    static bool isUtf8(QIODevice& device);
};
