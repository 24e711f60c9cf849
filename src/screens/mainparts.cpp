#include "mainparts.h"

#include "frmoptions.h"
#include "generaloptionspage.h"
#include "mainwidgets.h"
#include "settingsfollowers.h"

#include "audience/ui/audiencepreview.h"
#include "audience/ui/frasecondscreen.h"
#include "catalogue/ui/searchcontroller.h"
#include "catalogue/ui/searchoptionsmenu.h"
#include "exports/ui/fradatabase.h"
#include "history/historyqueue.h"
#include "history/ui/frmhistory.h"
#include "import/ui/frmimportsongs.h"
#include "jingles/ui/jinglebuttons.h"
#include "jingles/ui/jingleoptionspage.h"
#include "queue/queuemodel.h"
#include "queue/ui/queuecontroller.h"

#include <QCheckBox>
#include <QFrame>
#include <QMenu>
#include <QPushButton>
#include <QScreen>

namespace {

NowPlayingLabels::Labels labelsOf(const MainWidgets& w) {
    return {w.lblCurrentPerformer, w.lblCurrentArtist, w.lblCurrentSong,
            w.lblTotalTime,        w.lblPosition,      w.btnKeyReset};
}

} // namespace

MainParts::MainParts(MainWidgets& widgets, QWidget* window)
    : QObject(window), m_w(widgets), m_window(window),
      m_search(std::make_unique<SearchController>(
          SearchWidgets{widgets.txtSearch, widgets.btnSearch, widgets.btnClearSearch,
                        widgets.olvSearchResults, widgets.tmrSearch})),
      m_queue(std::make_unique<QueueController>()),
      m_queueAccess(std::make_unique<QueuePlaybackAccess>(*m_queue)), m_nowPlaying(labelsOf(widgets)) {
    m_queue->setKeyboardHook(m_search.get());
    m_starter.setAnnouncements(&m_announcements);
    m_starter.setJingles(&m_jinglePlayer);
    attachControls();
    connectControls();
    m_followers = new SettingsFollowers(*this, window);
}

MainParts::~MainParts() = default;

KeyboardHookControl& MainParts::keyboardHook() {
    return *m_search;
}

void MainParts::attachControls() {
    m_queue->attachList(m_w.OsenXPListBox1);
    m_queue->attachQueueButtons({m_w.btnQueueOptions.begin(), m_w.btnQueueOptions.end()});
    m_queue->attachClearQueueButton(m_w.btnClearQueue);
    m_queue->attachKamikazeButton(m_w.btnKami);
    m_queue->attachFileButton(m_w.cmdFF);
    m_w.picPreview->setAudience(&m_audience);
    m_audience.setVideoPlacer([this](bool on, QScreen* screen) {
        m_player.setVideoFullScreen(on, screen ? screen->name() : QString());
    });
    new JingleButtons(m_jingles, m_w.cmdJingle, this);
}

void MainParts::connectControls() {
    connect(m_search.get(), &SearchController::addSongRequested, this,
            [this](int, qint64 trackId) { m_queue->AddSongToQueue(trackId); });
    connect(m_search.get(), &SearchController::searchOptionsRequested, this,
            [this](const QPoint& at) { m_w.mnuSearchOptions->popup(at); });
    new SearchOptionsMenu(m_w.mnuSearchOptions, m_search->list(), this);
    connect(m_queue.get(), &QueueController::playRequested, this,
            [this](int row) { m_transport.queueRow_DblClick(row); });

    connect(m_w.btnPlayTrack, &QPushButton::clicked, this, [this] { m_transport.btnPlayTrack_Click(); });
    connect(m_w.btnStop, &QPushButton::clicked, this, [this] { m_transport.btnStop_Click(); });
    connect(m_w.btnPause, &QPushButton::clicked, this, [this] { m_transport.btnPause_Click(); });
    connect(m_w.btnRestart, &QPushButton::clicked, this, [this] { m_transport.btnRestart_Click(); });
    connect(m_w.chkAutoPlay, &QCheckBox::clicked, this,
            [this](bool on) { m_transport.chkAutoPlay_Click(on); });
    connect(m_w.chkDelay, &QCheckBox::clicked, this, [this](bool on) { m_transport.chkDelay_Click(on); });

    connect(m_w.btnKeyUp, &QPushButton::clicked, this, [this] { m_keys.btnKeyUp_Click(); });
    connect(m_w.btnKeyDown, &QPushButton::clicked, this, [this] { m_keys.btnKeyDown_Click(); });
    connect(m_w.btnKeyReset, &QPushButton::clicked, this, [this] { m_keys.btnKeyReset_Click(); });
    connect(m_w.OseChkVocals, &QCheckBox::clicked, this, [this](bool on) { m_keys.OseChkVocals_Click(on); });
    for (int i = 0; i < int(m_w.btnBalance.size()); ++i)
        connect(m_w.btnBalance[i], &QPushButton::clicked, this, [this, i] { m_keys.btnBalance_Click(i); });

    connect(m_w.btnUpdateNP, &QPushButton::clicked, this, [this] { m_announcements.btnUpdateNP_Click(); });
    connect(m_w.btnClearNP, &QPushButton::clicked, this, [this] { m_announcements.btnClearNP_Click(); });
    connect(m_w.cmdImport, &QPushButton::clicked, this, [this] { cmdImport_Click(); });
    connect(m_w.btnOptions, &QPushButton::clicked, this, [this] { btnOptions_Click(); });
    connect(m_w.btnHistory, &QPushButton::clicked, this, [this] { btnHistory_Click(); });
}

void MainParts::cmdImport_Click() {
    m_search->releaseKeyboardHook();
    {
        frmImportSongs dialog(m_window);
        connect(&dialog, &frmImportSongs::queueListClearRequested, this,
                [this] { m_queue->model()->clearItems(); });
        dialog.exec();
    }
    m_search->createKeyboardHook();
}

void MainParts::btnOptions_Click() {
    m_search->releaseKeyboardHook();
    {
        frmOptions dialog(m_window);
        auto* general = new GeneralOptionsPage;
        dialog.setPageContent(frmOptions::General, general);
        dialog.setPageContent(frmOptions::Jingles, new JingleOptionsPage(&m_jinglePlayer));
        dialog.setPageContent(frmOptions::SecondScreen, new fraSecondScreen(&m_audience));
        dialog.setPageContent(frmOptions::Database, new fraDatabase);
        dialog.setCloseHooks({{}, [this, general] {
                                  m_jingles.InitialiseJingles();
                                  general->takeOverDefaultName();
                              }});
        dialog.exec();
    }
    // The audience window shows or goes as the options left ShowSecondScreen.
    m_audience.showIfWanted();
    m_search->createKeyboardHook();
}

void MainParts::btnHistory_Click() {
    m_search->releaseKeyboardHook();
    {
        QueueModelHistoryQueue queue(*m_queue->model());
        frmHistory dialog(queue, m_window);
        // Over the queue: the queue frame's left, the play control frame's top.
        const QPoint origin = m_window->frameGeometry().topLeft();
        dialog.move(origin.x() + m_w.fraQueue->mapTo(m_window, QPoint()).x(),
                    origin.y() + m_w.fraPlayControl->mapTo(m_window, QPoint()).y());
        dialog.exec();
    }
    m_search->createKeyboardHook();
}
