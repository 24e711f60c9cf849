#include "kvtool.h"

#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songsearch.h"
#include "core/appsettings.h"
#include "core/kverror.h"
#include "core/settings.h"

#include <QTextStream>

namespace kvtool {

namespace {

// A cell on one line of the output: tabs and line ends would break the columns.
QString cell(QString text) {
    for (QChar& c : text)
        if (c == u'\t' || c == u'\n' || c == u'\r')
            c = u' ';
    return text;
}

} // namespace

// Prints the rows that the search box would list for the words, joined by
// single blanks as if typed, one row a line with the cells separated by tabs:
// track id, artist, track, disc, number.
int runSearch(const QStringList& args) {
    QTextStream out(stdout);
    QTextStream err(stderr);
    if (args.isEmpty()) {
        err << "usage: korvane-tool search WORDS...\n";
        return 2;
    }
    const QString text = args.join(QLatin1Char(' '));
    if (SongSearch::hasRefusedCharacter(text)) {
        err << "korvane-tool: the search cannot take the characters [ | * /\n";
        return 2;
    }
    if (SongSearch::trimBlanks(text).isEmpty()) {
        err << "korvane-tool: nothing to search for\n";
        return 2;
    }
    if (!openWorkingFolder(CatalogueUse::Read))
        return 1;
    try {
        Cfg.IncludeSongPath = settings::readBool(keys::IncludeSongPath);
        SearchResultsModel rows;
        rows.load(dbConnection(), SongSearch::filterSql(SongSearch::filterList(text, Cfg.IncludeSongPath)));
        int printed = 0;
        for (;;) {
            for (; printed < rows.rowCount(); ++printed) {
                out << rows.trackId(printed);
                for (int c = 1; c < SearchResultsModel::kColumns; ++c)
                    out << '\t' << cell(rows.data(rows.index(printed, c)).toString());
                out << '\n';
            }
            if (!rows.canFetchMore())
                break;
            rows.fetchMore();
        }
        out.flush();
    } catch (const KvError& e) {
        err << "korvane-tool: the search failed: " << e.description() << "\n";
        return 1;
    }
    return 0;
}

} // namespace kvtool
