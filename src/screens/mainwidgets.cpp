#include "mainwidgets.h"

#include "mainlayout.h"
#include "widgetmakers.h"

#include "core/twips.h"

#include <QCheckBox>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

using namespace widgetmakers;

namespace {

void buildFrames(MainWidgets& w, QWidget* central) {
    w.fraTrackDetails = makeFrame(central, "fraTrackDetails");
    w.fraPlayControl = makeFrame(central, "fraPlayControl");
    w.fraKeyChange = makeFrame(central, "fraKeyChange");
    w.fraBalance = makeFrame(central, "fraBalance");
    w.fraKami = makeFrame(central, "fraKami");
    w.fraMpx = makeFrame(central, "fraMpx");
    w.fraJingles = makeFrame(central, "fraJingles");
    w.fraSearch = makeFrame(central, "fraSearch");
    w.fraQueue = makeFrame(central, "fraQueue");
    w.fraQueueButtons = makeFrame(central, "fraQueueButtons");
    w.fraOptions = makeFrame(central, "fraOptions");
    w.fraLyrics = makeFrame(central, "fraLyrics");
    w.fraBalance->hide(); // shown in turn with the key change
}

// The search box and its buttons. The file button takes its face from the queue, which owns it.
void buildSearch(MainWidgets& w) {
    w.txtSearch = named(new QLineEdit(w.fraSearch), "txtSearch");
    w.btnSearch = makeButton(w.fraSearch, "btnSearch", QStringLiteral("Search"),
                             QStringLiteral("Search for an imported song"), 5640, 120, 855, 375);
    w.btnClearSearch = makeButton(w.fraSearch, "btnClearSearch", QStringLiteral("&Clear"),
                                  QStringLiteral("Clear search criteria"), 6600, 120, 855, 375);
    w.cmdFF = makeButton(w.fraSearch, "cmdFF", {}, {}, 7560, 120, 855, 375);
    w.olvSearchResults = makeList(w.fraSearch, "olvSearchResults");
}

// The queue list and its buttons; their captions and tips come from the queue's controller.
void buildQueue(MainWidgets& w) {
    w.OsenXPListBox1 = makeList(w.fraQueue, "OsenXPListBox1");
    for (int i = 0; i < int(w.btnQueueOptions.size()); ++i) {
        w.btnQueueOptions[i] =
            makeButton(w.fraQueueButtons, "btnQueueOptions", {}, {}, 120, 240 + i * 480, 375, 375);
        w.btnQueueOptions[i]->setProperty("index", i);
    }
    w.btnClearQueue = makeButton(w.fraQueueButtons, "btnClearQueue", {}, {}, 120, 3120, 375, 375);
}

void buildOptionsRow(MainWidgets& w) {
    w.btnUpdateNP = makeButton(w.fraOptions, "btnUpdateNP", QStringLiteral("U NP"),
                               QStringLiteral("Update Next Perfomer Scroller"), 120, 120, 735, 375);
    w.btnClearNP = makeButton(w.fraOptions, "btnClearNP", QStringLiteral("C NP"),
                              QStringLiteral("Clear Next Performer Scroller"), 960, 120, 735, 375);
    w.cmdImport = makeButton(w.fraOptions, "cmdImport", QStringLiteral("I"),
                             QStringLiteral("Opens the index tracks screen"), 1800, 120, 375, 375);
    w.btnOptions = makeButton(w.fraOptions, "btnOptions", QStringLiteral("Options"), {}, 2280, 120, 855, 375);
    w.btnHistory =
        makeButton(w.fraOptions, "btnHistory", QStringLiteral("&History"), {}, 3240, 120, 975, 375);
}

void buildPlayControl(MainWidgets& w) {
    w.btnPlayTrack = makeButton(w.fraPlayControl, "btnPlayTrack", QStringLiteral("&Play"),
                                QStringLiteral("Plays the selected song"), 120, 120, 855, 375);
    w.btnStop = makeButton(w.fraPlayControl, "btnStop", QStringLiteral("&Stop"),
                           QStringLiteral("Stop the song currently playing"), 1080, 120, 855, 375);
    w.btnPause = makeButton(w.fraPlayControl, "btnPause", QStringLiteral("P&ause"),
                            QStringLiteral("Pause the song currently playing"), 2040, 120, 855, 375);
    w.btnRestart = makeButton(w.fraPlayControl, "btnRestart", QStringLiteral("&Restart"),
                              QStringLiteral("Restart the playing song"), 3000, 120, 855, 375);
}

// Key, balance, kamikaze (its face from the queue) and vocals.
void buildKeyChange(MainWidgets& w) {
    w.btnKeyDown = makeButton(w.fraKeyChange, "btnKeyDown", QStringLiteral("-"), {}, 120, 120, 375, 375);
    w.btnKeyReset = makeButton(w.fraKeyChange, "btnKeyReset", QStringLiteral("0"), {}, 600, 120, 375, 375);
    w.btnKeyUp = makeButton(w.fraKeyChange, "btnKeyUp", QStringLiteral("+"), {}, 1080, 120, 375, 375);
    const QStringList balance = {QStringLiteral("L"), QStringLiteral("C"), QStringLiteral("R")};
    for (int i = 0; i < 3; ++i) {
        w.btnBalance[i] =
            makeButton(w.fraBalance, "btnBalance", balance[i], {}, 120 + i * 480, 120, 375, 375);
        w.btnBalance[i]->setProperty("index", i);
    }
    w.btnKami = makeButton(w.fraKami, "btnKami", {}, {}, 120, 120, 375, 375);
    w.OseChkVocals = named(new QCheckBox(QStringLiteral("MPX On/Off"), w.fraMpx), "OseChkVocals");
    w.OseChkVocals->setToolTip(QStringLiteral("Turns vocals on or off on multiplex songs"));
    placeTw(w.OseChkVocals, 120, 120, 1275, 375);
}

// Two rows of eight fill buttons.
void buildJingles(MainWidgets& w) {
    for (int i = 0; i < 16; ++i) {
        w.cmdJingle[i] = makeButton(w.fraJingles, "cmdJingle", QString::number(i + 1), {},
                                    120 + (i % 8) * 470, 180 + (i / 8) * 435, 450, 375);
        w.cmdJingle[i]->setProperty("index", i);
    }
}

void buildTrackDetails(MainWidgets& w) {
    QFrame* f = w.fraTrackDetails;
    w.Label2 = makeLabel(f, "Label2", QStringLiteral("SINGER:"), 120, 240, 1095, 255, true);
    w.lblCurrentPerformer = makeLabel(f, "lblCurrentPerformer", {}, 1200, 240, 2655, 255, true);
    w.Label4 = makeLabel(f, "Label4", QStringLiteral("ARTIST:"), 120, 600, 1095, 255, true);
    w.lblCurrentArtist = makeLabel(f, "lblCurrentArtist", {}, 1200, 600, 2655, 255, true);
    w.Label3 = makeLabel(f, "Label3", QStringLiteral("SONG:"), 120, 960, 1095, 255, true);
    w.lblCurrentSong = makeLabel(f, "lblCurrentSong", {}, 1200, 960, 2655, 255, true);
    w.Label8 = makeLabel(f, "Label8", QStringLiteral("Time Remaining:"), 120, 1320, 1455, 255, true);
    w.lblPosition = makeLabel(f, "lblPosition", QStringLiteral("00:00"), 1560, 1320, 735, 255, true);
    w.Label6 = makeLabel(f, "Label6", QStringLiteral("Total Time:"), 120, 1680, 1455, 255, true);
    w.lblTotalTime = makeLabel(f, "lblTotalTime", QStringLiteral("00:00"), 1560, 1680, 735, 255, true);
    w.chkAutoPlay = named(new QCheckBox(QStringLiteral("Auto Play"), f), "chkAutoPlay");
    w.chkAutoPlay->setToolTip(QStringLiteral("Turn on Auto Play"));
    placeTw(w.chkAutoPlay, 2760, 1320, 1095, 255);
    w.chkDelay = named(new QCheckBox(QStringLiteral("Use Delay"), f), "chkDelay");
    w.chkDelay->setToolTip(QStringLiteral("Turn on Auto Play"));
    placeTw(w.chkDelay, 2760, 1680, 1095, 255);
}

void buildPreview(MainWidgets& w) {
    w.picPreview = named(new QLabel(w.fraLyrics), "picPreview");
    w.picPreview->setAlignment(Qt::AlignCenter);
    w.picPreview->setContextMenuPolicy(Qt::CustomContextMenu);
}

void buildMenus(MainWidgets& w, QWidget* owner) {
    w.mnuSearchOptions = named(new QMenu(QStringLiteral("Search Options"), owner), "mnuSearchOptions");
    const std::pair<const char*, const char*> searchItems[] = {
        {"mnuSearchOptionsSwap", "Swap Artist && TrackName"},
        {"mnuSearchOptionsComma", "Remove Comma From Artist"},
        {nullptr, nullptr},
        {"mnuSearchOptionMarkError", "Mark as Error"},
        {"mnuSearchOptionRemove", "Remove"},
        {nullptr, nullptr},
        {"mnuSearchOptionRename", "Rename File"}};
    for (const auto& [name, caption] : searchItems) {
        if (!name) {
            w.mnuSearchOptions->addSeparator();
            continue;
        }
        // "&&" in a caption shows one ampersand.
        QAction* a = w.mnuSearchOptions->addAction(QString::fromLatin1(caption));
        a->setObjectName(QLatin1String(name));
    }
    w.mnuBGImage = named(new QMenu(QStringLiteral("BG"), owner), "mnuBGImage");
    w.mnuJingles = named(new QMenu(QStringLiteral("Jingles"), owner), "mnuJingles");
}

} // namespace

