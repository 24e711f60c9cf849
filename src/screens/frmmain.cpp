#include "frmmain.h"

#include "frmsplash.h"
#include "mainlayout.h"
#include "mainparts.h"
#include "windowplacement.h"

#include "catalogue/database.h"
#include "catalogue/ui/searchcontroller.h"
#include "catalogue/ui/searchresultslist.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/kverror.h"
#include "core/pathhelpers.h"
#include "core/prompts.h"
#include "core/settings.h"
#include "core/startupsettings.h"
#include "core/twips.h"
#include "core/ui/widgetprompts.h"
#include "core/version.h"
#include "core/workingfolder.h"
#include "core/workingfolderlock.h"
#include "playback/playerstartup.h"
#include "queue/singernames.h"
#include "queue/ui/queuecontroller.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFontMetrics>
#include <QFrame>
#include <QHeaderView>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTableView>
#include <QTimer>
#include <functional>

namespace {

const QString kInitSource = QStringLiteral("KvApp.frmMain.InitialiseStartup");

// The errors of the size-constraint object that end the program silently.
constexpr qint32 kInvalidMaximumHeight = qint32(0x800444AE);
constexpr qint32 kInvalidMaximumWidth = qint32(0x800444AF);

// Thrown inside the start-up to end the program after the host has been told.
struct EndProgram {};

QIcon makeAppIcon() {
    QPixmap pm(64, 64);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(QColor(0x5b, 0x1a, 0x6e));
    p.setPen(QPen(QColor(0xff, 0xd5, 0x4a), 3));
    p.drawEllipse(QRectF(3, 3, 58, 58));
    QFont f = p.font();
    f.setBold(true);
    f.setPixelSize(38);
    p.setFont(f);
    p.drawText(pm.rect(), Qt::AlignCenter, QStringLiteral("K"));
    return QIcon(pm);
}

QFrame* makeFrame(QWidget* parent, const char* name) {
    auto* f = new QFrame(parent);
    f->setObjectName(QLatin1String(name));
    f->setFrameShape(QFrame::StyledPanel);
    f->setFrameShadow(QFrame::Raised);
    return f;
}

template <class W> W* named(W* w, const char* name) {
    w->setObjectName(QLatin1String(name));
    return w;
}

void placeTw(QWidget* w, int left, int top, int width, int height) {
    w->setGeometry(twips::toPixels(left, top, width, height));
}

QPushButton* makeButton(QWidget* parent, const char* name, const QString& caption, const QString& tip,
                        int left, int top, int width, int height) {
    auto* b = named(new QPushButton(caption, parent), name);
    if (!tip.isEmpty())
        b->setToolTip(tip);
    b->setFocusPolicy(Qt::TabFocus);
    placeTw(b, left, top, width, height);
    return b;
}

QLabel* makeLabel(QWidget* parent, const char* name, const QString& caption, int left, int top, int width,
                  int height, bool bold) {
    auto* l = named(new QLabel(caption, parent), name);
    placeTw(l, left, top, width, height);
    if (bold) {
        QFont f(QStringLiteral("Tahoma"));
        f.setPointSize(8);
        f.setBold(true);
        // A fixed caption that the fonts of this system draw wider than its
        // place is set a size smaller, so that it is never cut.
        while (!caption.isEmpty() && f.pointSize() > 6 &&
               QFontMetrics(f).horizontalAdvance(caption) > l->width())
            f.setPointSize(f.pointSize() - 1);
        l->setFont(f);
        l->setStyleSheet(QStringLiteral("color: #C0C0C0;"));
    }
    return l;
}

QTimer* makeTimer(QObject* parent, const char* name, int interval) {
    auto* t = named(new QTimer(parent), name);
    t->setInterval(interval);
    return t;
}

QTableView* makeList(QWidget* parent, const char* name) {
    auto* v = named(new QTableView(parent), name);
    v->setSelectionBehavior(QAbstractItemView::SelectRows);
    v->setSelectionMode(QAbstractItemView::SingleSelection);
    v->setEditTriggers(QAbstractItemView::NoEditTriggers);
    v->verticalHeader()->hide();
    v->verticalHeader()->setDefaultSectionSize(20);
    v->setAlternatingRowColors(true);
    v->horizontalHeader()->setHighlightSections(false);
    return v;
}

} // namespace

