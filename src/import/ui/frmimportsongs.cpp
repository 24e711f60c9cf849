#include "frmimportsongs.h"

#include "core/ui/dialogbutton.h"

#include "catalogue/cataloguestore.h"

#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "import/fileconventions.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QDesktopServices>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QUrl>
#include <QVBoxLayout>

namespace {

const QString kFormSource = QStringLiteral("KvApp.frmImportSongs");

} // namespace

frmImportSongs::frmImportSongs(QWidget* owner) : QDialog(owner) {
    setObjectName(QStringLiteral("frmImportSongs"));
    setWindowTitle(QStringLiteral("Index Tracks"));
    setModal(true);
    buildControls();

    connect(&m_run, &ImportRun::buttonCaptionChanged, btnGetTracks, &QPushButton::setText);
    connect(&m_run, &ImportRun::busyChanged, this, &frmImportSongs::setBusy);
    connect(&m_run, &ImportRun::runningChanged, this, &frmImportSongs::setRunning);
    connect(&m_run, &ImportRun::statusChanged, lblImportStatus, &QLabel::setText);
    connect(&m_run, &ImportRun::progressPath, this,
            [this](const QString& path) { lblImportStatus->setText(CompactedStatusPath(path)); });
    connect(&m_run, &ImportRun::totalCountChanged, lblTotalCount, &QLabel::setText);
    connect(&m_run, &ImportRun::transferEnabled, this, [this] { btnTransfer->setEnabled(true); });
    m_run.setKamikazeSource([this] { return chkKamikaze->checkState() != Qt::Unchecked; });

    Form_Load();
}

void frmImportSongs::buildControls() {
    fraImport = new QGroupBox(this);
    fraImport->setObjectName(QStringLiteral("fraImport"));

    txtFolder = new QLineEdit(fraImport);
    txtFolder->setObjectName(QStringLiteral("txtFolder"));
    txtFolder->setToolTip(QStringLiteral("Choose Folder to import"));
    QAction* browse =
        txtFolder->addAction(style()->standardIcon(QStyle::SP_DirOpenIcon), QLineEdit::TrailingPosition);
    browse->setObjectName(QStringLiteral("txtFolderBrowse"));
    browse->setToolTip(QStringLiteral("Choose Folder to import"));
    connect(browse, &QAction::triggered, this, &frmImportSongs::txtFolder_ButtonClick);

    cdoFileConvention = new QComboBox(fraImport);
    cdoFileConvention->setObjectName(QStringLiteral("cdoFileConvention"));
    cdoFileConvention->setToolTip(QStringLiteral("Choose the format your songs are named in"));

    chkKamikaze = new QCheckBox(QStringLiteral("Include in Kamikaze"), fraImport);
    chkKamikaze->setObjectName(QStringLiteral("chkKamikaze"));

    btnGetTracks = makeDialogButton(fraImport, "btnGetTracks", QStringLiteral("Find Tracks"),
                                    QStringLiteral("Search for files to import"));
    btnTransfer =
        makeDialogButton(fraImport, "btnTransfer", QStringLiteral("Add to search"),
                         QStringLiteral("Adds the songs to the dastabase to allow search and play."));
    btnClearDatabase = makeDialogButton(fraImport, "btnClearDatabase", QStringLiteral("Clear Database"),
                                        QStringLiteral("Clear all songs from main database."));
    btnOpenFolder = makeDialogButton(fraImport, "btnOpenFolder", QStringLiteral("Open DB Folder"),
                                     QStringLiteral("Opens the folder containing the database."));
    cmdCompact =
        makeDialogButton(fraImport, "cmdCompact", QStringLiteral("DB &Optimise"),
                         QStringLiteral("Optimises the database after removal and reimport of songs"));

    lblImportStatus = new QLabel(fraImport);
    lblImportStatus->setObjectName(QStringLiteral("lblImportStatus"));
    lblImportStatus->setMinimumWidth(360);
    lblImportStatus->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    lblTotalCount = new QLabel(fraImport);
    lblTotalCount->setObjectName(QStringLiteral("lblTotalCount"));

    auto* grid = new QGridLayout(fraImport);
    grid->addWidget(new QLabel(QStringLiteral("Song folder:"), fraImport), 0, 0);
    grid->addWidget(txtFolder, 0, 1, 1, 3);
    grid->addWidget(new QLabel(QStringLiteral("File names:"), fraImport), 1, 0);
    grid->addWidget(cdoFileConvention, 1, 1, 1, 3);
    grid->addWidget(chkKamikaze, 2, 1);
    grid->addWidget(btnGetTracks, 2, 2);
    grid->addWidget(btnTransfer, 2, 3);
    grid->addWidget(lblImportStatus, 3, 0, 1, 4);
    grid->addWidget(lblTotalCount, 4, 0, 1, 4);
    auto* catalogueButtons = new QHBoxLayout;
    catalogueButtons->addWidget(btnClearDatabase);
    catalogueButtons->addWidget(cmdCompact);
    catalogueButtons->addStretch();
    catalogueButtons->addWidget(btnOpenFolder);
    grid->addLayout(catalogueButtons, 5, 0, 1, 4);
    grid->setColumnStretch(1, 1);

    auto* outer = new QVBoxLayout(this);
    outer->addWidget(fraImport);

    connect(btnGetTracks, &QPushButton::clicked, this, &frmImportSongs::btnGetTracks_Click);
    connect(btnClearDatabase, &QPushButton::clicked, this, &frmImportSongs::btnClearDatabase_Click);
    connect(cmdCompact, &QPushButton::clicked, this, &frmImportSongs::cmdCompact_Click);
    connect(btnOpenFolder, &QPushButton::clicked, this, &frmImportSongs::btnOpenFolder_Click);
    // The transfer button has no action of its own: rows are searchable as
    // soon as they are inserted.
}

