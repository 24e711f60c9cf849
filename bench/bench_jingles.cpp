// Figures of the jingle bank against a real engine (silent):
//  - a click on a fill button until the engine reports state 1 (playing),
//    with the engine free and with another jingle sounding (target: under 150 ms);
//  - the same until the engine has opened the file and reads a position.
// Each figure is the median of several runs. Runs in a private home folder.

#include "../tests/support/playbackmedia.h"
#include "benchcommon.h"

#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/settings.h"
#include "core/workingfolder.h"
#include "jingles/jinglebank.h"
#include "jingles/jingleplayer.h"
#include "playback/winamp_control.h"

#include <QApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
}

} // namespace

int main(int argc, char** argv) {
    const QString h = bench::privateHome().path();
    QApplication app(argc, argv);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();

    std::printf("making media...\n");
    const QString media = h + "/media";
    QDir().mkpath(media);
    for (int i = 0; i < 2; ++i) {
        const QString path = media + QStringLiteral("/Jingle %1.mp3").arg(i);
        if (!playbackmedia::makeMp3(path, 20.0, 128)) {
            std::printf("no mp3 encoder (ffmpeg or mpv) worked\n");
            return 1;
        }
        settings::writeText(keys::Jingle[size_t(i)], path);
    }
    const QString wrapper = playbackmedia::writePlayerWrapper(media);

    WinAMP_Control karaoke; // not started: the bank's fade rule finds no track
    JinglePlayer jingles;
    JingleBank bank(jingles, karaoke);
    bank.InitBacking(wrapper);
    if (!jingles.isRunning()) {
        std::printf("the jingle engine did not start\n");
        return 1;
    }
    bank.InitialiseJingles();

    constexpr int kRuns = 11;
    std::vector<double> freeToPlaying, busyToPlaying, toOpened;
    for (int run = 0; run < 2 * kRuns; ++run) {
        const bool busy = run % 2 == 1; // every second click lands on a sounding jingle
        if (!busy)
            jingles.PlayerStop();
        QElapsedTimer t;
        t.start();
        bank.cmdJingle_Click(run % 2);
        while (jingles.PlayerState() != 1 && t.elapsed() < 5000) {
        }
        (busy ? busyToPlaying : freeToPlaying).push_back(t.nsecsElapsed() / 1e6);
        while (jingles.instance().property(QStringLiteral("time-pos")).value_or(QJsonValue()).toDouble(-1) <
                   0 &&
               t.elapsed() < 5000) {
        }
        toOpened.push_back(t.nsecsElapsed() / 1e6);
    }
    bench::print("click to PLAYING, engine free (median of 11)", median(freeToPlaying), "ms", 150);
    bench::print("click to PLAYING, jingle sounding (median of 11)", median(busyToPlaying), "ms", 150);
    std::printf("click to file opened (position readable): median %.1f ms over %d clicks\n", median(toOpened),
                2 * kRuns);
    return 0;
}
