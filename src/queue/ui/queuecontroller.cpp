#include "queuecontroller.h"

#include "catalogue/database.h"
#include "core/appsettings.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "core/ui/headerwidths.h"
#include "dialogperformerprompt.h"
#include "queue/queuecolumns.h"
#include "queue/queuemodel.h"
#include "queue/queuestore.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QMenu>
#include <QMouseEvent>
#include <QTableView>

namespace {

const QString kButtonsSource = QStringLiteral("KvApp.frmMain.btnQueueOptions_Click");
const QString kDragSource = QStringLiteral("KvApp.frmMain.OsenXPListBox1_ItemDragDrop");
const QString kDetailsSource = QStringLiteral("KvApp.frmMain.GetDetailsFromRow");
const QString kClearSource = QStringLiteral("KvApp.frmMain.ClearQueue");

struct ButtonFace {
    const char* caption;
    const char* tip;
};
const ButtonFace kQueueButtons[5] = {
    {"T", "Move the selected song to top of the queue"},
    {"U", "Move the selected song up one in the queue"},
    {"\u2716", "Removes the selected song from the queue"},
    {"D", "Move the selected song down one in the queue"},
    {"B", "Move the selected song to bottom of the queue"},
};

// Gives a button its caption when the window left it without one, and its tip.
void dress(QAbstractButton* b, const QString& caption, const QString& tip) {
    if (b->text().isEmpty())
        b->setText(caption);
    b->setToolTip(tip);
}

} // namespace

QueueController::QueueController(QObject* parent)
    : QObject(parent), m_model(new QueueModel(this)),
      m_adder(
          *m_model, [this] { SaveQueue(); }, [this]() -> PerformerPrompt& { return performerPrompt(); }) {
    buildMenus();
    connect(m_model, &QueueModel::itemDragDropped, this,
            [this] { Guarded(kDragSource, 1, [this] { SaveQueue(); }); });
}

QueueController::~QueueController() = default;

QAction* QueueController::addMenuItem(QMenu* menu, const char* name, const QString& caption,
                                      void (QueueController::*slot)()) {
    QAction* a = menu->addAction(caption);
    a->setObjectName(QString::fromLatin1(name));
    connect(a, &QAction::triggered, this, [this, slot] { (this->*slot)(); });
    return a;
}

void QueueController::buildMenus() {
    m_mnuQueue = std::make_unique<QMenu>(QStringLiteral("QueueMenu"));
    m_mnuQueue->setObjectName(QStringLiteral("mnuQueue"));
    addMenuItem(m_mnuQueue.get(), "mnuQueueTop", QStringLiteral("Top"), &QueueController::MoveToTop);
    addMenuItem(m_mnuQueue.get(), "mnuQueueUp", QStringLiteral("Up"), &QueueController::MoveUp);
    addMenuItem(m_mnuQueue.get(), "mnuQueueRemove", QStringLiteral("Remove"),
                &QueueController::RemoveFromQueue);
    addMenuItem(m_mnuQueue.get(), "mnuQueueDown", QStringLiteral("Down"), &QueueController::MoveDown);
    addMenuItem(m_mnuQueue.get(), "mnuQueueBottom", QStringLiteral("Bottom"), &QueueController::MoveToBottom);
    m_mnuQueue->addSeparator();
    addMenuItem(m_mnuQueue.get(), "mnuQueueChangeSingerName", QStringLiteral("Change Singer Name"),
                &QueueController::ChangeSingerOnQueueRow);
    m_mnuQueue->addSeparator();
    addMenuItem(m_mnuQueue.get(), "mnuQueueResetColumns", QStringLiteral("Reset Columns"),
                &QueueController::ResetQueueColumns);
    addMenuItem(m_mnuQueue.get(), "mnuQueueClearQueue", QStringLiteral("Clear Queue"),
                &QueueController::ClearQueue);

    m_queueResetMenu = std::make_unique<QMenu>(QStringLiteral("QueueResetMenu"));
    m_queueResetMenu->setObjectName(QStringLiteral("QueueResetMenu"));
    addMenuItem(m_queueResetMenu.get(), "QueueResetMenuReset", QStringLiteral("Reset Columns"),
                &QueueController::ResetQueueColumns);
}

