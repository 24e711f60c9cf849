#pragma once

// Media and a rig for the jingle tests: the jingle engine and the karaoke
// player, both real mpv processes started from the silent wrapper script.

#include "core/appsettings.h"
#include "jingles/jinglebank.h"
#include "jingles/jingleplayer.h"
#include "playback/winamp_control.h"
#include "playbackmedia.h"
#include "scriptedprompts.h"
#include "workspace.h"

#include <QJsonValue>
#include <QProcess>
#include <QTest>

#include <memory>

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

// What every jingle test starts from and ends with: a fresh working folder,
// scripted prompts, the start-up values, and the rig on the wrapper.
struct RigSession {
    std::unique_ptr<TestWorkspace> m_ws;
    std::unique_ptr<ScriptedPrompts> m_prompts;
    std::unique_ptr<Rig> m_rig;

    void openSession(const QString& wrapper) {
        m_ws = std::make_unique<TestWorkspace>(false);
        m_prompts = std::make_unique<ScriptedPrompts>();
        Cfg = AppSettings();
        m_rig = std::make_unique<Rig>(wrapper);
    }
    void closeSession() {
        m_rig.reset();
        m_prompts.reset();
        m_ws.reset();
    }
};

} // namespace jinglemedia
