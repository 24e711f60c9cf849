#include "mainparts.h"

#include "frmmain.h"

#include "catalogue/ui/searchcontroller.h"
#include "core/errorlog.h"
#include "import/ui/frmimportsongs.h"
#include "queue/queuemodel.h"
#include "queue/ui/queuecontroller.h"

#include <QCheckBox>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTableView>

MainParts::MainParts(frmMain& window) : QObject(&window), m_w(window) {
    m_search = std::make_unique<SearchController>(
        SearchWidgets{m_w.txtSearch, m_w.btnSearch, m_w.btnClearSearch, m_w.olvSearchResults, m_w.tmrSearch});
    m_queue = std::make_unique<QueueController>();
    m_queue->attachList(m_w.OsenXPListBox1);
    m_queue->attachQueueButtons({m_w.btnQueueOptions.begin(), m_w.btnQueueOptions.end()});
    m_queue->attachClearQueueButton(m_w.btnClearQueue);
    m_queue->attachKamikazeButton(m_w.btnKami);
    m_queue->attachFileButton(m_w.cmdFF);
    m_queue->setKeyboardHook(this);
    m_starter.setAnnouncements(this);
    m_starter.setJingles(this);
    connectControls();
}

MainParts::~MainParts() = default;

void MainParts::connectControls() {
    connect(m_search.get(), &SearchController::addSongRequested, this,
            [this](int, qint64 trackId) { m_queue->AddSongToQueue(trackId); });
    connect(m_search.get(), &SearchController::searchOptionsRequested, this,
            [this](const QPoint& at) { m_w.mnuSearchOptions->popup(at); });
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

    connect(m_w.cmdImport, &QPushButton::clicked, this, [this] { cmdImport_Click(); });
}

void MainParts::cmdImport_Click() {
    releaseKeyboardHook();
    {
        frmImportSongs dialog(&m_w);
        connect(&dialog, &frmImportSongs::queueListClearRequested, this,
                [this] { m_queue->model()->clearItems(); });
        dialog.exec();
    }
    createKeyboardHook();
}

int MainParts::rowCount() const {
    return m_queue->rowCount();
}

SelectedSong MainParts::detailsFromRow(int row) const {
    const QueueEntryDetails d = m_queue->GetDetailsFromRow(row);
    return SelectedSong{d.PerformerName, d.TrackPath, d.ArtistName, d.TrackName, d.Key};
}

int MainParts::selectedRow() const {
    return m_queue->selectedIndex();
}
void MainParts::removeRow(int row) {
    m_queue->removeRow(row);
}
void MainParts::saveQueue() {
    m_queue->SaveQueue();
}

void MainParts::showCurrentSong(const QString& performer, const QString& artist, const QString& title) {
    m_w.lblCurrentPerformer->setText(performer);
    m_w.lblCurrentArtist->setText(artist);
    m_w.lblCurrentSong->setText(title);
}

void MainParts::showClock(const QString& totalTime, const QString& position) {
    m_w.lblTotalTime->setText(totalTime);
    m_w.lblPosition->setText(position);
}

QString MainParts::keyCaption() const {
    return m_w.btnKeyReset->text();
}
void MainParts::setKeyCaption(const QString& caption) {
    m_w.btnKeyReset->setText(caption);
}

void MainParts::releaseKeyboardHook() {
    m_search->releaseKeyboardHook();
}
void MainParts::createKeyboardHook() {
    m_search->createKeyboardHook();
}
