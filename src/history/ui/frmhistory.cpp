#include "frmhistory.h"

#include "core/ui/dialogbutton.h"

#include "core/errorlog.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "core/ui/headerwidths.h"
#include "history/historycsv.h"
#include "history/historylistmodel.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QString kLoadSource = frmHistory::kSource + QStringLiteral(".Form_Load");
const QString kGetHistorySource = frmHistory::kSource + QStringLiteral(".GetHistory");
const QString kClearSource = frmHistory::kSource + QStringLiteral(".cmdClearHistory_Click");
const QString kQueueSource = frmHistory::kSource + QStringLiteral(".AddSongToQueue");
const QString kImportClickSource = frmHistory::kSource + QStringLiteral(".cmdImport_Click");
const QString kRemoveSource = frmHistory::kSource + QStringLiteral(".mnuHistoryOptionsRemove_Click");

// The first position of the songs Queue All writes into the saved queue: above
// every position the queue uses, so they sort behind the rows already there.
constexpr int kQueueAllFirstPosition = 11000;
// Pending events go through every this many imported rows.
constexpr qint64 kImportEventsEvery = 64;

} // namespace

frmHistory::frmHistory(HistoryQueue& queue, QWidget* owner)
    : QDialog(owner), m_queue(queue), m_model(new HistoryListModel(this)) {
    setObjectName(QStringLiteral("frmHistory"));
    setWindowTitle(QStringLiteral("History"));
    buildControls();
    Form_Load();
}

frmHistory::~frmHistory() = default;

void frmHistory::buildControls() {
    cboSingers = new QComboBox(this);
    cboSingers->setObjectName(QStringLiteral("cboSingers"));
    cboSingers->setMinimumWidth(200);

    chkNoDups = new QCheckBox(QStringLiteral("No Dups"), this);
    chkNoDups->setObjectName(QStringLiteral("chkNoDups"));
    chkNoDups->setToolTip(QStringLiteral("Dont show the same song for the same singer"));
    chkNoDups->setChecked(true);

    olvHistory = new QTableView(this);
    olvHistory->setObjectName(QStringLiteral("olvHistory"));
    olvHistory->setModel(m_model);
    olvHistory->setSelectionBehavior(QAbstractItemView::SelectRows);
    olvHistory->setSelectionMode(QAbstractItemView::SingleSelection);
    olvHistory->setEditTriggers(QAbstractItemView::NoEditTriggers);
    olvHistory->setContextMenuPolicy(Qt::CustomContextMenu);
    olvHistory->verticalHeader()->hide();
    olvHistory->verticalHeader()->setDefaultSectionSize(olvHistory->fontMetrics().height() + 6);
    olvHistory->horizontalHeader()->setStretchLastSection(false);
    olvHistory->setWordWrap(false);
    olvHistory->setMinimumSize(420, 260);

    btnLoad = makeDialogButton(this, "btnLoad", QStringLiteral("Queue All"),
                               QStringLiteral("Import songs and singer from a previous export"));
    cmdAddSingleSong = makeDialogButton(
        this, "cmdAddSingleSong", QStringLiteral("Queue Selected"),
        QStringLiteral("Adds the selected song to the queue (Double clicking the song achieves the same)"));
    cmdClearHistory = makeDialogButton(this, "cmdClearHistory", QStringLiteral("Clear History"),
                                       QStringLiteral("Clear all songs from history."));
    cmdExport = makeDialogButton(this, "cmdExport", QStringLiteral("Export"),
                                 QStringLiteral("Export Songs to the desktop"));
    cmdImport = makeDialogButton(this, "cmdImport", QStringLiteral("Import"),
                                 QStringLiteral("Import songs and singer from a previous export"));
    cmdClose =
        makeDialogButton(this, "cmdClose", QStringLiteral("Close"), QStringLiteral("Close History window"));

    mnuHistoryOptions = new QMenu(QStringLiteral("History"), this);
    mnuHistoryOptions->setObjectName(QStringLiteral("mnuHistoryOptions"));
    mnuHistoryOptionsRemove = mnuHistoryOptions->addAction(QStringLiteral("Remove Song"));
    mnuHistoryOptionsRemove->setObjectName(QStringLiteral("mnuHistoryOptionsRemove"));

    auto* top = new QHBoxLayout;
    top->addWidget(cboSingers, 1);
    top->addWidget(chkNoDups);
    auto* queueButtons = new QHBoxLayout;
    queueButtons->addWidget(btnLoad);
    queueButtons->addWidget(cmdAddSingleSong);
    queueButtons->addStretch();
    queueButtons->addWidget(cmdClearHistory);
    auto* fileButtons = new QHBoxLayout;
    fileButtons->addWidget(cmdExport);
    fileButtons->addWidget(cmdImport);
    fileButtons->addStretch();
    fileButtons->addWidget(cmdClose);
    auto* outer = new QVBoxLayout(this);
    outer->addLayout(top);
    outer->addWidget(olvHistory, 1);
    outer->addLayout(queueButtons);
    outer->addLayout(fileButtons);

    connect(cboSingers, &QComboBox::currentIndexChanged, this, &frmHistory::cboSingers_Click);
    connect(chkNoDups, &QCheckBox::clicked, this, &frmHistory::chkNoDups_Click);
    connect(btnLoad, &QPushButton::clicked, this, &frmHistory::btnLoad_Click);
    connect(cmdAddSingleSong, &QPushButton::clicked, this, &frmHistory::cmdAddSingleSong_Click);
    connect(cmdClearHistory, &QPushButton::clicked, this, &frmHistory::cmdClearHistory_Click);
    connect(cmdExport, &QPushButton::clicked, this, &frmHistory::cmdExport_Click);
    connect(cmdImport, &QPushButton::clicked, this, &frmHistory::cmdImport_Click);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::accept);
    connect(mnuHistoryOptionsRemove, &QAction::triggered, this, &frmHistory::mnuHistoryOptionsRemove_Click);
    connect(olvHistory, &QTableView::doubleClicked, this,
            [this](const QModelIndex& index) { AddSongToQueue(index.row()); });
    connect(olvHistory, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& pos) { olvHistory_RightClick(pos); });
}

