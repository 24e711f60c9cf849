#include "frmmain.h"

#include "frmsplash.h"
#include "mainparts.h"
#include "windowplacement.h"

#include "audience/ui/audiencepreview.h"
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
#include "core/version.h"
#include "core/workingfolder.h"
#include "core/workingfolderlock.h"
#include "playback/playerstartup.h"
#include "queue/singernames.h"
#include "queue/ui/queuecontroller.h"

#include <QApplication>
#include <QCloseEvent>
#include <QImageReader>
#include <QLabel>
#include <QPainter>
#include <QScreen>
#include <functional>

// The start-up and the shutdown of the program, in their orders.

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

} // namespace

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
    step([&] { PreparePlaybackAtStartup(m_parts->pacemaker(), m_parts->player()); });
    step([&] { m_parts->keyboardHook().createKeyboardHook(); });
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
    // The video goes to the audience window's monitor when the host asked
    // for that, once the player answers.
    guarded([&] {
        m_parts->player().whenReady([this] {
            if (frmAudience* w = m_parts->audience().loaded())
                w->applyLyricsPlace();
        });
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
    picPreview->showFile(settings::readText(keys::MainImage));
}

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
    guarded([&] { m_parts->keyboardHook().releaseKeyboardHook(); });
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
    guarded([&] { m_parts->audience().unload(); });
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
