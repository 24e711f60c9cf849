#pragma once

#include "queue/queueadder.h"
#include "queue/queueentrydetails.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <memory>

class QAbstractButton;
class QAction;
class QMenu;
class QTableView;
class KeyboardHookControl;
class PerformerPrompt;
class QueueModel;

// The singer queue on the main screen: it holds the queue's model, drives the
// list OsenXPListBox1 and the queue buttons and menus, and knows when the queue
// is saved to tblQueue. The main window creates its widgets and hands them in;
// everything also works with no widgets at all.
class QueueController : public QObject {
    Q_OBJECT
public:
    explicit QueueController(QObject* parent = nullptr);
    ~QueueController() override;

    QueueModel* model() const { return m_model; }
    QueueAdder& adder() { return m_adder; }
    QMenu* mnuQueue() const { return m_mnuQueue.get(); }
    QMenu* QueueResetMenu() const { return m_queueResetMenu.get(); }

    // Wiring of the main window's controls.
    void attachList(QTableView* OsenXPListBox1);
    // The five buttons in their order: top, up, remove, down, bottom.
    void attachQueueButtons(const QList<QAbstractButton*>& btnQueueOptions);
    void attachClearQueueButton(QAbstractButton* btnClearQueue);
    void attachKamikazeButton(QAbstractButton* btnKami);
    void attachFileButton(QAbstractButton* cmdFF);
    void setKeyboardHook(KeyboardHookControl* hook);
    // Answers the singer dialogs (not owned); none means the dialogs on screen.
    void setPerformerPrompt(PerformerPrompt* prompt) { m_prompt = prompt; }

    // The start-up's switches of the list from AllowDragAndDrop and AllowSortingOnQueue.
    void applyStartupSwitches();
    // The options screen's switches, in force at once.
    void setDragAndDropAllowed(bool allowed);
    void setSortingAllowed(bool allowed);

    // The queue's snapshot.
    void RestoreQueue();
    bool SaveQueue();

    // What playback needs.
    int rowCount() const;
    QueueEntryDetails GetDetailsFromRow(int row);
    bool removeRow(int row);

    // The list's selected row, -1 for none.
    int selectedIndex() const;
    void setSelectedIndex(int row);

    // The moves, on the selected row.
    void MoveToTop();
    void MoveUp();
    void MoveDown();
    void MoveToBottom();
    void RemoveFromQueue();
    void ClearQueue();
    void btnQueueOptions_Click(int index);

    // Column widths.
    void RetrieveQueueColumns();
    void ResetQueueColumns();
    void SaveQueueColumns();

    // Adding (see QueueAdder).
    void AddSongToQueue(qint64 trackId) { m_adder.AddSongToQueue(trackId); }
    void LoadKamikazeTrack() { m_adder.LoadKamikazeTrack(); }
    void cmdFF_Click() { m_adder.cmdFF_Click(); }
    void AddSongFromFileSystem(const QString& path) { m_adder.AddSongFromFileSystem(path); }
    void ChangeSingerOnQueueRow() { m_adder.ChangeSingerOnQueueRow(selectedIndex()); }

    // Right button released over the list: the menu for the list's state.
    QMenu* menuForRightClick() const;

signals:
    // A double click asked for this row to be played.
    void playRequested(int row);
    // The column widths were read at start-up: the search list may now refresh.
    void searchListRefreshRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildMenus();
    QAction* addMenuItem(QMenu* menu, const char* name, const QString& caption,
                         void (QueueController::*slot)());
    PerformerPrompt& performerPrompt();
    void onDoubleClick(int row);
    void applyWidthText(const QString& text);

    QueueModel* m_model;
    QueueAdder m_adder;
    QPointer<QTableView> m_list;
    std::unique_ptr<QMenu> m_mnuQueue;
    std::unique_ptr<QMenu> m_queueResetMenu;
    PerformerPrompt* m_prompt = nullptr;
    std::unique_ptr<PerformerPrompt> m_dialogs;
};