void frmHistory::Form_Load() {
    NoDups = true;
    const QSignalBlocker block(chkNoDups);
    chkNoDups->setChecked(true);
    // Read as a number: only 1 puts "(All)" in the combo.
    const int autoSelectAll = settings::readInt(keys::AutoSelectAllInHistory, 0);
    RetrieveHistoryColumns();
    Guarded(kLoadSource, 5, [&] { fillSingers(HistoryStore::singersForCombo(autoSelectAll == 1)); });
    GetHistory();
    resize(sizeHint().expandedTo(QSize(560, 420)));
}

void frmHistory::fillSingers(const QStringList& names) {
    const QSignalBlocker block(cboSingers);
    cboSingers->clear();
    cboSingers->addItems(names);
    cboSingers->setCurrentIndex(names.isEmpty() ? -1 : 0);
}

void frmHistory::hideTrackPathColumn() {
    olvHistory->setColumnHidden(HistoryListModel::ColTrackPath, true);
}

void frmHistory::loadList(const HistoryFilter& filter, const QString& source, qint32 line) {
    Guarded(source, line, [&] {
        try {
            m_model->load(filter);
        } catch (...) {
            hideTrackPathColumn();
            throw;
        }
        hideTrackPathColumn();
    });
}

void frmHistory::GetHistory() {
    loadList({cboSingers->currentText(), NoDups, false}, kGetHistorySource, 1);
}

void frmHistory::cboSingers_Click() {
    GetHistory();
}

void frmHistory::chkNoDups_Click() {
    NoDups = chkNoDups->isChecked();
    GetHistory();
}