frmMain::frmMain(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("frmMain"));
    buildControls();
    buildMenus();
    m_parts = new MainParts(*this);
    // The transport owns the timers of the play panel.
    Transport& t = m_parts->transport();
    tmrUpdateClock = &t.tmrUpdateClock;
    tmrAutoplay = &t.tmrAutoplay;
    tmrDelay = &t.tmrDelay;
    tmrRestart = &t.tmrRestart;
    tmrUpdateClock->setObjectName(QStringLiteral("tmrUpdateClock"));
    tmrAutoplay->setObjectName(QStringLiteral("tmrAutoplay"));
    tmrDelay->setObjectName(QStringLiteral("tmrDelay"));
    tmrRestart->setObjectName(QStringLiteral("tmrRestart"));
    tmrUpdateClock->start(); // runs from the moment the window exists
    useWidgetPrompts(this);
}

frmMain::~frmMain() {
    useWidgetPrompts(nullptr);
}

void frmMain::buildControls() {
    auto* central = new QWidget(this);
    central->setObjectName(QStringLiteral("mainClient"));
    setCentralWidget(central);

    fraTrackDetails = makeFrame(central, "fraTrackDetails");
    fraPlayControl = makeFrame(central, "fraPlayControl");
    fraKeyChange = makeFrame(central, "fraKeyChange");
    fraBalance = makeFrame(central, "fraBalance");
    fraKami = makeFrame(central, "fraKami");
    fraMpx = makeFrame(central, "fraMpx");
    fraJingles = makeFrame(central, "fraJingles");
    fraSearch = makeFrame(central, "fraSearch");
    fraQueue = makeFrame(central, "fraQueue");
    fraQueueButtons = makeFrame(central, "fraQueueButtons");
    fraOptions = makeFrame(central, "fraOptions");
    fraLyrics = makeFrame(central, "fraLyrics");
    fraBalance->hide(); // shown in turn with the key change

    // Search.
    txtSearch = named(new QLineEdit(fraSearch), "txtSearch");
    btnSearch = makeButton(fraSearch, "btnSearch", QStringLiteral("Search"),
                           QStringLiteral("Search for an imported song"), 5640, 120, 855, 375);
    btnClearSearch = makeButton(fraSearch, "btnClearSearch", QStringLiteral("&Clear"),
                                QStringLiteral("Clear search criteria"), 6600, 120, 855, 375);
    cmdFF = makeButton(fraSearch, "cmdFF", QStringLiteral("FV"),
                       QStringLiteral("load a song from file system"), 7560, 120, 855, 375);
    olvSearchResults = makeList(fraSearch, "olvSearchResults");

    // Queue and its buttons.
    OsenXPListBox1 = makeList(fraQueue, "OsenXPListBox1");
    const QStringList queueCaptions = {QStringLiteral("T"), QStringLiteral("U"), QString(QChar(0x2716)),
                                       QStringLiteral("D"), QStringLiteral("B")};
    const QStringList queueTips = {QStringLiteral("Move the selected song to top of the queue"),
                                   QStringLiteral("Move the selected song up one in the queue"),
                                   QStringLiteral("Removes the selected song from the queue"),
                                   QStringLiteral("Move the selected song down one in the queue"),
                                   QStringLiteral("Move the selected song to bottom of the queue")};
    for (int i = 0; i < 5; ++i) {
        btnQueueOptions[i] = makeButton(fraQueueButtons, "btnQueueOptions", queueCaptions[i], queueTips[i],
                                        120, 240 + i * 480, 375, 375);
        btnQueueOptions[i]->setProperty("index", i);
    }
    btnClearQueue = makeButton(fraQueueButtons, "btnClearQueue", QStringLiteral("C"),
                               QStringLiteral("Clear Queue"), 120, 3120, 375, 375);

    // Options row.
    btnUpdateNP = makeButton(fraOptions, "btnUpdateNP", QStringLiteral("U NP"),
                             QStringLiteral("Update Next Perfomer Scroller"), 120, 120, 735, 375);
    btnClearNP = makeButton(fraOptions, "btnClearNP", QStringLiteral("C NP"),
                            QStringLiteral("Clear Next Performer Scroller"), 960, 120, 735, 375);
    cmdImport = makeButton(fraOptions, "cmdImport", QStringLiteral("I"),
                           QStringLiteral("Opens the index tracks screen"), 1800, 120, 375, 375);
    btnOptions = makeButton(fraOptions, "btnOptions", QStringLiteral("Options"), {}, 2280, 120, 855, 375);
    btnHistory = makeButton(fraOptions, "btnHistory", QStringLiteral("&History"), {}, 3240, 120, 975, 375);

    // Transport.
    btnPlayTrack = makeButton(fraPlayControl, "btnPlayTrack", QStringLiteral("&Play"),
                              QStringLiteral("Plays the selected song"), 120, 120, 855, 375);
    btnStop = makeButton(fraPlayControl, "btnStop", QStringLiteral("&Stop"),
                         QStringLiteral("Stop the song currently playing"), 1080, 120, 855, 375);
    btnPause = makeButton(fraPlayControl, "btnPause", QStringLiteral("P&ause"),
                          QStringLiteral("Pause the song currently playing"), 2040, 120, 855, 375);
    btnRestart = makeButton(fraPlayControl, "btnRestart", QStringLiteral("&Restart"),
                            QStringLiteral("Restart the playing song"), 3000, 120, 855, 375);

    // Key, balance, kamikaze, vocals.
    btnKeyDown = makeButton(fraKeyChange, "btnKeyDown", QStringLiteral("-"), {}, 120, 120, 375, 375);
    btnKeyReset = makeButton(fraKeyChange, "btnKeyReset", QStringLiteral("0"), {}, 600, 120, 375, 375);
    btnKeyUp = makeButton(fraKeyChange, "btnKeyUp", QStringLiteral("+"), {}, 1080, 120, 375, 375);
    const QStringList balance = {QStringLiteral("L"), QStringLiteral("C"), QStringLiteral("R")};
    for (int i = 0; i < 3; ++i) {
        btnBalance[i] = makeButton(fraBalance, "btnBalance", balance[i], {}, 120 + i * 480, 120, 375, 375);
        btnBalance[i]->setProperty("index", i);
    }
    btnKami = makeButton(fraKami, "btnKami", QStringLiteral("K"),
                         QStringLiteral("Load a random song to top of the queue"), 120, 120, 375, 375);
    OseChkVocals = named(new QCheckBox(QStringLiteral("MPX On/Off"), fraMpx), "OseChkVocals");
    OseChkVocals->setToolTip(QStringLiteral("Turns vocals on or off on multiplex songs"));
    placeTw(OseChkVocals, 120, 120, 1275, 375);

    // Jingles: two rows of eight.
    for (int i = 0; i < 16; ++i) {
        cmdJingle[i] = makeButton(fraJingles, "cmdJingle", QString::number(i + 1), {}, 120 + (i % 8) * 470,
                                  180 + (i / 8) * 435, 450, 375);
        cmdJingle[i]->setProperty("index", i);
    }

    // Song on stage.
    Label2 = makeLabel(fraTrackDetails, "Label2", QStringLiteral("SINGER:"), 120, 240, 1095, 255, true);
    lblCurrentPerformer = makeLabel(fraTrackDetails, "lblCurrentPerformer", {}, 1200, 240, 2655, 255, true);
    Label4 = makeLabel(fraTrackDetails, "Label4", QStringLiteral("ARTIST:"), 120, 600, 1095, 255, true);
    lblCurrentArtist = makeLabel(fraTrackDetails, "lblCurrentArtist", {}, 1200, 600, 2655, 255, true);
    Label3 = makeLabel(fraTrackDetails, "Label3", QStringLiteral("SONG:"), 120, 960, 1095, 255, true);
    lblCurrentSong = makeLabel(fraTrackDetails, "lblCurrentSong", {}, 1200, 960, 2655, 255, true);
    Label8 =
        makeLabel(fraTrackDetails, "Label8", QStringLiteral("Time Remaining:"), 120, 1320, 1455, 255, true);
    lblPosition =
        makeLabel(fraTrackDetails, "lblPosition", QStringLiteral("00:00"), 1560, 1320, 735, 255, true);
    Label6 = makeLabel(fraTrackDetails, "Label6", QStringLiteral("Total Time:"), 120, 1680, 1455, 255, true);
    lblTotalTime =
        makeLabel(fraTrackDetails, "lblTotalTime", QStringLiteral("00:00"), 1560, 1680, 735, 255, true);
    chkAutoPlay = named(new QCheckBox(QStringLiteral("Auto Play"), fraTrackDetails), "chkAutoPlay");
    chkAutoPlay->setToolTip(QStringLiteral("Turn on Auto Play"));
    placeTw(chkAutoPlay, 2760, 1320, 1095, 255);
    chkDelay = named(new QCheckBox(QStringLiteral("Use Delay"), fraTrackDetails), "chkDelay");
    chkDelay->setToolTip(QStringLiteral("Turn on Auto Play"));
    placeTw(chkDelay, 2760, 1680, 1095, 255);

    // The audience picture in small.
    picPreview = named(new QLabel(fraLyrics), "picPreview");
    picPreview->setAlignment(Qt::AlignCenter);
    picPreview->setContextMenuPolicy(Qt::CustomContextMenu);

    tmrSearch = makeTimer(this, "tmrSearch", 500);
    tmrTimeOut = makeTimer(this, "tmrTimeOut", 1000);

    layoutToWindow();
}

