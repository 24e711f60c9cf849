#pragma once

#include <QElapsedTimer>
#include <QWidget>
#include <array>
#include <functional>

class QAction;
class QComboBox;
class QLabel;
class QMenu;
class QPushButton;
class QRadioButton;
class QTableView;
class SongListModel;
class frmExportForWebApp;

// The database page of the options screen: the catalogue listed whole,
// without duplicates or by its faulty songs; such a list written to the
// desktop as "SongExport.csv"; the list without duplicates as
// "depexport(dedup).csv"; and the songbook for the mobile app. The faulty
// songs' list has its own menu to clear a mark or delete a song.
//
// The options screen hosts the page and shows it with its "Export" button.
// When the page goes (the options screen unloads), the scratch table of the
// list without duplicates is emptied.
class fraDatabase : public QWidget {
    Q_OBJECT
public:
    explicit fraDatabase(QWidget* parent = nullptr);
    ~fraDatabase() override;

    // States of SetExportButtons: which export runs (its own button stays on).
    enum ExportState { ExportingList = 0, ExportingDedup = 1, ExportingSongbook = 2 };

    QComboBox* cboManageOptions;
    QPushButton* cmdShowExport;
    QTableView* lvExport;
    QPushButton* btnExportAll;
    QPushButton* btnExportDedup;
    QPushButton* cmdExportForMobile;
    std::array<QRadioButton*, 3> optCase{};
    QLabel* lblExport;
    QMenu* mnuError;
    QAction* mnuErrorRemoveMark;
    QAction* mnuErrorRemove;

    SongListModel* exportModel() const { return m_model; }

    void SetExportButtons(int state);
    void EnableExportButtons();

    // Fills lvExport by the entry of cboManageOptions.
    void cmdShowExport_Click();
    void btnExportAll_Click();
    void btnExportDedup_Click();
    // Starts the songbook export, or, while one runs or after one ran, only
    // clears the exporting flag (and cancels the one running).
    void cmdExportForMobile_Click();
    void mnuErrorRemoveMark_Click();
    void mnuErrorRemove_Click();
    // Runs `action` on the path of the error list's selected song; a failure goes to the log under `handler`.
    void onSelectedErrorSong(const QString& handler, void (*action)(const QString& trackPath));

    // Rebuilds tblDedup from the catalogue, telling its progress.
    void BuildDedupTable();
    // Writes the list shown to "SongExport.csv" on the desktop.
    void ExportListed();
    // Writes tblDedup to "depexport(dedup).csv" on the desktop and empties it.
    void ExportDedup();
    // The case option: 0 leave alone, 1 upper case, 2 lower case.
    int caseMode() const;

    // How the songbook dialog is shown: modally, unless a test drives it.
    using DialogRunner = std::function<void(frmExportForWebApp&)>;
    void setDialogRunner(DialogRunner run) { m_runDialog = std::move(run); }

    bool exporting() const { return m_exporting; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    // The song copy of the songbook, to `path`.
    void copySongs(const QString& path, bool useEmail, const QString& email);
    // Shows progress in lblExport and lets the window take its events, a few
    // times a second; false once the page is gone (nothing of it may then be
    // touched).
    bool progress(qint64 done, const QString& text);

    SongListModel* m_model;
    DialogRunner m_runDialog;
    QElapsedTimer m_sincePump;
    bool m_busy = false;
    bool m_exporting = false;
    bool m_cancel = false;
    // tblDedup was emptied since the list without duplicates was shown.
    bool m_dedupEmptied = false;
};
