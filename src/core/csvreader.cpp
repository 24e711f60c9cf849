#include "csvreader.h"

#include <QFile>
#include <QStringDecoder>

#include <csv.h>

namespace {

constexpr qint64 kChunk = 64 * 1024;

// Windows-1252 differs from Latin-1 in 0x80-0x9F only; the five codes it leaves
// unassigned keep their Latin-1 control characters.
constexpr char16_t kHighControls[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct ParseState {
    const CsvReader::RowHandler* onRow = nullptr;
    CsvReader::Encoding encoding = CsvReader::Encoding::Utf8;
    QStringList row;
    qint64 rows = 0;
    bool stopped = false;
    bool tooManyFields = false;
    bool fieldTooLong = false;
};

QString decodeField(const char* data, size_t len, CsvReader::Encoding encoding) {
    const QByteArrayView bytes(data, static_cast<qsizetype>(len));
    return encoding == CsvReader::Encoding::Utf8 ? QString::fromUtf8(bytes)
                                                 : CsvReader::fromWindows1252(bytes);
}

void onField(void* data, size_t len, void* user) {
    auto* s = static_cast<ParseState*>(user);
    if (s->stopped)
        return;
    if (qint64(len) > CsvReader::kMaxFieldBytes) {
        s->fieldTooLong = true;
        s->stopped = true;
        return;
    }
    if (s->row.size() >= CsvReader::kMaxFields) {
        s->tooManyFields = true;
        s->stopped = true;
        return;
    }
    s->row.append(data ? decodeField(static_cast<const char*>(data), len, s->encoding) : QString());
}

void onRowEnd(int, void* user) {
    auto* s = static_cast<ParseState*>(user);
    if (s->stopped) {
        s->row.clear();
        return;
    }
    ++s->rows;
    if (!(*s->onRow)(s->row))
        s->stopped = true;
    s->row.clear();
}

} // namespace

QString CsvReader::fromWindows1252(QByteArrayView bytes) {
    QString out(bytes.size(), Qt::Uninitialized);
    QChar* dst = out.data();
    for (char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        *dst++ = QChar(b >= 0x80 && b < 0xA0 ? kHighControls[b - 0x80] : char16_t(b));
    }
    return out;
}

bool CsvReader::isUtf8(QIODevice& device) {
    const qint64 start = device.pos();
    QStringDecoder decoder(QStringDecoder::Utf8);
    bool valid = true;
    while (valid && !device.atEnd()) {
        const QByteArray chunk = device.read(kChunk);
        if (chunk.isEmpty())
            break;
        const QString text = decoder.decode(chunk); // the decoding happens here
        (void)text;
        valid = !decoder.hasError();
    }
    // A sequence cut off by the end of the file is no UTF-8 either: a line end
    // after it shows it to the decoder, which still holds its first bytes.
    if (valid) {
        const QString text = decoder.decode(QByteArrayView("\n", 1));
        (void)text;
        valid = !decoder.hasError();
    }
    device.seek(start);
    return valid;
}

CsvReader::Result CsvReader::readDevice(QIODevice& device, const RowHandler& onRow) {
    Result result;
    if (device.peek(3) == QByteArray("\xEF\xBB\xBF", 3))
        device.read(3);
    result.encoding = isUtf8(device) ? Encoding::Utf8 : Encoding::Windows1252;

    csv_parser parser;
    if (csv_init(&parser, 0) != 0)
        return {false, QStringLiteral("The CSV reader could not start."), 0, result.encoding};
    ParseState state;
    state.onRow = &onRow;
    state.encoding = result.encoding;

    while (!state.stopped && !device.atEnd()) {
        const QByteArray chunk = device.read(kChunk);
        if (chunk.isEmpty())
            break;
        if (csv_parse(&parser, chunk.constData(), size_t(chunk.size()), onField, onRowEnd, &state) !=
            size_t(chunk.size())) {
            result.ok = false;
            result.error = QStringLiteral("The file could not be read as CSV: %1.")
                               .arg(QString::fromUtf8(csv_strerror(csv_error(&parser))));
            break;
        }
        // The parser's buffer grows to the longest field seen so far: a field
        // that never ends is caught here before it fills the memory.
        if (qint64(csv_get_buffer_size(&parser)) > kMaxFieldBytes) {
            state.fieldTooLong = true;
            break;
        }
    }
    if (result.ok && !state.stopped)
        csv_fini(&parser, onField, onRowEnd, &state);
    csv_free(&parser);
    if (result.ok && state.fieldTooLong) {
        result.ok = false;
        result.error = QStringLiteral("The file is not a song list: it holds a field longer than 1 MB.");
    } else if (result.ok && state.tooManyFields) {
        result.ok = false;
        result.error =
            QStringLiteral("The file is not a song list: a line holds more than %1 fields.").arg(kMaxFields);
    }
    result.rows = state.rows;
    return result;
}

CsvReader::Result CsvReader::readFile(const QString& path, const RowHandler& onRow) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Result r;
        r.ok = false;
        r.error = QStringLiteral("The file %1 could not be opened: %2.").arg(path, file.errorString());
        return r;
    }
    return readDevice(file, onRow);
}
