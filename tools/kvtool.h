#pragma once

#include "catalogue/database.h"

#include <QStringList>

namespace kvtool {

// Makes the shared objects as the program's start-up does (paths, the seeded
// working folder, settings) and opens the catalogue; false with a message on
// standard error when the catalogue cannot be opened. To write, the tool
// first takes the working folder's lock, and is refused while Korvane or
// another import holds it; reading needs no lock.
bool openWorkingFolder(CatalogueUse use);

// The commands; each returns the process's exit code.
int runImport(const QStringList& args);
int runSearch(const QStringList& args);
int runExport(const QStringList& args);
int runHistory(const QStringList& args);

} // namespace kvtool