void frmMain::buildMenus() {
    mnuSearchOptions = named(new QMenu(QStringLiteral("Search Options"), this), "mnuSearchOptions");
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
            mnuSearchOptions->addSeparator();
            continue;
        }
        // "&&" in a caption shows one ampersand.
        QAction* a = mnuSearchOptions->addAction(QString::fromLatin1(caption));
        a->setObjectName(QLatin1String(name));
    }
    mnuBGImage = named(new QMenu(QStringLiteral("BG"), this), "mnuBGImage");
    mnuJingles = named(new QMenu(QStringLiteral("Jingles"), this), "mnuJingles");
}

void frmMain::layoutToWindow() {
    mainlayout::Geometry g = mainlayout::designGeometry();
    const QSize client = centralWidget() ? centralWidget()->size() : size();
    if (client.width() > 0 && client.height() > 0)
        mainlayout::applyResize(g, twips::fromPixelsX(client.width()), twips::fromPixelsY(client.height()),
                                0);
    auto apply = [&](QWidget* w) {
        const QRect r = g.value(w->objectName());
        placeTw(w, r.left(), r.top(), r.width(), r.height());
    };
    for (QWidget* w :
         {static_cast<QWidget*>(fraTrackDetails), static_cast<QWidget*>(fraPlayControl),
          static_cast<QWidget*>(fraKeyChange), static_cast<QWidget*>(fraBalance),
          static_cast<QWidget*>(fraKami), static_cast<QWidget*>(fraMpx), static_cast<QWidget*>(fraJingles),
          static_cast<QWidget*>(fraSearch), static_cast<QWidget*>(fraQueue),
          static_cast<QWidget*>(fraQueueButtons), static_cast<QWidget*>(fraOptions),
          static_cast<QWidget*>(fraLyrics), static_cast<QWidget*>(txtSearch),
          static_cast<QWidget*>(btnSearch), static_cast<QWidget*>(btnClearSearch),
          static_cast<QWidget*>(cmdFF), static_cast<QWidget*>(olvSearchResults),
          static_cast<QWidget*>(OsenXPListBox1), static_cast<QWidget*>(btnClearQueue)})
        apply(w);
    picPreview->setGeometry(fraLyrics->rect().adjusted(4, 4, -4, -4));
}

