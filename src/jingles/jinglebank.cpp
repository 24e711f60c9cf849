#include "jinglebank.h"

#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/pathhelpers.h"
#include "core/settings.h"
#include "jingles/jingleplayer.h"
#include "playback/playerlink.h"

#include <QCoreApplication>

JingleBank::JingleBank(JinglePlayer& player, PlayerLink& karaoke, QObject* parent)
    : QObject(parent), m_player(player), m_karaoke(karaoke) {
    for (Button& b : m_buttons)
        b.caption = kUnassigned;
}

QString JingleBank::captionFor(const QString& path) {
    if (path.isEmpty())
        return kUnassigned;
    if (!FileExists(path))
        return kMissing;
    // Exactly four characters go, whatever the extension: a point and three letters.
    const QString name = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    return name.left(std::max<qsizetype>(0, name.size() - 4));
}

QString JingleBank::engineProgram() {
    const QString path = settings::readText(keys::WinAmpPath);
    if (!path.isEmpty() && FileExists(path))
        return path;
    return oApplicationPaths ? oApplicationPaths->WinampExecutable()
                             : cApplicationPaths::playerFolder() + QStringLiteral("/mpv");
}

void JingleBank::InitBacking(const QString& program) {
    Guarded(QStringLiteral("KvApp.frmMain.InitBacking"), 0, [&] {
        m_audioDevice = qint16(settings::readInt(keys::AudioDevice));
        QCoreApplication::processEvents();
        // The engine's process starts now and is set up once it answers, or
        // by the first thing asked of it: the program's start does not wait.
        m_player.PlayerInitStart(program, m_audioDevice);
        m_player.PlayerFade(1, 3000, 4, 0);
        m_player.PlayerFade(0, 3000, 4, 0);
    });
}

void JingleBank::InitialiseJingles() {
    Guarded(QStringLiteral("KvApp.frmMain.InitialiseJingles"), 0, [&] {
        for (int i = 0; i < kButtons; ++i) {
            Button& b = m_buttons[size_t(i)];
            b.tag = settings::readText(keys::Jingle[size_t(i)], QString());
            b.caption = captionFor(b.tag);
        }
    });
    emit buttonsChanged();
}

void JingleBank::cmdJingle_Click(int index) {
    if (index < 0 || index >= kButtons)
        return;
    // The second question is asked only when the first answer was not 0; the
    // two answers together say whether the player is free.
    int state = m_player.PlayerState();
    if (state != 0)
        state = m_player.PlayerState();
    if (state != 0 && state != 3)
        m_player.PlayerStop();
    m_player.PlayerLoad(m_buttons[size_t(index)].tag);
    m_player.PlayerPlay();
    // The jingle has begun; only now does the karaoke track make way.
    if (Cfg.StopKaraokeTrackOnJinglePlay && m_karaoke.isConnected() &&
        statusText(m_karaoke.rawStatus()) == QLatin1String("PLAYING"))
        m_karaoke.SendCommand(PlayerLink::CmdFadeStop);
}
