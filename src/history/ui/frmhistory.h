#pragma once

#include "history/historyqueue.h"

#include <QDialog>

class HistoryListModel;
class QAction;
class QCheckBox;
class QComboBox;
class QMenu;
class QPushButton;
class QTableView;

// "History": who sang what. The host picks a singer (or "(All)"), sees their
// songs with the key each was sung in, puts one or all of them back in the
// queue, removes a song or clears the history, and exports the list to the
// desktop or imports an earlier export.
//
// Shown modally by the main window, which releases its keyboard filter before
// and makes a new one afterwards, places it over its queue and gives it the
// colour scheme. The queue is
// reached through HistoryQueue only.
class frmHistory : public QDialog {
    Q_OBJECT
public:
    static inline const QString kSource = QStringLiteral("KvApp.frmHistory");

    explicit frmHistory(HistoryQueue& queue, QWidget* owner = nullptr);
    ~frmHistory() override;

    HistoryListModel* model() const { return m_model; }

    // Refills the list for the combo's text and NoDups.
    void GetHistory();
    // Appends list row `row` to the queue and saves the queue.
    void AddSongToQueue(int row);
    void SaveHistoryColumns();
    void RetrieveHistoryColumns();

    // "No Dups": rows that repeat on all five columns show once.
    bool NoDups = true;

    QComboBox* cboSingers;
    QTableView* olvHistory;
    QCheckBox* chkNoDups;
    QPushButton* btnLoad;
    QPushButton* cmdAddSingleSong;
    QPushButton* cmdClearHistory;
    QPushButton* cmdExport;
    QPushButton* cmdImport;
    QPushButton* cmdClose;
    QMenu* mnuHistoryOptions;
    QAction* mnuHistoryOptionsRemove;

public slots:
    void cboSingers_Click();
    void chkNoDups_Click();
    void btnLoad_Click();
    void cmdAddSingleSong_Click();
    void cmdClearHistory_Click();
    void cmdExport_Click();
    void cmdImport_Click();
    void mnuHistoryOptionsRemove_Click();
    // A right click on the list at `pos` (the list's own coordinates): the
    // pop-up menu, when the list has rows. True when it opened.
    bool olvHistory_RightClick(const QPoint& pos);
    void done(int result) override;

private:
    void buildControls();
    void Form_Load();
    // Fills the combo without running GetHistory for each entry.
    void fillSingers(const QStringList& names);
    void hideTrackPathColumn();
    int selectedRow() const;
    // Loads the list for `filter`, logging a failure under `source`.
    void loadList(const HistoryFilter& filter, const QString& source, qint32 line);

    HistoryQueue& m_queue;
    HistoryListModel* m_model;
    bool m_importing = false;
    bool m_unloaded = false;
};