void frmMain::resizeEvent(QResizeEvent* e) {
    QMainWindow::resizeEvent(e);
    layoutToWindow();
}

void frmMain::SetupSizeLimits() {
    const int tppX = twips::perPixelX();
    const int tppY = twips::perPixelY();
    setMinimumSize(mainlayout::kMinTrackWidth / tppX, mainlayout::kMinTrackHeight / tppY);
    if (auto* s = QGuiApplication::primaryScreen())
        setMaximumSize(s->size());
}

// ---------------------------------------------------------------- start-up

bool frmMain::Form_Load(const QString& commandLine) {
    bool end = false;
    int line = 0;
    // One statement of the load: the error trap tells the host and ends the
    // program for the failures that must end it, and logs the others and
    // goes on with the next statement.
    auto step = [&](const std::function<void()>& statement) {
        ++line;
        if (end)
            return;
        try {
            statement();
        } catch (const EndProgram&) {
            end = true;
        } catch (const KvError& e) {
            if (e.number() == kInvalidMaximumHeight || e.number() == kInvalidMaximumWidth) {
                end = true;
            } else if (e.number() == CIniFile::kFileNotFound) {
                prompts().msgBox(
                    QStringLiteral(
                        "This application is not installed correctly as the settings file cannot be located"),
                    16400, QStringLiteral("Settings File Cannot Be Located"));
                end = true;
            } else {
                LogErrorEx(QStringLiteral("Main FormLoad"), e.number(), e.description(), line);
            }
        } catch (const std::exception& e) {
            LogErrorEx(QStringLiteral("Main FormLoad"), 0, QString::fromUtf8(e.what()), line);
        }
    };

    step([&] { setWindowIcon(makeAppIcon()); });
    step([&] { setWindowTitle(kv::mainWindowTitle()); });
    step([&] { oApplicationPaths = std::make_unique<cApplicationPaths>(); });
    step([&] { CheckWorkingFolder(); });
    step([&] {
        if (!(m_folderLock = TakeWorkingFolder(AddBackslash(oApplicationPaths->ApplicationDataPath()))))
            throw EndProgram{};
        m_folderLock->setParent(this);
        connect(m_folderLock.get(), &WorkingFolderLock::raiseRequested, this, &frmMain::comeForward);
    });
    step([&] { oSettings = std::make_unique<CIniFile>(); });
    step([&] {
        if (!SettingsFileCanBeRead())
            throw EndProgram{};
    });
    step([&] { settings::readText(keys::ImportPath); });
    step([&] {
        if (!CommandLineAsksForReset(commandLine))
            return;
        const int answer = prompts().msgBox(
            QStringLiteral(
                "Are you sure you want to start with a fresh database and settings, this will lose all "
                "song history etc"),
            52, QStringLiteral("Reset Korvane"));
        if (answer == Prompts::Yes)
            MoveCataloguesToDocuments();
    });
    step([&] { IsFirstStart = true; });
    step([&] { CheckWorkingFolder(); });
    step([&] {
        if (!OpenDatabase())
            throw EndProgram{};
    });
    step([&] {
        if (!CheckForOldDatabase())
            return;
        prompts().msgBox(
            QStringLiteral("An old database has been found and this application cannot use it.\n"
                           "Please restart Korvane using the reset database option available from the "
                           "Start Menu/All Programs/Korvane shortcut."),
            Prompts::Exclamation, QStringLiteral("Old Database Found"));
        throw EndProgram{};
    });
    // No extra layout height on this system.
    step([&] { SetupSizeLimits(); });
    step([&] { InitBacking(); });
    step([&] { InitialiseStartup(); });
    step([&] { InitialiseJingles(); });
    step([&] { showBackgroundPreview(); });
    step([&] { PreparePlaybackAtStartup(m_parts->pacemaker()); });
    step([&] { m_parts->createKeyboardHook(); });
    step([&] { EnsureWindowOnDesktop(this, false, true); });
    if (end) {
        CloseDatabase();
        if (m_splash)
            m_splash->close();
        m_unloaded = true; // nothing to save: the program never came up
        m_folderLock.reset();
    }
    return !end;
}

