#include "kvtool.h"

#include <QTextStream>

namespace kvtool {

int runImport(const QStringList&) {
    QTextStream(stderr) << "korvane-tool: import is not built yet\n";
    return 1;
}

} // namespace kvtool
