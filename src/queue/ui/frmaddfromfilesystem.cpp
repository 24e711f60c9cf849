#include "frmaddfromfilesystem.h"

#include "core/errorlog.h"
#include "dialogkeys.h"
#include "queue/singernames.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

namespace {

template <class W> W* named(W* w, const char* name) {
    w->setObjectName(QString::fromLatin1(name));
    return w;
}

} // namespace

frmAddFromFileSystem::frmAddFromFileSystem(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAddFromFileSystem"));
    setWindowTitle(QStringLiteral("Add song From File System"));
    setModal(true);

    fraFile = named(new QGroupBox(this), "fraFile");
    lblArtist = named(new QLabel(QStringLiteral("Artist"), fraFile), "lblArtist");
    txtArtistName = named(new QLineEdit(fraFile), "txtArtistName");
    lblTitle = named(new QLabel(QStringLiteral("Title"), fraFile), "lblTitle");
    txtFileName = named(new QLineEdit(fraFile), "txtFileName");
    lblSingerName = named(new QLabel(QStringLiteral("Singer Name"), fraFile), "lblSingerName");
    cboSingerNames = named(new QComboBox(fraFile), "cboSingerNames");
    cboSingerNames->setEditable(true);
    cboSingerNames->setInsertPolicy(QComboBox::NoInsert);
    lblSongKey = named(new QLabel(QStringLiteral("Song Key"), fraFile), "lblSongKey");
    spnKey = named(new QSpinBox(fraFile), "spnKey");
    spnKey->setRange(kMinKey, kMaxKey);
    cmdOk = named(new QPushButton(QStringLiteral("&Ok"), this), "cmdOk");
    cmdCancel = named(new QPushButton(QStringLiteral("&Cancel"), this), "cmdCancel");
    cmdOk->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);
    txtArtistName->setMinimumWidth(260);
    lblArtist->setBuddy(txtArtistName);
    lblTitle->setBuddy(txtFileName);
    lblSingerName->setBuddy(cboSingerNames);
    lblSongKey->setBuddy(spnKey);

    auto* grid = new QGridLayout(fraFile);
    grid->addWidget(lblArtist, 0, 0);
    grid->addWidget(txtArtistName, 0, 1);
    grid->addWidget(lblTitle, 1, 0);
    grid->addWidget(txtFileName, 1, 1);
    grid->addWidget(lblSingerName, 2, 0);
    grid->addWidget(cboSingerNames, 2, 1);
    grid->addWidget(lblSongKey, 3, 0);
    grid->addWidget(spnKey, 3, 1, Qt::AlignLeft);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdOk);
    buttons->addWidget(cmdCancel);
    auto* outer = new QVBoxLayout(this);
    outer->addWidget(fraFile);
    outer->addLayout(buttons);

    connect(cmdOk, &QPushButton::clicked, this, &frmAddFromFileSystem::cmdOk_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmAddFromFileSystem::cmdCancel_Click);
    DialogKeys::install(
        this, [this] { cmdOk_Click(); }, [this] { cmdCancel_Click(); });
}

void frmAddFromFileSystem::Form_Load() {
    const QString source = QStringLiteral("KvApp.frmAddFromFileSystem.Form_Load");
    Guarded(source, 1, [&] {
        cboSingerNames->clear();
        cboSingerNames->addItems(SingerNamesForList());
    });
    Guarded(source, 2, [&] {
        txtArtistName->clear();
        txtFileName->clear();
        spnKey->setValue(0);
        // A file without a tag, or one that cannot be read, leaves the boxes for the host.
        m_tag.FileName = m_fileName;
        if (m_tag.ReadTag()) {
            txtArtistName->setText(m_tag.Artist);
            txtFileName->setText(m_tag.Title);
        }
    });
    cboSingerNames->setCurrentIndex(cboSingerNames->count() > 0 ? 0 : -1);
    cboSingerNames->setEditText(cboSingerNames->itemText(0));
    m_cancelled = true;
    txtArtistName->setFocus();
}

int frmAddFromFileSystem::showModal() {
    Form_Load();
    return exec();
}

void frmAddFromFileSystem::cmdOk_Click() {
    m_artistName = txtArtistName->text();
    m_trackName = txtFileName->text();
    m_performerName = cboSingerNames->currentText();
    m_songKey = qint16(spnKey->value());
    m_cancelled = false;
    accept();
}

void frmAddFromFileSystem::cmdCancel_Click() {
    m_artistName.clear();
    m_trackName.clear();
    m_performerName.clear();
    m_songKey = 0;
    reject();
}
