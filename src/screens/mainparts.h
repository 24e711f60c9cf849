#pragma once

#include "playback/keycontrol.h"
#include "playback/modpacemaker.h"
#include "playback/playbackseams.h"
#include "playback/songstarter.h"
#include "playback/transport.h"
#include "playback/winamp_control.h"
#include "queue/keyboardhookcontrol.h"

#include <QObject>
#include <memory>

class frmMain;
class QueueController;
class SearchController;

// The working parts behind the main window: the search, the queue, the player
// link with the key changer, the song start and the transport. The window
// hands its controls to them; this object joins them to one another (the
// queue as playback sees it, the song-on-stage labels, the keyboard filter as
// the queue's dialogs see it) and to the window's buttons.
class MainParts : public QObject,
                  public QueueAccess,
                  public NowPlayingView,
                  public KeyboardHookControl,
                  public AnnouncementSink,
                  public JingleAccess {
    Q_OBJECT
public:
    explicit MainParts(frmMain& window);
    ~MainParts() override;

    SearchController& search() { return *m_search; }
    QueueController& queue() { return *m_queue; }
    WinAMP_Control& player() { return m_player; }
    modPacemaker& pacemaker() { return m_pacemaker; }
    Transport& transport() { return m_transport; }
    KeyControl& keys() { return m_keys; }
    SongStarter& starter() { return m_starter; }

    // Opens the import screen, with the keyboard filter released meanwhile.
    void cmdImport_Click();

    // QueueAccess
    int rowCount() const override;
    SelectedSong detailsFromRow(int row) const override;
    int selectedRow() const override;
    void removeRow(int row) override;
    void saveQueue() override;
    // NowPlayingView
    void showCurrentSong(const QString& performer, const QString& artist, const QString& title) override;
    void showClock(const QString& totalTime, const QString& position) override;
    QString keyCaption() const override;
    void setKeyCaption(const QString& caption) override;
    // KeyboardHookControl
    void releaseKeyboardHook() override;
    void createKeyboardHook() override;
    // The next-performer strip and the fill music are not on this console yet:
    // a song start asks them nothing.
    void UpdateNextPerformer(int) override {}
    void ClearNextPerformer() override {}
    int playerState() override { return 0; }
    void stop() override {}

private:
    void connectControls();

    frmMain& m_w;
    std::unique_ptr<SearchController> m_search;
    std::unique_ptr<QueueController> m_queue;
    WinAMP_Control m_player;
    modPacemaker m_pacemaker{m_player};
    SongStarter m_starter{m_player, m_pacemaker, *this, *this};
    Transport m_transport{m_player, m_starter, *this, *this};
    KeyControl m_keys{m_pacemaker, m_player, *this};
};
