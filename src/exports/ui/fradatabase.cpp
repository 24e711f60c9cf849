#include "fradatabase.h"

#include "catalogue/cataloguestore.h"
#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/prompts.h"
#include "exports/deduplist.h"
#include "exports/exportfile.h"
#include "exports/songbook.h"
#include "exports/songlist.h"
#include "exports/songlistmodel.h"
#include "exports/ui/frmexportforwebapp.h"

#include <QAction>
#include <QButtonGroup>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QString kForm = QStringLiteral("KvApp.frmOptions.");
const QString kCompletedTitle = QStringLiteral("Export Completed");
const QString kMobileCaption = QStringLiteral("Export for Carolist App");
const QString kCancelCaption = QStringLiteral("Cancel Export");
// How often a long export lets the window take its events and repaint.
constexpr qint64 kPumpEveryMs = 40;

template <typename W> W* named(W* w, const char* name) {
    w->setObjectName(QLatin1String(name));
    return w;
}

// The path of `name` in `folder`, making the folder when it is missing.
QString exportTarget(const QString& folder, const QString& name, QString* error) {
    QDir().mkpath(folder);
    return exportPathIn(folder, name, error);
}

} // namespace

fraDatabase::fraDatabase(QWidget* parent) : QWidget(parent), m_model(new SongListModel(this)) {
    setObjectName(QStringLiteral("fraDatabase"));
    buildControls();
    m_runDialog = [](frmExportForWebApp& dialog) { dialog.exec(); };
    m_sincePump.start();
}

fraDatabase::~fraDatabase() {
    // The list without duplicates left behind by "Show" goes with the screen.
    m_model->clear();
    if (IsDatabaseOpen())
        DedupList::clear();
}

void fraDatabase::buildControls() {
    cboManageOptions = named(new QComboBox(this), "cboManageOptions");
    cboManageOptions->addItems({QStringLiteral("All Songs"), QStringLiteral("All Songs (No Duplicates)"),
                                QStringLiteral("Songs With Errors")});
    cboManageOptions->setCurrentIndex(0);
    cmdShowExport = named(new QPushButton(QStringLiteral("Show"), this), "cmdShowExport");

    lvExport = named(new QTableView(this), "lvExport");
    lvExport->setModel(m_model);
    lvExport->setSelectionBehavior(QAbstractItemView::SelectRows);
    lvExport->setSelectionMode(QAbstractItemView::SingleSelection);
    lvExport->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lvExport->verticalHeader()->hide();
    // Rows of one height, measured once: the view need not ask each row.
    lvExport->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    lvExport->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    lvExport->horizontalHeader()->setDefaultSectionSize(140);
    lvExport->setWordWrap(false);
    lvExport->viewport()->installEventFilter(this);

    btnExportAll = named(new QPushButton(QStringLiteral("Export List Above"), this), "btnExportAll");
    btnExportDedup =
        named(new QPushButton(QStringLiteral("Export All Songs (DeDup)"), this), "btnExportDedup");
    cmdExportForMobile = named(new QPushButton(kMobileCaption, this), "cmdExportForMobile");
    cmdExportForMobile->setToolTip(
        QStringLiteral("Exports the list of songs to a file for use on mobile devices."));

    auto* caseBox = named(new QGroupBox(this), "fraCase");
    auto* caseGroup = new QButtonGroup(this);
    auto* caseRow = new QHBoxLayout(caseBox);
    const QString captions[] = {QStringLiteral("Leave Alone"), QStringLiteral("Upper Case"),
                                QStringLiteral("Lower Case")};
    for (int i = 0; i < 3; ++i) {
        optCase[size_t(i)] = named(new QRadioButton(captions[i], caseBox), "optCase");
        optCase[size_t(i)]->setProperty("index", i);
        caseGroup->addButton(optCase[size_t(i)], i);
        caseRow->addWidget(optCase[size_t(i)]);
    }
    optCase[0]->setChecked(true);
    lblExport = named(new QLabel(this), "lblExport");

    mnuError = named(new QMenu(QStringLiteral("Error Menu"), this), "mnuError");
    mnuErrorRemoveMark = mnuError->addAction(QStringLiteral("Remove Error Mark"));
    mnuErrorRemoveMark->setObjectName(QStringLiteral("mnuErrorRemoveMark"));
    mnuErrorRemove = mnuError->addAction(QStringLiteral("Delete From Database"));
    mnuErrorRemove->setObjectName(QStringLiteral("mnuErrorRemove"));

    auto* top = new QHBoxLayout;
    top->addWidget(cboManageOptions, 1);
    top->addWidget(cmdShowExport);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(btnExportAll);
    buttons->addWidget(btnExportDedup);
    buttons->addWidget(cmdExportForMobile);
    auto* page = new QVBoxLayout(this);
    page->addLayout(top);
    page->addWidget(lvExport, 1);
    page->addLayout(buttons);
    page->addWidget(caseBox);
    page->addWidget(lblExport);

    connect(cmdShowExport, &QPushButton::clicked, this, &fraDatabase::cmdShowExport_Click);
    connect(btnExportAll, &QPushButton::clicked, this, &fraDatabase::btnExportAll_Click);
    connect(btnExportDedup, &QPushButton::clicked, this, &fraDatabase::btnExportDedup_Click);
    connect(cmdExportForMobile, &QPushButton::clicked, this, &fraDatabase::cmdExportForMobile_Click);
    connect(mnuErrorRemoveMark, &QAction::triggered, this, &fraDatabase::mnuErrorRemoveMark_Click);
    connect(mnuErrorRemove, &QAction::triggered, this, &fraDatabase::mnuErrorRemove_Click);
}

