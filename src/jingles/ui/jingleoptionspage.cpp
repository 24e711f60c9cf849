#include "jingleoptionspage.h"

#include "core/appsettings.h"
#include "core/errorlog.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "jingles/jingleplayer.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

const QString kPickTitle = QStringLiteral("Select an Audio File");
const QString kPickFilter = QStringLiteral("Mp3 Files (*.mp3 *.wav *.wma)");
// The longest path the chooser hands back (and the settings store keeps); a
// longer one is no choice, rather than a cut path that leads nowhere.
constexpr int kMaxPath = 255;

} // namespace

JingleOptionsPage::JingleOptionsPage(JinglePlayer* player, QWidget* parent)
    : QWidget(parent), m_player(player) {
    auto* grid = new QGridLayout;
    for (int i = 0; i < 16; ++i) {
        auto* box = new QLineEdit(this);
        box->setObjectName(QStringLiteral("myJingle"));
        box->setProperty("index", i);
        box->setReadOnly(true);
        QAction* pick =
            box->addAction(style()->standardIcon(QStyle::SP_DirOpenIcon), QLineEdit::TrailingPosition);
        pick->setObjectName(QStringLiteral("myJingleButton"));
        // The button the box draws for the action answers to the same name.
        for (QToolButton* b : box->findChildren<QToolButton*>())
            b->setObjectName(QStringLiteral("myJingleButton"));
        pick->setToolTip(kPickTitle);
        connect(pick, &QAction::triggered, this, [this, i] { myJingle_ButtonClick(i); });
        auto* clear = new QPushButton(QStringLiteral("Clear"), this);
        clear->setObjectName(QStringLiteral("btnClear"));
        clear->setProperty("index", i);
        connect(clear, &QPushButton::clicked, this, [this, i] { btnClear_Click(i); });
        myJingle[size_t(i)] = box;
        myJingleButton[size_t(i)] = pick;
        btnClear[size_t(i)] = clear;
        auto* label = new QLabel(QString::number(i + 1), this);
        grid->addWidget(label, i, 0);
        grid->addWidget(box, i, 1);
        grid->addWidget(clear, i, 2);
    }
    lblAudioDevice = new QLabel(QStringLiteral("Audio device for jingle output"), this);
    lblAudioDevice->setObjectName(QStringLiteral("lblAudioDevice"));
    cboAudiodevices = new QComboBox(this);
    cboAudiodevices->setObjectName(QStringLiteral("cboAudiodevices"));
    cmdSetAudioOutput = new QPushButton(QStringLiteral("Set"), this);
    cmdSetAudioOutput->setObjectName(QStringLiteral("cmdSetAudioOutput"));
    connect(cmdSetAudioOutput, &QPushButton::clicked, this, [this] { cmdSetAudioOutput_Click(); });
    chkStopKaraoke = new QCheckBox(QStringLiteral("Stop karaoke song on play of fill / jingle"), this);
    chkStopKaraoke->setObjectName(QStringLiteral("chkStopKaraoke"));
    connect(chkStopKaraoke, &QCheckBox::clicked, this, [this] { chkStopKaraoke_Click(); });

    auto* device = new QHBoxLayout;
    device->addWidget(cboAudiodevices, 1);
    device->addWidget(cmdSetAudioOutput);
    auto* page = new QVBoxLayout(this);
    page->addLayout(grid);
    page->addWidget(lblAudioDevice);
    page->addLayout(device);
    page->addWidget(chkStopKaraoke);
    page->addStretch();
    refill();
}

void JingleOptionsPage::refill() {
    for (int i = 0; i < 16; ++i)
        myJingle[size_t(i)]->setText(settings::readText(keys::Jingle[size_t(i)], QString()));
    cboAudiodevices->clear();
    const int count = m_player ? m_player->DeviceCount() : 0;
    for (int i = 0; i < count; ++i)
        cboAudiodevices->addItem(m_player->DeviceName(i));
    // An output beyond the list selects nothing.
    const int device = settings::readInt(keys::AudioDevice);
    cboAudiodevices->setCurrentIndex(device >= 0 && device < count ? device : -1);
    chkStopKaraoke->setChecked(Cfg.StopKaraokeTrackOnJinglePlay);
}

void JingleOptionsPage::myJingle_ButtonClick(int index) {
    Guarded(QStringLiteral("KvApp.frmOptions.myJingle_ButtonClick"), 0, [&] {
        const QString path = prompts().openFile(kPickTitle, QString(), kPickFilter);
        if (path.isEmpty() || path.size() > kMaxPath) {
            prompts().msgBox(QStringLiteral("No files selected to add to the list."), Prompts::Information,
                             QString());
            return;
        }
        myJingle[size_t(index)]->setText(path);
        settings::writeText(keys::Jingle[size_t(index)], path);
    });
}

void JingleOptionsPage::btnClear_Click(int index) {
    myJingle[size_t(index)]->clear();
    settings::writeText(keys::Jingle[size_t(index)], QString());
}

void JingleOptionsPage::cmdSetAudioOutput_Click() {
    const int index = cboAudiodevices->currentIndex();
    if (m_player)
        m_player->PlayerSetDevice(index);
    Cfg.AudioDevice = index;
    settings::writeInt(keys::AudioDevice, index);
}

void JingleOptionsPage::chkStopKaraoke_Click() {
    Cfg.StopKaraokeTrackOnJinglePlay = chkStopKaraoke->isChecked();
    settings::writeBool(keys::StopKaraokeTrackOnJinglePlay, Cfg.StopKaraokeTrackOnJinglePlay);
}
