#pragma once

#include "nowplayinglabels.h"

#include "playback/keycontrol.h"
#include "playback/modpacemaker.h"
#include "playback/playbackseams.h"
#include "playback/songstarter.h"
#include "playback/transport.h"
#include "playback/winamp_control.h"
#include "queue/keyboardhookcontrol.h"
#include "queue/ui/queueplaybackaccess.h"

#include <QObject>
#include <memory>

struct MainWidgets;
class QueueController;
class SearchController;
class SettingsFollowers;
class QWidget;

// The working parts behind the main window, built, joined and owned here:
// the search, the queue, the player link with the key changer, the song start
// and the transport. Each seam that playback calls is served by the part that
// owns that concern; the window's controls are handed to the parts and their
// events connected to them.
class MainParts : public QObject {
    Q_OBJECT
public:
    MainParts(MainWidgets& widgets, QWidget* window);
    ~MainParts() override;

    SearchController& search() { return *m_search; }
    QueueController& queue() { return *m_queue; }
    WinAMP_Control& player() { return m_player; }
    modPacemaker& pacemaker() { return m_pacemaker; }
    Transport& transport() { return m_transport; }
    KeyControl& keys() { return m_keys; }
    SongStarter& starter() { return m_starter; }
    // The keyboard filter that drives the search box.
    KeyboardHookControl& keyboardHook();

    // Opens the import screen, with the keyboard filter released meanwhile.
    void cmdImport_Click();
    // Opens the options screen, likewise.
    void btnOptions_Click();
    // The changes of settings that take effect at once.
    SettingsFollowers& followers() { return *m_followers; }

private:
    // Until the audience screen and the fill music stand, a song start
    // announces no one and finds no fill music playing.
    struct NoAnnouncements : AnnouncementSink {
        void UpdateNextPerformer() override {}
        void ClearNextPerformer() override {}
    };
    struct NoFillMusic : JingleAccess {
        int playerState() override { return 0; }
        void stop() override {}
    };

    void attachControls();
    void connectControls();

    MainWidgets& m_w;
    QWidget* m_window;
    std::unique_ptr<SearchController> m_search;
    std::unique_ptr<QueueController> m_queue;
    std::unique_ptr<QueuePlaybackAccess> m_queueAccess;
    NowPlayingLabels m_nowPlaying;
    NoAnnouncements m_announcements;
    NoFillMusic m_fillMusic;
    WinAMP_Control m_player;
    modPacemaker m_pacemaker{m_player};
    SongStarter m_starter{m_player, m_pacemaker, *m_queueAccess, m_nowPlaying};
    Transport m_transport{m_player, m_starter, *m_queueAccess, m_nowPlaying};
    KeyControl m_keys{m_pacemaker, m_player, m_nowPlaying};
    SettingsFollowers* m_followers = nullptr;
};