PerformerPrompt& QueueController::performerPrompt() {
    if (m_prompt)
        return *m_prompt;
    if (!m_dialogs)
        m_dialogs = std::make_unique<DialogPerformerPrompt>(m_list ? m_list->window() : nullptr);
    return *m_dialogs;
}

void QueueController::setKeyboardHook(KeyboardHookControl* hook) {
    m_adder.setKeyboardHook(hook);
}

// ---- wiring -------------------------------------------------------------------------------------------

void QueueController::attachList(QTableView* list) {
    m_list = list;
    list->setModel(m_model);
    list->setSelectionBehavior(QAbstractItemView::SelectRows);
    list->setSelectionMode(QAbstractItemView::SingleSelection);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setWordWrap(false);
    list->verticalHeader()->hide();
    list->horizontalHeader()->setStretchLastSection(false);
    list->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    list->setSortingEnabled(false);
    list->setDragDropOverwriteMode(false);
    list->setDropIndicatorShown(true);
    list->setDefaultDropAction(Qt::MoveAction);
    setDragAndDropAllowed(true);
    headerwidths::applyWidths(list, queuecolumns::widthsOfHeaderFormat(queuecolumns::kHeaderFormat));
    // The menus open when the right button is released, so the list's own
    // context-menu event is not wanted.
    list->setContextMenuPolicy(Qt::PreventContextMenu);
    list->viewport()->installEventFilter(this);
    connect(list, &QTableView::doubleClicked, this, [this](const QModelIndex& i) { onDoubleClick(i.row()); });
}

void QueueController::attachQueueButtons(const QList<QAbstractButton*>& buttons) {
    for (int i = 0; i < buttons.size(); ++i) {
        QAbstractButton* b = buttons.at(i);
        if (!b)
            continue;
        if (i < 5)
            dress(b, QString::fromUtf8(kQueueButtons[i].caption), QString::fromLatin1(kQueueButtons[i].tip));
        connect(b, &QAbstractButton::clicked, this, [this, i] { btnQueueOptions_Click(i); });
    }
}

void QueueController::attachClearQueueButton(QAbstractButton* b) {
    dress(b, QStringLiteral("C"), QStringLiteral("Clear Queue"));
    connect(b, &QAbstractButton::clicked, this, &QueueController::ClearQueue);
}

void QueueController::attachKamikazeButton(QAbstractButton* b) {
    dress(b, QStringLiteral("K"), QStringLiteral("Load a random song to top of the queue"));
    connect(b, &QAbstractButton::clicked, this, &QueueController::LoadKamikazeTrack);
}

void QueueController::attachFileButton(QAbstractButton* b) {
    dress(b, QStringLiteral("FV"), QStringLiteral("load a song from file system"));
    connect(b, &QAbstractButton::clicked, this, &QueueController::cmdFF_Click);
}

void QueueController::applyStartupSwitches() {
    if (!Cfg.AllowDragAndDrop)
        setDragAndDropAllowed(false);
    // The stored flag is a yes/no value (0 or -1), and start-up turns sorting
    // on only for the value 1, so sorting never starts on with the program: only
    // the options screen turns it on, for the rest of the run.
    const int storedSortingFlag = Cfg.AllowSortingOnQueue ? -1 : 0;
    if (storedSortingFlag == 1)
        setSortingAllowed(true);
}

void QueueController::setDragAndDropAllowed(bool allowed) {
    if (!m_list)
        return;
    m_list->setDragEnabled(allowed);
    m_list->setAcceptDrops(allowed);
    m_list->setDragDropMode(allowed ? QAbstractItemView::InternalMove : QAbstractItemView::NoDragDrop);
}

void QueueController::setSortingAllowed(bool allowed) {
    if (!m_list)
        return;
    // No column is named yet, so switching sorting on does not reorder the queue;
    // a click on a header does.
    if (allowed && !m_list->isSortingEnabled())
        m_list->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
    m_list->setSortingEnabled(allowed);
}

