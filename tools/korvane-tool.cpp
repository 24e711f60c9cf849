// korvane-tool: the catalogue work of Korvane without a screen, on the same
// working folder as the program.
//   korvane-tool import FOLDER --convention N [--kamikaze]
//   korvane-tool search WORDS...
#include "kvtool.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    QTextStream err(stderr);
    if (args.isEmpty()) {
        err << "usage: korvane-tool import FOLDER --convention N [--kamikaze]\n"
               "       korvane-tool search WORDS...\n";
        return 2;
    }
    const QString command = args.takeFirst();
    if (command == QLatin1String("import"))
        return kvtool::runImport(args);
    if (command == QLatin1String("search"))
        return kvtool::runSearch(args);
    err << "korvane-tool: unknown command " << command << "\n";
    return 2;
}
