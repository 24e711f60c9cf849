#pragma once

// Media and a rig for the jingle tests: the jingle engine and the karaoke
// player, both real mpv processes started from the silent wrapper script.

#include "core/appsettings.h"
#include "jingles/jinglebank.h"
#include "jingles/jingleplayer.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"

#include <QJsonValue>
#include <QProcess>
#include <QTest>

namespace jinglemedia {

// A tone of `seconds` in the container `format` with the audio codec `codec`,
// encoded by the player itself (which the tests need in any case).
inline bool makeTone(const QString& path, double seconds, const QString& format, const QString& codec) {
    QProcess p;
    p.start(QStringLiteral("mpv"),
            {"--no-config", "av://lavfi:sine=f=660:d=" + QString::number(seconds, 'f', 2), "--o=" + path,
             "--of=" + format, "--oac=" + codec});
    return p.waitForFinished(120000) && p.exitCode() == 0 && QFileInfo(path).size() > 0;
}

// The jingle engine and the karaoke player side by side, and the bank over them.
struct Rig {
    WinAMP_Control karaoke;
    JinglePlayer jingles;
    JingleBank bank{jingles, karaoke};

    explicit Rig(const QString& wrapper) {
        karaoke.setWinampPath(wrapper);
        karaoke.setWaiter([](int ms) { QTest::qWait(std::min(ms, 100)); });
        karaoke.setFadeMs(600);
    }
    bool startBoth(const QString& wrapper) { return karaoke.StartPlayer() && jingles.PlayerInit(wrapper, 0); }
    QJsonValue jingleProp(const char* name) {
        return jingles.instance().property(QString::fromLatin1(name)).value_or(QJsonValue());
    }
    QString jinglePath() { return jingleProp("path").toString(); }
    double jinglePos() { return jingleProp("time-pos").toDouble(-1); }
    double karaokePos() {
        return karaoke.connection().property(QStringLiteral("time-pos")).value_or(QJsonValue()).toDouble(-1);
    }
    bool playKaraoke(const QString& file) {
        karaoke.ClearPlaylist();
        return karaoke.PlayFile(file) && (karaoke.SendCommand(PlayerLink::CmdPlay), true) &&
               QTest::qWaitFor([this] { return karaokePos() > 0.3; }, playbackmedia::kPlayerSlack);
    }
};

} // namespace jinglemedia