void frmMain::comeForward() {
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
}

void frmMain::InitialiseStartup() {
    int line = 0;
    auto guarded = [&](const std::function<void()>& statement) { Guarded(kInitSource, ++line, statement); };

    guarded([&] {
        QCoreApplication::processEvents();
        hide();
    });
    guarded([&] { Cfg.ColorScheme = settings::readInt(keys::ColorScheme); });
    guarded([&] {
        m_splash = new frmSplash;
        connect(m_splash, &frmSplash::done, this, &frmMain::splashDone);
        m_splash->ShowSplash(this, m_splashMinimumMs);
    });
    auto progress = [&](const QString& text) {
        guarded([&] {
            if (m_splash)
                m_splash->setProgress(text);
        });
    };
    progress(QStringLiteral("Checking Folders"));
    guarded([&] { CheckWorkingFolder(); });
    progress(QStringLiteral("Getting Settings"));
    guarded([&] {
        ApplyFirstStart(oApplicationPaths->ApplicationDocuments(),
                        oApplicationPaths->ApplicationInstallPath());
    });
    ReadStartupSettings(kInitSource);
    guarded([&] { m_parts->transport().setAutoPlayDelay(Cfg.AutoPlayDelay); });
    guarded([&] { m_parts->queue().applyStartupSwitches(); });
    if (Cfg.SaveWindowPosition) {
        progress(QStringLiteral("Getting Window Positions"));
        guarded([&] { applyWindowPositions(); });
    }
    progress(QStringLiteral("Applying Color Scheme"));
    guarded([&] { SetFormColors(); });
    guarded([&] {
        InitSingerNames(Cfg.DefaultName);
        LoadSingerNames();
    });
    progress(QStringLiteral("Setting Up Second Screen"));
    guarded([&] { setUpSecondScreen(); });
    ReadLateStartupSettings(kInitSource);
    guarded([&] { QCoreApplication::processEvents(); });
    guarded([&] { m_parts->queue().RetrieveQueueColumns(); });
    guarded([&] { m_parts->search().RetrieveSearchColumns(); });
    guarded([&] { QCoreApplication::processEvents(); });
    guarded([&] {
        if (Cfg.ViewAllSongsAtStartup)
            m_parts->search().LoadAllSongs();
    });
    guarded([&] { Cfg.WinAmpPath = settings::readText(keys::WinAmpPath); });
    // The queue comes back, then the player starts (with their progress texts).
    guarded([&] {
        StartPlayerAtStartup(
            m_parts->player(), [&](const QString& text) { progress(text); },
            [&] { m_parts->queue().RestoreQueue(); });
    });
    progress(QStringLiteral("Startup Completed"));
    guarded([&] {
        if (m_splash)
            m_splash->ReadyToWork();
    });
}

