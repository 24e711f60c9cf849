#include "frmmain.h"

#include "colorschemes.h"
#include "mainlayout.h"
#include "mainparts.h"

#include "core/appsettings.h"

#include "core/twips.h"
#include "core/ui/widgetprompts.h"
#include "core/workingfolderlock.h"
#include "playback/transport.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

frmMain::frmMain(QWidget* parent) : QMainWindow(parent) {
    setObjectName(QStringLiteral("frmMain"));
    buildMainWidgets(*this, this);
    m_parts = new MainParts(*this, this);
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

void frmMain::resizeEvent(QResizeEvent* e) {
    QMainWindow::resizeEvent(e);
    layoutMainWidgets(*this, centralWidget());
}

void frmMain::SetupSizeLimits() {
    const int tppX = twips::perPixelX();
    const int tppY = twips::perPixelY();
    setMinimumSize(mainlayout::kMinTrackWidth / tppX, mainlayout::kMinTrackHeight / tppY);
    if (auto* s = QGuiApplication::primaryScreen())
        setMaximumSize(s->size());
}

// ---------------------------------------------------------------- seams

void frmMain::InitBacking() {}
void frmMain::InitialiseJingles() {}
void frmMain::SetFormColors() {
    ::SetFormColors(*this, Cfg.ColorScheme);
}
void frmMain::setUpSecondScreen() {}
