#include "globals.h"

#include "capplicationpaths.h"
#include "cinifile.h"

std::unique_ptr<cApplicationPaths> oApplicationPaths;
std::unique_ptr<CIniFile> oSettings;
QString WorkingFolder;
bool IsFirstStart = false;
