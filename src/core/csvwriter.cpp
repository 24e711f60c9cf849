#include "csvwriter.h"

QByteArray CsvWriter::quoted(const QString& text) {
    QByteArray out;
    appendQuoted(out, text.toUtf8());
    return out;
}

void CsvWriter::appendQuoted(QByteArray& line, QByteArrayView utf8) {
    line += '"';
    for (char c : utf8) {
        if (c == '"')
            line += '"';
        line += c;
    }
    line += '"';
}

QByteArray CsvWriter::line(const QList<Field>& fields) {
    QByteArray out;
    for (qsizetype i = 0; i < fields.size(); ++i) {
        if (i > 0)
            out += ',';
        if (const auto* text = std::get_if<QString>(&fields[i]))
            out += quoted(*text);
        else
            out += QByteArray::number(std::get<qint64>(fields[i]));
    }
    out += "\r\n";
    return out;
}

QByteArray CsvWriter::header(const QStringList& captions) {
    QList<Field> fields;
    fields.reserve(captions.size());
    for (const QString& c : captions)
        fields.append(c);
    return line(fields);
}
