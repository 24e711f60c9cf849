#include "kvtool.h"

#include "exports/deduplist.h"
#include "exports/songbook.h"
#include "exports/songlist.h"

#include <QTextStream>

namespace kvtool {

namespace {

const char* const kUsage = "usage: korvane-tool export songs FILE\n"
                           "       korvane-tool export dedup FILE [--case upper|lower]\n"
                           "       korvane-tool export songbook FILE [--email ADDRESS]\n";

// The value after `flag`, taken out of `args`; `ok` false when the flag
// stands without a value.
QString takeOption(QStringList& args, const QString& flag, bool* ok) {
    const qsizetype at = args.indexOf(flag);
    if (at < 0)
        return {};
    if (at + 1 >= args.size()) {
        *ok = false;
        return {};
    }
    const QString value = args.at(at + 1);
    args.remove(at, 2);
    return value;
}

} // namespace

// Writes a song list, the list without duplicates or a songbook to FILE, in
// the forms the options screen writes them: for a host who publishes the list
// every night from a scheduled job.
int runExport(const QStringList& arguments) {
    QTextStream err(stderr);
    QStringList args = arguments;
    bool ok = true;
    const QString caseMode = takeOption(args, QStringLiteral("--case"), &ok);
    const QString email = takeOption(args, QStringLiteral("--email"), &ok);
    if (!ok || args.size() != 2 ||
        (!caseMode.isEmpty() && caseMode != QLatin1String("upper") && caseMode != QLatin1String("lower"))) {
        err << kUsage;
        return 2;
    }
    const QString kind = args.at(0);
    const QString file = args.at(1);
    QString error;
    if (kind == QLatin1String("songs")) {
        if (!openWorkingFolder(CatalogueUse::Read))
            return 1;
        if (!SongList::write(SongList::statement(SongList::AllSongs), file, &error)) {
            err << "korvane-tool: the song list was not written: " << error << "\n";
            return 1;
        }
        return 0;
    }
    if (kind == QLatin1String("dedup")) {
        // The list is built in a table of the catalogue: that is writing.
        if (!openWorkingFolder(CatalogueUse::Write))
            return 1;
        DedupList::BuildDedupTable();
        const auto mode = caseMode == QLatin1String("upper")   ? DedupList::CaseMode::Upper
                          : caseMode == QLatin1String("lower") ? DedupList::CaseMode::Lower
                                                               : DedupList::CaseMode::LeaveAlone;
        if (!DedupList::ExportDedup(file, mode, {}, &error)) {
            err << "korvane-tool: the list was not written: " << error << "\n";
            return 1;
        }
        return 0;
    }
    if (kind == QLatin1String("songbook")) {
        if (!openWorkingFolder(CatalogueUse::Read))
            return 1;
        const Songbook::Outcome out = Songbook::write(file, !email.isEmpty(), email);
        if (!out.written) {
            err << "korvane-tool: the songbook was not written: " << out.error << "\n";
            return 1;
        }
        return 0;
    }
    err << kUsage;
    return 2;
}

} // namespace kvtool