void buildMainWidgets(MainWidgets& w, QMainWindow* window) {
    auto* central = new QWidget(window);
    central->setObjectName(QStringLiteral("mainClient"));
    window->setCentralWidget(central);
    buildFrames(w, central);
    buildSearch(w);
    buildQueue(w);
    buildOptionsRow(w);
    buildPlayControl(w);
    buildKeyChange(w);
    buildJingles(w);
    buildTrackDetails(w);
    buildPreview(w);
    w.tmrSearch = makeTimer(window, "tmrSearch", 500);
    w.tmrTimeOut = makeTimer(window, "tmrTimeOut", 1000);
    buildMenus(w, window);
    layoutMainWidgets(w, central);
}

void layoutMainWidgets(MainWidgets& w, QWidget* central) {
    mainlayout::Geometry g = mainlayout::designGeometry();
    const QSize client = central->size();
    if (client.width() > 0 && client.height() > 0)
        mainlayout::applyResize(g, twips::fromPixelsX(client.width()), twips::fromPixelsY(client.height()),
                                0);
    QWidget* placed[] = {w.fraTrackDetails,  w.fraPlayControl,  w.fraKeyChange,   w.fraBalance,
                         w.fraKami,          w.fraMpx,          w.fraJingles,     w.fraSearch,
                         w.fraQueue,         w.fraQueueButtons, w.fraOptions,     w.fraLyrics,
                         w.txtSearch,        w.btnSearch,       w.btnClearSearch, w.cmdFF,
                         w.olvSearchResults, w.OsenXPListBox1,  w.btnClearQueue};
    for (QWidget* c : placed) {
        const QRect r = g.value(c->objectName());
        placeTw(c, r.left(), r.top(), r.width(), r.height());
    }
    w.picPreview->setGeometry(w.fraLyrics->rect().adjusted(4, 4, -4, -4));
}