bool QueueController::eventFilter(QObject* watched, QEvent* event) {
    if (m_list && watched == m_list->viewport() && event->type() == QEvent::MouseButtonRelease) {
        const auto* me = static_cast<QMouseEvent*>(event);
        if (me->button() == Qt::RightButton) {
            menuForRightClick()->popup(me->globalPosition().toPoint());
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

QMenu* QueueController::menuForRightClick() const {
    // On an empty queue only the reset of the columns is offered.
    return m_model->rowCount() > 0 ? m_mnuQueue.get() : m_queueResetMenu.get();
}

void QueueController::onDoubleClick(int row) {
    if (Cfg.AllowDoubleClicks && m_model->rowCount() >= 1 && row >= 0)
        emit playRequested(row);
}

// ---- snapshot and rows --------------------------------------------------------------------------------

void QueueController::RestoreQueue() {
    ::RestoreQueue(*m_model);
}

bool QueueController::SaveQueue() {
    return ::SaveQueue(*m_model);
}

int QueueController::rowCount() const {
    return m_model->rowCount();
}

QueueEntryDetails QueueController::GetDetailsFromRow(int row) {
    QueueEntryDetails d;
    Guarded(kDetailsSource, 1, [&] { d = m_model->details(row); });
    return d;
}

bool QueueController::removeRow(int row) {
    return m_model->removeItem(row);
}

int QueueController::selectedIndex() const {
    if (!m_list || !m_list->selectionModel())
        return -1;
    const QModelIndexList rows = m_list->selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.first().row();
}

void QueueController::setSelectedIndex(int row) {
    if (!m_list || !m_list->selectionModel())
        return;
    if (row < 0 || row >= m_model->rowCount()) {
        m_list->selectionModel()->clearSelection();
        return;
    }
    m_list->selectionModel()->setCurrentIndex(m_model->index(row, QueueModel::ColPerformer),
                                              QItemSelectionModel::ClearAndSelect |
                                                  QItemSelectionModel::Rows);
}

// ---- moves --------------------------------------------------------------------------------------------

void QueueController::MoveToTop() {
    m_model->moveItem(selectedIndex(), 0);
    SaveQueue();
}

void QueueController::MoveUp() {
    const int i = selectedIndex();
    if (i == 0)
        return;
    if (m_model->swapItems(i, i - 1))
        setSelectedIndex(i - 1);
}

void QueueController::MoveDown() {
    const int i = selectedIndex();
    if (i == m_model->rowCount() - 1)
        return;
    if (m_model->swapItems(i, i + 1))
        setSelectedIndex(i + 1);
}

void QueueController::MoveToBottom() {
    const int last = m_model->rowCount() - 1;
    if (m_model->moveItem(selectedIndex(), last))
        setSelectedIndex(last);
}

void QueueController::RemoveFromQueue() {
    m_model->removeItem(selectedIndex());
    SaveQueue();
}

void QueueController::ClearQueue() {
    const int answer =
        prompts().msgBox(QStringLiteral("Are you sure you want to remove all songs from the queue?"),
                         Prompts::OkCancel | Prompts::Question, QStringLiteral("Clear Queue"));
    if (answer != Prompts::Ok)
        return;
    Guarded(kClearSource, 1, [] { ClearSavedQueue(); });
    m_model->clearItems();
}

void QueueController::btnQueueOptions_Click(int index) {
    Guarded(kButtonsSource, 1, [&] {
        switch (index) {
        case 0:
            MoveToTop();
            break;
        case 1:
            MoveUp();
            break;
        case 2:
            RemoveFromQueue();
            break;
        case 3:
            MoveDown();
            break;
        case 4:
            MoveToBottom();
            break;
        default:
            break;
        }
    });
}

// ---- column widths ------------------------------------------------------------------------------------

void QueueController::applyWidthText(const QString& text) {
    headerwidths::applyWidths(m_list, queuecolumns::parseWidths(text));
}

void QueueController::RetrieveQueueColumns() {
    applyWidthText(settings::readText(keys::QueueColumns));
    emit searchListRefreshRequested();
}

void QueueController::ResetQueueColumns() {
    applyWidthText(queuecolumns::kResetWidths);
}

void QueueController::SaveQueueColumns() {
    // Runs at shutdown: a failure writes the default widths instead, silently.
    headerwidths::saveWidths(
        keys::QueueColumns,
        [this] {
            if (!m_list)
                throw KvError(91, QStringLiteral("The queue list is not there to measure"));
            return headerwidths::widthsText(m_list);
        },
        keys::QueueColumns.defaultText());
}
