#pragma once

#include <QString>
#include <functional>

// The settings part of the start-up: the first-start block and the reading of
// every setting into Cfg, in the order of the start-up.

// True unless the settings file is there but cannot be read; then the host is
// told once, naming the file and the reason, and the program must not go on:
// it would run without the host's settings and later write over them. A
// missing file is left to the first read, which reports it.
bool SettingsFileCanBeRead();

// Reads FirstStart into IsFirstStart; on a first start writes BGImagePath,
// MainImage and FirstStart=0 (the only settings start-up writes).
void ApplyFirstStart(const QString& documentsFolder, const QString& installFolder);

// Reads the settings of the start-up into Cfg, each as one guarded step, so
// that a bad setting costs only its own step. `source` is the error source.
void ReadStartupSettings(const QString& source);

// The second group, read after the audience window is set up.
void ReadLateStartupSettings(const QString& source);

// True when the command line asks for a reset: "/reset" anywhere in it, case
// sensitive, unless the whole command line is exactly one blank.
bool CommandLineAsksForReset(const QString& commandLine);
