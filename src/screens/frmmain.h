#pragma once

#include "mainwidgets.h"

#include <QMainWindow>
#include <array>
#include <memory>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QTableView;
class QTimer;
class frmSplash;
class MainParts;
class WorkingFolderLock;

// The host's one working screen. It is created first and owns the start-up
// and the shutdown of the program; its controls carry the names the rest of
// the program knows them by (each also its objectName()).
class frmMain : public QMainWindow, public MainWidgets {
    Q_OBJECT
public:
    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    // The start-up as a whole. Returns false when the program must end (the
    // reason has been told to the host). `commandLine` is the arguments joined
    // by blanks.
    bool Form_Load(const QString& commandLine);
    // The shutdown, in its order; runs once, from the window's close.
    void Form_Unload();

    // The splash's least time on screen (five seconds for a host).
    void setSplashMinimumMs(int ms) { m_splashMinimumMs = ms; }
    // True once the splash has gone and the main window is shown.
    bool isReady() const { return m_ready; }
    // The search, the queue, the player and the transport behind the controls.
    MainParts& parts() { return *m_parts; }

signals:
    // The splash has gone and the window is on screen.
    void ready();

protected:
    void resizeEvent(QResizeEvent* e) override;
    void closeEvent(QCloseEvent* e) override;

private:
    void InitialiseStartup();
    void SetupSizeLimits();
    void applyWindowPositions();
    void saveWindowPositions();
    void showBackgroundPreview();
    void UnloadAllForms();
    void splashDone();

    // Steps that belong to the fill music, the colour schemes and the audience
    // screen, which this console does not have yet: each is the place where
    // that part joins the start-up.
    void InitBacking();
    void InitialiseJingles();
    void SetFormColors();
    void setUpSecondScreen();

    // A second start on the same working folder asks this window to come forward.
    void comeForward();

    std::unique_ptr<WorkingFolderLock> m_folderLock;
    MainParts* m_parts = nullptr;
    frmSplash* m_splash = nullptr;
    int m_splashMinimumMs = 5000;
    bool m_ready = false;
    bool m_unloaded = false;
    bool m_startMaximised = false;
};
