#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringList>
#include <variant>

// The lines of the CSV files the program writes (the history export, the song
// list): UTF-8 without a byte-order mark, CRLF at the end of every line, every
// text field in double quotes with its inner quotes doubled, numbers bare. A
// spreadsheet, Python's csv module and our own reader all read them back.
class CsvWriter {
public:
    using Field = std::variant<QString, qint64>;

    // One line with its CRLF.
    static QByteArray line(const QList<Field>& fields);
    // A header line: every caption quoted.
    static QByteArray header(const QStringList& captions);
    // One text field, quoted.
    static QByteArray quoted(const QString& text);
    // Appends UTF-8 text to `line` as one quoted field.
    static void appendQuoted(QByteArray& line, QByteArrayView utf8);
};
