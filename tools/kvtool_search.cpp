#include "kvtool.h"

#include <QTextStream>

namespace kvtool {

int runSearch(const QStringList&) {
    QTextStream(stderr) << "korvane-tool: search is not built yet\n";
    return 1;
}

} // namespace kvtool
