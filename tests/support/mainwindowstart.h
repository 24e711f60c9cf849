#pragma once

// The main window brought up the way the program brings it up, for the tests
// that drive it whole: a fresh working folder with a quiet player, settings
// written into it before the start, and the start-up run to its end.

#include "core/appsettings.h"
#include "core/cinifile.h"
#include "screens/frmmain.h"
#include "workspace.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QTest>

namespace kvtest {

// Empties the working folder, resets the start-up values and seeds the folder
// as a first start would, with a player that makes no sound; then writes each
// `settings` pair (name, value) into the [Settings] section.
inline void seedMainWorkspace(const QList<QPair<QString, QString>>& settings = {}) {
    TestWorkspace::wipe();
    Cfg = AppSettings();
    TestWorkspace::seedWithQuietPlayer();
    CIniFile ini;
    ini.setFileName(TestWorkspace::workingFolder() + QStringLiteral("settings.ini"));
    for (const auto& [name, value] : settings)
        ini.SaveStringValue(QStringLiteral("Settings"), name, value);
}

// Runs the whole start-up of `w` without the splash screen's pause and waits
// until the window is ready; false when the start-up refused or never ended.
inline bool startMainWindow(frmMain& w, const QString& commandLine = {}, int waitMs = 8000) {
    w.setSplashMinimumMs(0);
    return w.Form_Load(commandLine) && QTest::qWaitFor([&] { return w.isReady(); }, waitMs);
}

} // namespace kvtest
