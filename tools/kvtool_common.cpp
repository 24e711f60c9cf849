#include "kvtool.h"

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/consoleprompts.h"
#include "core/globals.h"
#include "core/pathhelpers.h"
#include "core/startupsettings.h"
#include "core/workingfolder.h"
#include "core/workingfolderlock.h"

#include <QTextStream>

namespace kvtool {

namespace {
// Held from the moment an import takes the working folder to the tool's exit.
std::unique_ptr<WorkingFolderLock> g_lock;
} // namespace

bool openWorkingFolder(CatalogueUse use) {
    static ConsolePrompts console;
    setPrompts(&console);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    if (use == CatalogueUse::Write) {
        const QString folder = AddBackslash(oApplicationPaths->ApplicationDataPath());
        g_lock = std::make_unique<WorkingFolderLock>(folder);
        if (!g_lock->tryLock()) {
            QTextStream err(stderr);
            err << "korvane-tool: ";
            if (g_lock->heldByAnother())
                err << "the working folder is in use by " << g_lock->holder() << "; nothing was imported";
            else
                err << "cannot make the lock file in the working folder; nothing was imported";
            err << "\n  " << folder << "\n";
            g_lock.reset();
            return false;
        }
    }
    oSettings = std::make_unique<CIniFile>();
    if (!SettingsFileCanBeRead())
        return false;
    return OpenDatabase(use);
}

} // namespace kvtool
