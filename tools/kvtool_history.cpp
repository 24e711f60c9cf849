#include "kvtool.h"

#include "core/errorlog.h"
#include "history/historycsv.h"

#include <QTextStream>

namespace kvtool {

namespace {

const char* const kUsage = "usage: korvane-tool history export FILE [--singer NAME] [--no-dups]\n"
                           "       korvane-tool history import FILE\n";

} // namespace

// The history's CSV file without the screen, in the screen's format and by its
// rules, so that a host can move the regulars' songs between machines from a
// script. The export writes every row (of one singer with --singer), and with
// --no-dups each repeated row once, as the screen's "No Dups" does. The import
// adds the file's rows without a transaction: an error ends it, the rows
// before it stay, and the error goes to the error log as the screen's does.
int runHistory(const QStringList& arguments) {
    QTextStream out(stdout);
    QTextStream err(stderr);
    QStringList args = arguments;
    HistoryFilter filter;
    filter.singer = HistoryStore::kAll;
    filter.noDups = false;
    if (const qsizetype at = args.indexOf(QStringLiteral("--no-dups")); at >= 0) {
        filter.noDups = true;
        args.remove(at);
    }
    if (const qsizetype at = args.indexOf(QStringLiteral("--singer")); at >= 0) {
        if (at + 1 >= args.size()) {
            err << kUsage;
            return 2;
        }
        filter.singer = args.at(at + 1);
        args.remove(at, 2);
    }
    if (args.size() != 2) {
        err << kUsage;
        return 2;
    }
    const QString command = args.at(0);
    const QString file = args.at(1);
    if (command == QLatin1String("export")) {
        if (!openWorkingFolder(CatalogueUse::Read))
            return 1;
        const HistoryCsv::ExportOutcome o = HistoryCsv::write(filter, file);
        if (!o.written) {
            err << "korvane-tool: the history was not exported: " << o.error << "\n";
            return 1;
        }
        out << o.rows << " history rows written to " << o.path << "\n";
        return 0;
    }
    if (command == QLatin1String("import") && arguments.size() == 2) {
        if (!openWorkingFolder(CatalogueUse::Write))
            return 1;
        const HistoryCsv::ImportOutcome o = HistoryCsv::read(file);
        out << o.rows << " history rows imported from " << file << "\n";
        if (!o.ok) {
            LogErrorQuietly(o.error, HistoryCsv::kImportSource, 3);
            err << "korvane-tool: the import stopped: " << o.error << "\n";
            return 1;
        }
        return 0;
    }
    err << kUsage;
    return 2;
}

} // namespace kvtool
