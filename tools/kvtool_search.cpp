#include "kvtool.h"

#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songindexkeeper.h"
#include "catalogue/songrowsource.h"
#include "catalogue/songsearch.h"
#include "catalogue/unicodelike.h"
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
        // The search box's own way to its rows: the song index when there is
        // one in step with the catalogue, else the statement.
        // The index the program saved beside the catalogue, when it still
        // fits the catalogue.
        std::unique_ptr<SongRowSource> rows;
        if (!Cfg.IncludeSongPath && SongIndexKeeper::instance().loadSaved(AccentBlindLike()))
            rows = IndexedSearch(dbConnection(), SongSearch::searchWords(text));
        if (!rows)
            rows = std::make_unique<StatementRowSource>(
                dbConnection(), SongSearch::filterSql(SongSearch::filterList(text, Cfg.IncludeSongPath)));
        qint64 id = 0;
        CompactRowStore::Texts texts;
        for (qint64 printed = 1; rows->next(id, texts); ++printed) {
            out << id;
            for (const QString& t : texts)
                out << '\t' << cell(t);
            out << '\n';
            // Each row goes out as it is read, a screenful at a time, so that
            // a reader that wants only the first rows has them at once.
            if (printed % SearchResultsModel::kDefaultBlockSize == 1)
                out.flush();
        }
        out.flush();
    } catch (const KvError& e) {
        err << "korvane-tool: the search failed: " << e.description() << "\n";
        return 1;
    }
    return 0;
}

} // namespace kvtool
