#pragma once

#include <array>

class QCheckBox;
class QFrame;
class QLabel;
class QLineEdit;
class QMainWindow;
class QMenu;
class QPushButton;
class QTableView;
class QTimer;
class QWidget;

// The controls of the main window, by frame, under the names the rest of the
// program knows them by (each also its objectName()). The window holds them;
// buildMainWidgets makes them, and layoutMainWidgets places them for the
// window's size.
struct MainWidgets {
    QFrame *fraTrackDetails = nullptr, *fraPlayControl = nullptr, *fraKeyChange = nullptr,
           *fraBalance = nullptr, *fraKami = nullptr, *fraMpx = nullptr, *fraJingles = nullptr;
    QFrame *fraSearch = nullptr, *fraQueue = nullptr, *fraQueueButtons = nullptr, *fraOptions = nullptr,
           *fraLyrics = nullptr;
    // Search.
    QLineEdit* txtSearch = nullptr;
    QPushButton *btnSearch = nullptr, *btnClearSearch = nullptr, *cmdFF = nullptr;
    QTableView* olvSearchResults = nullptr;
    // Queue.
    QTableView* OsenXPListBox1 = nullptr;
    std::array<QPushButton*, 5> btnQueueOptions{};
    QPushButton* btnClearQueue = nullptr;
    // Options row.
    QPushButton *btnUpdateNP = nullptr, *btnClearNP = nullptr, *cmdImport = nullptr, *btnOptions = nullptr,
                *btnHistory = nullptr;
    // Transport, key, balance, kamikaze, vocals.
    QPushButton *btnPlayTrack = nullptr, *btnStop = nullptr, *btnPause = nullptr, *btnRestart = nullptr;
    QPushButton *btnKeyDown = nullptr, *btnKeyReset = nullptr, *btnKeyUp = nullptr;
    std::array<QPushButton*, 3> btnBalance{};
    QPushButton* btnKami = nullptr;
    QCheckBox* OseChkVocals = nullptr;
    // Fill music.
    std::array<QPushButton*, 16> cmdJingle{};
    // Song on stage.
    QLabel *Label2 = nullptr, *lblCurrentPerformer = nullptr, *Label4 = nullptr, *lblCurrentArtist = nullptr,
           *Label3 = nullptr, *lblCurrentSong = nullptr;
    QLabel *Label8 = nullptr, *lblPosition = nullptr, *Label6 = nullptr, *lblTotalTime = nullptr;
    QCheckBox *chkAutoPlay = nullptr, *chkDelay = nullptr;
    // The audience picture in small.
    QLabel* picPreview = nullptr;
    QTimer *tmrUpdateClock = nullptr, *tmrAutoplay = nullptr, *tmrDelay = nullptr, *tmrRestart = nullptr,
           *tmrSearch = nullptr, *tmrTimeOut = nullptr;
    QMenu *mnuSearchOptions = nullptr, *mnuBGImage = nullptr, *mnuJingles = nullptr;
};

// Makes every control of the main window inside `window`'s central widget, and its menus.
void buildMainWidgets(MainWidgets& w, QMainWindow* window);
// Places the frames and what follows the window's size, for the central widget's size.
void layoutMainWidgets(MainWidgets& w, QWidget* central);