int fraDatabase::caseMode() const {
    for (int i = 0; i < 3; ++i)
        if (optCase[size_t(i)]->isChecked())
            return i;
    return 0;
}

void fraDatabase::SetExportButtons(int state) {
    switch (state) {
    case ExportingList:
        btnExportDedup->setEnabled(false);
        cmdExportForMobile->setEnabled(false);
        break;
    case ExportingDedup:
        btnExportAll->setEnabled(false);
        cmdExportForMobile->setEnabled(false);
        break;
    case ExportingSongbook:
        btnExportDedup->setEnabled(false);
        btnExportAll->setEnabled(false);
        break;
    default:
        break;
    }
}

void fraDatabase::EnableExportButtons() {
    btnExportAll->setEnabled(true);
    btnExportDedup->setEnabled(true);
    cmdExportForMobile->setEnabled(true);
}

bool fraDatabase::progress(qint64 done, const QString& text) {
    // Checking the clock costs next to nothing; the label and the events only
    // a few times a second, so that a million rows are not slowed by them.
    if ((done & 63) != 0 || m_sincePump.elapsed() < kPumpEveryMs)
        return true;
    QPointer<fraDatabase> self(this);
    lblExport->setText(text);
    QCoreApplication::processEvents();
    if (!self)
        return false;
    m_sincePump.restart();
    return true;
}

void fraDatabase::cmdShowExport_Click() {
    if (m_busy)
        return;
    Guarded(kForm + QStringLiteral("cmdShowExport_Click"), 1, [this] {
        const int kind = cboManageOptions->currentIndex();
        m_model->clear();
        if (kind == SongList::AllSongsNoDuplicates) {
            QPointer<fraDatabase> self(this);
            BuildDedupTable();
            if (!self)
                return;
            m_dedupEmptied = false;
        }
        m_model->load(SongList::statement(SongList::Kind(qBound(0, kind, 2))));
    });
}

void fraDatabase::BuildDedupTable() {
    QPointer<fraDatabase> self(this);
    m_busy = true;
    DedupList::BuildDedupTable([&](qint64 done, qint64 total) {
        return self &&
               progress(done,
                        QStringLiteral("Removing Duplicates, Please Wait.... %1 of %2").arg(done).arg(total));
    });
    if (self)
        m_busy = false;
}

void fraDatabase::btnExportAll_Click() {
    if (m_busy)
        return;
    SetExportButtons(ExportingList);
    QPointer<fraDatabase> self(this);
    ExportListed();
    if (self)
        EnableExportButtons();
}

void fraDatabase::ExportListed() {
    QString error;
    const QString path = exportTarget(desktopFolder(), SongList::kFileName, &error);
    QString sql = m_model->statement();
    // The list without duplicates reads tblDedup, which a DeDup export
    // empties when it is done: it is built again for the file.
    if (sql == SongList::statement(SongList::AllSongsNoDuplicates) && m_dedupEmptied) {
        QPointer<fraDatabase> self(this);
        m_model->release();
        BuildDedupTable();
        if (!self)
            return;
        m_dedupEmptied = false;
    }
    if (path.isEmpty() || !SongList::write(sql, path, &error)) {
        // No box for a failed export; the label and the error log say it.
        LogErrorQuietly(error, kForm + QStringLiteral("ExportListed"), 1);
        lblExport->setText(error);
        return;
    }
    prompts().msgBox(QStringLiteral("Export Of SongExport.csv to Desktop Completed Successfully"),
                     Prompts::Information, kCompletedTitle);
}

void fraDatabase::btnExportDedup_Click() {
    if (m_busy)
        return;
    QPointer<fraDatabase> self(this);
    SetExportButtons(ExportingDedup);
    // A list shown from tblDedup keeps the rows it has read.
    if (m_model->statement() == SongList::statement(SongList::AllSongsNoDuplicates))
        m_model->release();
    BuildDedupTable();
    if (!self)
        return;
    ExportDedup();
    if (self)
        EnableExportButtons();
}

