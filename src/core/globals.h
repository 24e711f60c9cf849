#pragma once

#include <QString>
#include <memory>

class cApplicationPaths;
class CIniFile;

// The program's shared objects, created once at start-up in a fixed order and
// dropped at exit.
extern std::unique_ptr<cApplicationPaths> oApplicationPaths;
extern std::unique_ptr<CIniFile> oSettings;
// The working folder, with a trailing separator. Every data file's path starts with it.
extern QString WorkingFolder;
// True on the first start of a working folder (until the first-start block has run).
extern bool IsFirstStart;