void frmImportSongs::Form_Load() {
    m_run.CancelRequested = false;
    m_run.ImportRunning = false;
    m_run.importer().ProcessedCount = 0;
    for (const FileConvention& c : FileConventions())
        cdoFileConvention->addItem(c.text, c.number);
    cdoFileConvention->setCurrentIndex(0);
    Guarded(kFormSource + QStringLiteral(".Form_Load"), 4, [this] {
        m_importFolder = settings::readText(keys::ImportPath);
        txtFolder->setText(m_importFolder);
    });
    adjustSize();
    measureStatusWidth();
    m_run.RefreshTrackCount();
}

int frmImportSongs::selectedConvention() const {
    return cdoFileConvention->currentData().toInt();
}

QString frmImportSongs::StringTruncate(const QString& text, qint16 length, bool ellipsis) {
    QString s = text.left(qMax<qint16>(length, 0));
    if (ellipsis)
        s += QStringLiteral("...");
    return s;
}

void frmImportSongs::measureStatusWidth() {
    m_statusWidth = qMax(0, lblImportStatus->width() - 5);
}

void frmImportSongs::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    measureStatusWidth();
}

QString frmImportSongs::CompactedStatusPath(const QString& path) const {
    return lblImportStatus->fontMetrics().elidedText(path, Qt::ElideMiddle, m_statusWidth);
}

void frmImportSongs::txtFolder_ButtonClick() {
    const QString chosen =
        prompts().chooseFolder(QStringLiteral("Select folder where song files are located"), m_importFolder);
    if (chosen.isEmpty()) {
        txtFolder->setText(m_importFolder);
        return;
    }
    txtFolder->setText(chosen);
    m_importFolder = chosen;
    Guarded(kFormSource + QStringLiteral(".txtFolder_ButtonClick"), 3,
            [&] { settings::writeText(keys::ImportPath, chosen); });
}

void frmImportSongs::btnGetTracks_Click() {
    m_run.GetTracks(txtFolder->text(), selectedConvention());
}

void frmImportSongs::setBusy(bool busy) {
    // The hourglass shows once however often a nested run asks for it.
    if (busy && !m_hourglass)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else if (!busy && m_hourglass)
        QApplication::restoreOverrideCursor();
    m_hourglass = busy;
}

void frmImportSongs::setRunning(bool running) {
    // Clearing or compacting the catalogue under a running import would take
    // its connection away; those buttons wait for the run to end.
    btnClearDatabase->setEnabled(!running);
    cmdCompact->setEnabled(!running);
}

void frmImportSongs::btnClearDatabase_Click() {
    if (prompts().msgBox(QStringLiteral("Are your sure you wish to clear the database?"),
                         Prompts::OkCancel | Prompts::Exclamation,
                         QStringLiteral("Clear Database")) != Prompts::Ok)
        return;
    const QString source = kFormSource + QStringLiteral(".btnClearDatabase_Click");
    Guarded(source, 2, [] { CatalogueStore::DeleteAllTracks(); });
    Guarded(source, 3, [this] { emit queueListClearRequested(); });
    m_run.RefreshTrackCount();
}

void frmImportSongs::cmdCompact_Click() {
    if (prompts().msgBox(QStringLiteral("Are your sure you wish to optimise the database?\n"
                                        "This process should not be done while a song is playing"),
                         Prompts::OkCancel | Prompts::Exclamation,
                         QStringLiteral("Clear Database")) != Prompts::Ok)
        return;
    DatabaseCompact();
}

void frmImportSongs::btnOpenFolder_Click() {
    Guarded(kFormSource + QStringLiteral(".btnOpenFolder_Click"), 1,
            [] { QDesktopServices::openUrl(QUrl::fromLocalFile(oApplicationPaths->ApplicationDataPath())); });
}

bool frmImportSongs::refuseCloseWhileImporting() {
    if (!m_run.ImportRunning)
        return false;
    prompts().msgBox(
        QStringLiteral("Songs are currently being imported, please cancel the import or wait for "
                       "the process to complete before closing this screen."),
        Prompts::Information, QStringLiteral("Close Screen"));
    return true;
}

void frmImportSongs::closeEvent(QCloseEvent* event) {
    if (refuseCloseWhileImporting()) {
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void frmImportSongs::reject() {
    if (refuseCloseWhileImporting())
        return;
    QDialog::reject();
}