void fraDatabase::ExportDedup() {
    QString error;
    const QString path = exportTarget(desktopFolder(), DedupList::kFileName, &error);
    QPointer<fraDatabase> self(this);
    m_busy = true;
    const bool written =
        !path.isEmpty() &&
        DedupList::ExportDedup(
            path, DedupList::CaseMode(caseMode()),
            [&](qint64 done, qint64 total) {
                return self && progress(done, QStringLiteral("Exporting %1 of %2").arg(done).arg(total));
            },
            &error);
    if (!self)
        return;
    m_busy = false;
    m_dedupEmptied = true;
    if (!written) {
        LogErrorQuietly(error, kForm + QStringLiteral("ExportDedup"), 1);
        lblExport->setText(error);
        return;
    }
    prompts().msgBox(QStringLiteral("Export Of depexport(dedup).csv to Desktop Completed Successfully"),
                     Prompts::Information, kCompletedTitle);
}

void fraDatabase::cmdExportForMobile_Click() {
    if (m_exporting) {
        // A second click cancels the export that runs, and after one has
        // run it only clears the flag: the click after it opens the dialog.
        m_exporting = false;
        m_cancel = true;
        return;
    }
    if (m_busy)
        return;
    QPointer<fraDatabase> self(this);
    frmExportForWebApp dialog(window());
    m_runDialog(dialog);
    if (!self)
        return;
    const bool cancelled = dialog.Cancelled();
    const QString title = dialog.songBookTitle();
    const bool useEmail = dialog.useEmailForRequests();
    const QString email = dialog.EmailAddress();
    m_exporting = true;
    m_cancel = false;
    if (cancelled || title.isEmpty())
        return;
    QString error;
    QDir().mkpath(oApplicationPaths->ApplicationDocuments());
    const QString path = Songbook::pathForTitle(oApplicationPaths->ApplicationDocuments(), title, &error);
    if (path.isEmpty()) {
        m_exporting = false;
        prompts().msgBox(error, Prompts::Exclamation, QStringLiteral("Export For Mobile App"));
        return;
    }
    cmdExportForMobile->setText(kCancelCaption);
    copySongs(path, useEmail, email);
}

void fraDatabase::copySongs(const QString& path, bool useEmail, const QString& email) {
    QPointer<fraDatabase> self(this);
    SetExportButtons(ExportingSongbook);
    m_busy = true;
    const Songbook::Outcome out = Songbook::write(path, useEmail, email, [&](qint64 done, qint64 total) {
        return self && progress(done, QStringLiteral("Exporting %1 of %2").arg(done).arg(total)) && !m_cancel;
    });
    if (!self)
        return;
    m_busy = false;
    if (!out.written) {
        // The copy ended on an error: the old file stands, the error is in
        // the log, and the buttons stay as they are until the screen opens
        // again.
        prompts().msgBox(QStringLiteral("The songbook was not written: %1").arg(out.error),
                         Prompts::Exclamation, QStringLiteral("Export For Mobile App"));
        return;
    }
    cmdExportForMobile->setText(kMobileCaption);
    EnableExportButtons();
    lblExport->setText(QStringLiteral("Export Completed"));
}

void fraDatabase::mnuErrorRemoveMark_Click() {
    onSelectedErrorSong(QStringLiteral("mnuErrorRemoveMark_Click"), &CatalogueStore::RemoveErrorMark);
}

void fraDatabase::mnuErrorRemove_Click() {
    onSelectedErrorSong(QStringLiteral("mnuErrorRemove_Click"), &CatalogueStore::DeleteByPath);
}

void fraDatabase::onSelectedErrorSong(const QString& handler, void (*action)(const QString& trackPath)) {
    const QModelIndexList rows = lvExport->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return;
    const QString location = m_model->cell(rows.first().row(), 4);
    // A failure ends quietly, in the log only; the list stays as it is.
    try {
        action(location);
    } catch (...) {
        LogErrorQuietly(describeException(std::current_exception()), kForm + handler, 1);
    }
}

bool fraDatabase::eventFilter(QObject* watched, QEvent* event) {
    if (watched == lvExport->viewport() && event->type() == QEvent::MouseButtonRelease) {
        auto* mouse = static_cast<QMouseEvent*>(event);
        if (mouse->button() == Qt::RightButton && m_model->rowCount() > 0 &&
            cboManageOptions->currentIndex() == SongList::SongsWithErrors) {
            const QModelIndex at = lvExport->indexAt(mouse->position().toPoint());
            if (at.isValid())
                lvExport->selectRow(at.row());
            mnuError->popup(mouse->globalPosition().toPoint());
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}
