// korvane-tool: the catalogue work of Korvane without a screen, on the same
// working folder as the program.
//   korvane-tool import FOLDER --convention N [--kamikaze]
//   korvane-tool search WORDS...
//   korvane-tool export songs|dedup|songbook FILE [--case upper|lower] [--email ADDRESS]
//   korvane-tool history export FILE [--singer NAME] [--no-dups]
//   korvane-tool history import FILE
#include "kvtool.h"

#include "catalogue/songindexkeeper.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    // One command and out: an index read in the background would only take
    // a core from the command's own work.
    SongIndexKeeper::instance().setReadsOnItsOwn(false);
    QStringList args = app.arguments().mid(1);
    QTextStream err(stderr);
    if (args.isEmpty()) {
        err << "usage: korvane-tool import FOLDER --convention N [--kamikaze]\n"
               "       korvane-tool search WORDS...\n"
               "       korvane-tool export songs|dedup|songbook FILE [--case upper|lower] [--email "
               "ADDRESS]\n"
               "       korvane-tool history export FILE [--singer NAME] [--no-dups]\n"
               "       korvane-tool history import FILE\n";
        return 2;
    }
    const QString command = args.takeFirst();
    if (command == QLatin1String("import"))
        return kvtool::runImport(args);
    if (command == QLatin1String("search"))
        return kvtool::runSearch(args);
    if (command == QLatin1String("export"))
        return kvtool::runExport(args);
    if (command == QLatin1String("history"))
        return kvtool::runHistory(args);
    err << "korvane-tool: unknown command " << command << "\n";
    return 2;
}
