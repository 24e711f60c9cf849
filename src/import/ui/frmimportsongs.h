#pragma once

#include "import/importrun.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;

// "Index Tracks": the host points the program at a folder of song files and
// fills the catalogue from it; the catalogue-wide buttons (clear, optimise,
// open its folder) stand on the same screen. The work itself is ImportRun's.
//
// Shown modally by the main window, which releases its keyboard filter before
// and makes a new one afterwards, and connects queueListClearRequested() to
// the emptying of its queue list.
class frmImportSongs : public QDialog {
    Q_OBJECT
public:
    explicit frmImportSongs(QWidget* owner = nullptr);

    // The first `length` characters of `text`, with "..." behind them when
    // `ellipsis` is set.
    static QString StringTruncate(const QString& text, qint16 length, bool ellipsis);
    // `path` shortened in its middle to the usable width of the status label.
    QString CompactedStatusPath(const QString& path) const;

    ImportRun& run() { return m_run; }
    // The folder last confirmed for an import (what the box falls back to).
    const QString& importFolder() const { return m_importFolder; }
    // The convention number of the selected list entry.
    int selectedConvention() const;

    QGroupBox* fraImport;
    QLineEdit* txtFolder;
    QComboBox* cdoFileConvention;
    QCheckBox* chkKamikaze;
    QPushButton* btnGetTracks;
    QPushButton* btnTransfer;
    QPushButton* btnClearDatabase;
    QPushButton* btnOpenFolder;
    QPushButton* cmdCompact;
    QLabel* lblImportStatus;
    QLabel* lblTotalCount;

signals:
    // The catalogue was cleared: the main window empties its queue list
    // (the saved queue stays as it is).
    void queueListClearRequested();

public slots:
    void txtFolder_ButtonClick();
    void btnGetTracks_Click();
    void btnClearDatabase_Click();
    void cmdCompact_Click();
    void btnOpenFolder_Click();
    // The closing guard: refused while an import is running.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildControls();
    void Form_Load();
    bool refuseCloseWhileImporting();
    void measureStatusWidth();
    void setBusy(bool busy);
    void setRunning(bool running);

    ImportRun m_run;
    QString m_importFolder;
    int m_statusWidth = 0;
    bool m_hourglass = false;
};
