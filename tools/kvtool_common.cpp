#include "kvtool.h"

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/consoleprompts.h"
#include "core/globals.h"
#include "core/startupsettings.h"
#include "core/workingfolder.h"

#include <QTextStream>

namespace kvtool {

bool openWorkingFolder() {
    static ConsolePrompts console;
    setPrompts(&console);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    if (!SettingsFileCanBeRead())
        return false;
    return OpenDatabase();
}

} // namespace kvtool