void frmMain::splashDone() {
    m_splash = nullptr;
    if (m_startMaximised)
        showMaximized();
    else
        show();
    m_ready = true;
    emit ready();
}

void frmMain::applyWindowPositions() {
    const QRect now = geometry();
    const WindowPlacement p =
        GetWindowPositions(IsFirstStart, twips::fromPixelsX(now.width()), twips::fromPixelsY(now.height()));
    if (p.maximised) {
        move(twips::toPixelsX(p.left), twips::toPixelsY(p.top));
        m_startMaximised = true;
        return;
    }
    resize(twips::toPixelsX(p.width), twips::toPixelsY(p.height));
    if (p.centre) {
        if (auto* s = QGuiApplication::primaryScreen()) {
            const QRect area = s->geometry();
            move(area.left() + (area.width() - width()) / 2, area.top() + (area.height() - height()) / 2);
        }
    } else {
        move(twips::toPixelsX(p.left), twips::toPixelsY(p.top));
    }
}

void frmMain::showBackgroundPreview() {
    const QString path = settings::readText(keys::MainImage);
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QImage image = FileExists(path) ? reader.read() : QImage();
    if (image.isNull()) {
        picPreview->clear();
        return;
    }
    picPreview->setPixmap(
        QPixmap::fromImage(image.scaled(picPreview->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

// ---------------------------------------------------------------- shutdown

void frmMain::closeEvent(QCloseEvent* e) {
    Form_Unload();
    e->accept();
}

void frmMain::saveWindowPositions() {
    const QRect g = geometry();
    const int state = isMaximized() ? 2 : 0;
    SaveWindowPositions(twips::fromPixelsX(g.left()), twips::fromPixelsY(g.top()), state,
                        twips::fromPixelsX(g.width()), twips::fromPixelsY(g.height()));
}

void frmMain::Form_Unload() {
    if (m_unloaded)
        return;
    m_unloaded = true;
    const QString source = QStringLiteral("KvApp.frmMain.Form_Unload");
    int line = 0;
    auto guarded = [&](const std::function<void()>& statement) { Guarded(source, ++line, statement); };
    // The show ends with the console: no clock tick or auto-play look at a
    // player that is on its way out.
    m_parts->transport().standDown();
    guarded([&] { setMinimumSize(0, 0); });
    guarded([&] { m_parts->releaseKeyboardHook(); });
    guarded([&] { m_parts->search().list()->clear(); });
    guarded([&] { CloseDatabase(); });
    guarded([&] { ClosePlayerAtShutdown(m_parts->player()); });
    guarded([&] { QCoreApplication::processEvents(); });
    guarded([&] {
        if (isMinimized())
            showNormal();
    });
    guarded([&] {
        if (Cfg.SaveWindowPosition && oSettings)
            saveWindowPositions();
    });
    guarded([&] { m_parts->queue().SaveQueueColumns(); });
    guarded([&] { m_parts->search().SaveSearchColumns(); });
    guarded([&] { RemoveTempFolder(); });
    UnloadAllForms();
    oSettings.reset();
    QCoreApplication::processEvents();
    m_folderLock.reset(); // last: the working folder is free for the next program
}

void frmMain::UnloadAllForms() {
    int line = 0;
    try {
        for (QWidget* w : QApplication::topLevelWidgets()) {
            ++line;
            if (w != this && w->isWindow() && w->isVisible())
                w->close();
        }
    } catch (...) {
        ShowApplicationError(describeException(std::current_exception()),
                             QStringLiteral("in KvApp.modMain.UnloadAllForms "), line);
    }
}

// ---------------------------------------------------------------- seams

void frmMain::InitBacking() {}
void frmMain::InitialiseJingles() {}
void frmMain::SetFormColors() {}
void frmMain::setUpSecondScreen() {}