int frmHistory::selectedRow() const {
    const QModelIndexList rows = olvHistory->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void frmHistory::AddSongToQueue(int row) {
    Guarded(kQueueSource, 1, [&] {
        const HistoryRow r = m_model->historyRow(row);
        m_queue.appendRow(r);
        m_queue.saveQueue();
    });
}

void frmHistory::cmdAddSingleSong_Click() {
    const int row = selectedRow();
    if (row >= 0)
        AddSongToQueue(row);
}

void frmHistory::btnLoad_Click() {
    const QString name = cboSingers->currentText();
    if (name == HistoryStore::kAll) {
        prompts().msgBox(
            QStringLiteral(
                "(ALL) selected, please select an individual singer/playlist to add to the song queue"),
            Prompts::Information, QStringLiteral("Select Singer/Playlist"));
        return;
    }
    // No transaction: after a failure the rows so far stay in the saved queue,
    // not yet in the list.
    Guarded(kQueueSource, 2, [&] {
        int position = kQueueAllFirstPosition;
        for (const HistoryRow& r : HistoryStore::songsOfSinger(name))
            m_queue.addToSavedQueue(position++, r);
        m_queue.restoreQueue();
    });
}

void frmHistory::mnuHistoryOptionsRemove_Click() {
    const int row = selectedRow();
    if (row < 0)
        return;
    const bool removed = Guarded(kRemoveSource, 1, [&] {
        const HistoryRow r = m_model->historyRow(row);
        HistoryStore::removeSong(r.SingerName, r.TrackPath);
    });
    if (removed)
        GetHistory();
}

bool frmHistory::olvHistory_RightClick(const QPoint& pos) {
    if (m_model->rowCount() == 0)
        return false;
    const QModelIndex at = olvHistory->indexAt(pos);
    if (at.isValid())
        olvHistory->selectRow(at.row());
    mnuHistoryOptions->popup(olvHistory->viewport()->mapToGlobal(pos));
    return true;
}

void frmHistory::cmdClearHistory_Click() {
    const QString text = cboSingers->currentText();
    if (prompts().msgBox(QStringLiteral("Are you sure you want to remove all the history for the singer ") +
                             text,
                         Prompts::YesNo + Prompts::Question, QStringLiteral("Clear History")) != Prompts::Yes)
        return;
    if (!Guarded(kClearSource, 1, [&] { HistoryStore::clear(text); }))
        return;
    // Every singer's rows in singer order, until the combo's first entry is
    // picked below and shows its own.
    HistoryFilter all;
    all.singer = HistoryStore::kAll;
    all.afterClear = true;
    loadList(all, kClearSource, 2);
    if (!Guarded(kClearSource, 3, [&] { fillSingers(HistoryStore::singersAfterClear()); }))
        return;
    if (cboSingers->count() > 0)
        GetHistory();
}

void frmHistory::cmdExport_Click() {
    if (prompts().msgBox(QStringLiteral("Are you sure you wish to export Song History to your desktop"),
                         Prompts::OkCancel + Prompts::Question,
                         QStringLiteral("Export Song History")) != Prompts::Ok)
        return;
    // The rows the list shows: its statement runs again from the start.
    const HistoryCsv::ExportOutcome out =
        HistoryCsv::exportToFolder(m_model->filter(), cboSingers->currentText(), HistoryCsv::desktopFolder());
    if (!out.written)
        prompts().msgBox(QStringLiteral("The history was not exported. %1").arg(out.error),
                         Prompts::Exclamation, QStringLiteral("Export Song History"));
}

void frmHistory::cmdImport_Click() {
    if (m_importing)
        return;
    QString path;
    const bool chosen = Guarded(kImportClickSource, 1, [&] {
        path = prompts().openFile(QStringLiteral("Select an csv File"), HistoryCsv::desktopFolder(),
                                  QStringLiteral("Comma Seperated Files (*.csv)"));
    });
    if (!chosen || path.isEmpty())
        return;
    // Pending events go through while the rows go in; the buttons wait, so
    // that no clear or second import runs in the middle of this one.
    m_importing = true;
    const QList<QPushButton*> buttons{btnLoad,   cmdAddSingleSong, cmdClearHistory,
                                      cmdExport, cmdImport,        cmdClose};
    for (QPushButton* b : buttons)
        b->setEnabled(false);
    const HistoryCsv::ImportOutcome out = HistoryCsv::read(path, [](qint64 rows) {
        if (rows % kImportEventsEvery == 0)
            QCoreApplication::processEvents();
    });
    for (QPushButton* b : buttons)
        b->setEnabled(true);
    m_importing = false;
    if (!out.ok)
        LogError(out.error, HistoryCsv::kImportSource, 3);
    prompts().msgBox(QStringLiteral("Import has completed, please close and reopen the history window"),
                     Prompts::OkOnly, QStringLiteral("Import Completed"));
}

void frmHistory::SaveHistoryColumns() {
    settings::writeText(keys::HistoryColumns, headerwidths::widthsText(olvHistory));
}

void frmHistory::RetrieveHistoryColumns() {
    const QStringList parts = settings::readText(keys::HistoryColumns).split(QLatin1Char(';'));
    QList<int> widths;
    for (const QString& p : parts) {
        bool ok = false;
        const int w = p.trimmed().toInt(&ok);
        widths << (ok && w >= 0 ? w : -1);
    }
    // The path column stays hidden whatever the setting says.
    if (!widths.isEmpty())
        widths[0] = 0;
    headerwidths::applyWidths(olvHistory, widths);
    hideTrackPathColumn();
}

void frmHistory::done(int result) {
    if (!m_unloaded) {
        m_unloaded = true;
        Guarded(kSource + QStringLiteral(".Form_Unload"), 1, [this] { SaveHistoryColumns(); });
    }
    QDialog::done(result);
}
