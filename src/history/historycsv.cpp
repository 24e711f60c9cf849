#include "historycsv.h"

#include "catalogue/database.h"
#include "core/csvreader.h"
#include "core/csvwriter.h"
#include "core/kverror.h"
#include "exports/exportfile.h"

#include <QStandardPaths>

namespace {

constexpr qint64 kRowsPerCommit = 1000;

enum Position { PosTrackPath = 0, PosSinger, PosArtist, PosTitle, PosKey, kPositions };

} // namespace

QString HistoryCsv::exportFileName(const QString& comboText) {
    return fileNameFromText(comboText) + QStringLiteral(" History.csv");
}

QString HistoryCsv::desktopFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
}

HistoryCsv::ExportOutcome HistoryCsv::write(const HistoryFilter& filter, const QString& path) {
    ExportOutcome out;
    out.path = path;
    ExportWriter writer(path);
    if (!writer.open()) {
        out.error = writer.error();
        return out;
    }
    writer.write(
        CsvWriter::header({QStringLiteral("Column1"), QStringLiteral("Singer"), QStringLiteral("Artist Name"),
                           QStringLiteral("Track Name"), QStringLiteral("Key")}));
    try {
        QSqlQuery q = HistoryStore::openList(filter);
        while (q.next()) {
            writer.write(CsvWriter::line({q.value(0).toString(), q.value(1).toString(), q.value(2).toString(),
                                          q.value(3).toString(), q.value(4).toLongLong()}));
            ++out.rows;
        }
    } catch (const KvError& e) {
        // The writer goes without commit: the file under the final name stays as it was.
        out.error = QStringLiteral("The history could not be read: %1").arg(e.description());
        out.rows = 0;
        return out;
    }
    if (!writer.commit()) {
        out.error = writer.error();
        out.rows = 0;
        return out;
    }
    out.written = true;
    return out;
}

HistoryCsv::ExportOutcome HistoryCsv::exportToFolder(const HistoryFilter& filter, const QString& comboText,
                                                     const QString& folder) {
    QString error;
    const QString path = exportPathIn(folder, exportFileName(comboText), &error);
    if (path.isEmpty()) {
        ExportOutcome out;
        out.error = error;
        return out;
    }
    return write(filter, path);
}

bool HistoryCsv::rowFromFields(const QStringList& fields, HistoryRow* row, QString* error) {
    for (const QString& f : fields) {
        if (f.contains(QChar(0))) {
            *error = QStringLiteral("it holds a NUL character, so the file is not a text file");
            return false;
        }
    }
    if (fields.size() < kPositions) {
        *error = QStringLiteral("it has %1 columns where a history row has 5, so its Key is missing")
                     .arg(fields.size());
        return false;
    }
    const QString keyText = fields.at(PosKey).trimmed();
    if (keyText.isEmpty()) {
        *error = QStringLiteral("its Key is empty");
        return false;
    }
    bool ok = false;
    const qint32 key = keyText.toInt(&ok);
    if (!ok) {
        *error = QStringLiteral("its Key \"%1\" is not a whole number").arg(keyText.left(40));
        return false;
    }
    // A field the reader saw as absent arrives as a null text: it is stored as
    // an empty one, never as NULL.
    const auto text = [&](int pos) { return fields.at(pos).isNull() ? QStringLiteral("") : fields.at(pos); };
    *row = HistoryRow{text(PosSinger), text(PosArtist), text(PosTitle), key, text(PosTrackPath)};
    return true;
}

HistoryCsv::ImportOutcome HistoryCsv::read(const QString& path,
                                           const std::function<void(qint64 rows)>& afterRow) {
    ImportOutcome out;
    // Rows reach the file in groups: a commit for each row would cost ten
    // times the import itself. Nothing is ever rolled back: an error commits
    // the rows before it and ends the reading, so they stay, as they would
    // with a commit for each row.
    static const QString kSavepoint = QStringLiteral("kvHistoryImport");
    BulkWrites bulk;
    bool open = false;
    qint64 pending = 0;
    const auto commit = [&]() -> bool {
        if (!open)
            return true;
        open = false;
        try {
            ExecuteSql(QStringLiteral("RELEASE ") + kSavepoint);
        } catch (const KvError& e) {
            // The engine gave the group up itself (a full disk): its rows are gone.
            out.rows -= pending;
            out.error = QStringLiteral("The last %1 rows read from %2 could not be kept: %3")
                            .arg(pending)
                            .arg(path, e.description());
            pending = 0;
            return false;
        }
        pending = 0;
        return true;
    };
    qint64 line = 0;
    const CsvReader::Result r = CsvReader::readFile(path, [&](const QStringList& fields) {
        ++line;
        if (line == 1)
            return true; // the header line
        HistoryRow row;
        QString why;
        if (!rowFromFields(fields, &row, &why)) {
            out.error = QStringLiteral("Row %1 of %2 was not imported: %3.").arg(line).arg(path, why);
            return false;
        }
        try {
            if (!open) {
                ExecuteSql(QStringLiteral("SAVEPOINT ") + kSavepoint);
                open = true;
            }
            HistoryStore::addImported(row);
        } catch (const KvError& e) {
            out.error =
                QStringLiteral("Row %1 of %2 was not imported: %3").arg(line).arg(path, e.description());
            return false;
        }
        ++out.rows;
        ++pending;
        if (pending >= kRowsPerCommit && !commit())
            return false;
        if (afterRow)
            afterRow(out.rows);
        return true;
    });
    commit();
    if (out.error.isEmpty() && !r.ok)
        out.error = r.error;
    else if (out.error.isEmpty() && line == 0)
        out.error = QStringLiteral("%1 is empty: it has not even a header line.").arg(path);
    out.ok = out.error.isEmpty();
    return out;
}
