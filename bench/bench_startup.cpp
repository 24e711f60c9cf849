// Start-up to the main window being ready (without the splash's fixed wait),
// on an empty catalogue and on one of 1,000,000 songs; and the compaction of
// the 1,000,000-song catalogue.
#include "benchcommon.h"

#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/consoleprompts.h"
#include "core/globals.h"
#include "core/prompts.h"
#include "core/workingfolder.h"
#include "playback/winamp_control.h"
#include "screens/frmmain.h"
#include "screens/mainparts.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>

#include <algorithm>
#include <vector>

namespace {

struct StartTimes {
    double ready = 0;  // the main window ready for the host
    double player = 0; // the karaoke player answering, in the background
};

// The times from the creation of the main window to its being ready, and to
// the player answering (which the window does not wait for), less the two
// fixed waits of a start: the splash's five seconds and the one second the
// player is given before it is first asked whether it is up. The close that
// follows each start is not timed.
StartTimes timeStartup() {
    std::vector<double> ready;
    std::vector<double> player;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer t;
        t.start();
        frmMain w;
        w.setSplashMinimumMs(0);
        WinAMP_Control& link = w.parts().player();
        link.setWaiter([](int) {});
        if (!w.Form_Load(QString()))
            std::printf("start-up failed\n");
        while (!w.isReady())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        ready.push_back(double(t.nsecsElapsed()) / 1e6);
        while (link.isStarting())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        player.push_back(double(t.nsecsElapsed()) / 1e6);
        if (!link.isConnected())
            std::printf("the player did not answer\n");
        w.close();
    }
    std::sort(ready.begin(), ready.end());
    std::sort(player.begin(), player.end());
    return {ready[ready.size() / 2], player[player.size() / 2]};
}

} // namespace

int main(int argc, char** argv) {
    bench::privateHome();
    QApplication app(argc, argv);

    // Seed the working folder once, as a first start would.
    static ConsolePrompts silent;
    setPrompts(&silent);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    {
        // The real player, without sound or picture; the queue of a busy night.
        const QString wrapper = bench::privateHome().path() + "/player.sh";
        QFile f(wrapper);
        f.open(QIODevice::WriteOnly);
        f.write("#!/bin/sh\nexec /usr/bin/mpv --ao=null --vo=null \"$@\"\n");
        f.close();
        f.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        CIniFile ini;
        ini.SaveStringValue("Settings", "WinAmpPath", wrapper);
    }
    const QString catalogue = oApplicationPaths->ApplicationDatabaseFile();

    const StartTimes empty = timeStartup();
    bench::print("start-up to ready, empty catalogue (median of 5)", empty.ready, "ms", 300);
    std::printf("  the player answering, in the background: %.0f ms after the start\n", empty.player);

    bench::fillCatalogue(catalogue, 1000000);
    std::printf("catalogue of 1,000,000 songs: %.0f MB\n", double(QFileInfo(catalogue).size()) / 1e6);
    const StartTimes full = timeStartup();
    bench::print("start-up to ready, 1,000,000 songs (median of 5)", full.ready, "ms", 150);
    std::printf("  the player answering, in the background: %.0f ms after the start\n", full.player);

    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    OpenDatabase();
    const double compact = bench::medianMs(3, nullptr, [] { DatabaseCompact(); });
    bench::print("DatabaseCompact of 1,000,000 songs (median of 3)", compact, "ms", 1500);
    const QString plain = catalogue + ".plain";
    const double vacuum = bench::medianMs(
        3, [&] { QFile::remove(plain); },
        [&] {
            sqlite3* db = nullptr;
            sqlite3_open(QFile::encodeName(catalogue).constData(), &db);
            const QByteArray sql = "VACUUM INTO '" + QFile::encodeName(plain) + "'";
            sqlite3_exec(db, sql.constData(), nullptr, nullptr, nullptr);
            sqlite3_close(db);
        });
    std::printf("%-58s %10.2f ms\n", "for comparison: VACUUM INTO alone", vacuum);
    CloseDatabase();
    return 0;
}
