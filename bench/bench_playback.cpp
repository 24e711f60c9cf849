// Figures of the playback path against a real player (silent, without picture):
//  - from PlayKaraoke to the player reporting "PLAYING", for a zip holding a
//    5 MB mp3 and its CD+G graphics (target: under 300 ms);
//  - the same until the player has opened the file and reads a position;
//  - the GetStatus round trip (target: under 2 ms).
// Each figure is the median of several runs. Runs in a private home folder.

#include "../tests/support/playbackmedia.h"

#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/workingfolder.h"
#include "playback/modpacemaker.h"
#include "playback/playbackseams.h"
#include "playback/songstarter.h"
#include "playback/winamp_control.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
}

class OneSongQueue : public QueueAccess {
public:
    SelectedSong song;
    int rowCount() const override { return 1; }
    SelectedSong detailsFromRow(int) const override { return song; }
    int selectedRow() const override { return 0; }
    void removeRow(int) override {}
    void saveQueue() override {}
};

class NoView : public NowPlayingView {
public:
    QString key = QStringLiteral("0");
    void showCurrentSong(const QString&, const QString&, const QString&) override {}
    void showClock(const QString&, const QString&) override {}
    QString keyCaption() const override { return key; }
    void setKeyCaption(const QString& c) override { key = c; }
};

} // namespace

int main(int argc, char** argv) {
    QTemporaryDir home;
    const QString h = home.path();
    for (const char* sub : {"data", "runtime", "Documents"})
        QDir(h).mkpath(QString::fromLatin1(sub));
    QFile::setPermissions(h + "/runtime", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("HOME", h.toUtf8());
    qputenv("XDG_DATA_HOME", (h + "/data").toUtf8());
    qputenv("XDG_RUNTIME_DIR", (h + "/runtime").toUtf8());
    qputenv("XDG_DOCUMENTS_DIR", (h + "/Documents").toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    OpenDatabase();
    Cfg.AutoRemoveFromQueue = false;

    std::printf("making media...\n");
    const QString media = h + "/media";
    QDir().mkpath(media);
    const QString mp3 = media + "/big.mp3";
    if (!playbackmedia::makeMp3(mp3, 330.0, 128)) {
        std::printf("no mp3 encoder (ffmpeg or mpv) worked\n");
        return 1;
    }
    const QByteArray audio = playbackmedia::readFile(mp3);
    const QString zip = media + "/Artist - Big Song.zip";
    playbackmedia::makeZip(zip,
                           {{"Big Song.cdg", playbackmedia::cdgStream(330.0, 0.5)}, {"Big Song.mp3", audio}});
    std::printf("zip: %.1f MB (mp3 %.1f MB)\n", QFileInfo(zip).size() / 1048576.0, audio.size() / 1048576.0);

    WinAMP_Control link;
    link.setWinampPath(playbackmedia::writePlayerWrapper(media));
    if (!link.StartPlayer()) {
        std::printf("the player did not start\n");
        return 1;
    }
    modPacemaker pm(link);
    pm.FindPaceMaker();
    OneSongQueue queue;
    queue.song.PerformerName = QStringLiteral("Bench");
    queue.song.TrackPath = zip;
    queue.song.ArtistName = QStringLiteral("Artist");
    queue.song.TrackName = QStringLiteral("Big Song");
    queue.song.Key = 1;
    NoView view;
    SongStarter starter(link, pm, queue, view);

    constexpr int kRuns = 9;
    std::vector<double> toPlaying, toOpened;
    for (int run = 0; run < kRuns; ++run) {
        QElapsedTimer t;
        t.start();
        if (!starter.PlayKaraoke(0)) {
            std::printf("PlayKaraoke failed\n");
            return 1;
        }
        while (link.GetStatus() != QLatin1String("PLAYING") && t.elapsed() < 5000) {
        }
        toPlaying.push_back(t.nsecsElapsed() / 1e6);
        while (link.GetPositionSeconds() < 0 && t.elapsed() < 5000) {
        }
        toOpened.push_back(t.nsecsElapsed() / 1e6);
    }
    std::printf(
        "PlayKaraoke to PLAYING (zip, 5 MB mp3 + cdg): median %.1f ms over %d runs (target < 300 ms)\n",
        median(toPlaying), kRuns);
    std::printf("PlayKaraoke to file opened (position readable): median %.1f ms over %d runs\n",
                median(toOpened), kRuns);

    std::vector<double> rounds;
    for (int series = 0; series < 5; ++series) {
        QElapsedTimer t;
        t.start();
        constexpr int kCalls = 500;
        for (int i = 0; i < kCalls; ++i)
            link.GetStatus();
        rounds.push_back(t.nsecsElapsed() / 1e6 / kCalls);
    }
    std::printf("GetStatus round trip: median %.3f ms (5 series of 500 calls; target < 2 ms)\n",
                median(rounds));

    starter.StopSong();
    link.SendCommand(PlayerLink::CmdClose);
    CloseDatabase();
    return 0;
}
