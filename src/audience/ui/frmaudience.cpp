#include "frmaudience.h"

#include "audience/audiencefont.h"
#include "audience/audienceplacement.h"
#include "audience/mmonitors.h"
#include "audience/ui/backgroundpicture.h"
#include "audience/ui/vbwscroller.h"
#include "audience/vbcolor.h"
#include "core/appsettings.h"
#include "core/errorlog.h"
#include "core/globals.h"
#include "core/settings.h"
#include "core/twips.h"

#include <QGuiApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

namespace {
const QString kLoadSource = QStringLiteral("KvApp.frmAudience.Form_Load");
// The strip in the window's design, in twips.
constexpr int kStripWidth = 9015;
constexpr int kStripHeight = 975;
// How near the border a press resizes the window instead of moving it, in pixels.
constexpr int kGrip = 8;

int twipsText(const SettingKey& key, int defaultValue) {
    bool ok = false;
    const int v = settings::readText(key, QString::number(defaultValue)).trimmed().toInt(&ok);
    return ok ? v : defaultValue;
}
} // namespace

frmAudience::frmAudience(QWidget* parent) : QWidget(parent, Qt::Window | Qt::FramelessWindowHint) {
    setObjectName(QStringLiteral("frmAudience"));
    setWindowTitle(QStringLiteral("Audience"));
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);

    fraLyrics = new BackgroundPicture(this);
    fraLyrics->setObjectName(QStringLiteral("fraLyrics"));
    // The window handles the mouse over the picture.
    fraLyrics->setAttribute(Qt::WA_TransparentForMouseEvents);

    scroller = new vbwScroller(this);
    scroller->setGeometry(0, 0, twips::toPixelsX(kStripWidth), twips::toPixelsY(kStripHeight));
    ScrollerModel& m = scroller->model();
    m.setScrollType(3);
    m.setInterval(30);
    QFont design(QStringLiteral("Verdana"));
    design.setPointSizeF(27.75);
    design.setBold(true);
    m.setFont(design);
    m.setText(QString());
    scroller->raise();

    mnuPopup = new QMenu(QStringLiteral("popupmenu"), this);
    mnuPopup->setObjectName(QStringLiteral("mnuPopup"));
    mnuPopupRestore = mnuPopup->addAction(QStringLiteral("Restore"), this, &frmAudience::Restore);
    mnuPopupRestore->setObjectName(QStringLiteral("mnuPopupRestore"));
    mnuPopupFullScreen = mnuPopup->addAction(QStringLiteral("Full Screen"), this, &frmAudience::FullScreen);
    mnuPopupFullScreen->setObjectName(QStringLiteral("mnuPopupFullScreen"));
    mnuPopupLyricsHere = mnuPopup->addAction(QStringLiteral("Lyrics Full Screen Here"));
    mnuPopupLyricsHere->setObjectName(QStringLiteral("mnuPopupLyricsHere"));
    mnuPopupLyricsHere->setCheckable(true);
    mnuPopupLyricsHere->setToolTip(
        QStringLiteral("Show the karaoke player's video full screen on the monitor of this window"));
    mnuPopup->addSeparator();
    mnuPopUpClose = mnuPopup->addAction(QStringLiteral("Close"), this, &frmAudience::closeRequested);
    mnuPopUpClose->setObjectName(QStringLiteral("mnuPopUpClose"));
    scroller->setPopupMenu(mnuPopup);

    // A text written into ScrollerText waits for the running pass to end.
    connect(&m, &ScrollerModel::OnCompleteScroll, this,
            [this] { scroller->model().setText(m_scrollerText); });

    Form_Load();

    mnuPopupLyricsHere->setChecked(settings::readBool(keys::LyricsOnAudienceScreen));
    connect(mnuPopupLyricsHere, &QAction::toggled, this, [this](bool on) {
        settings::writeBool(keys::LyricsOnAudienceScreen, on);
        if (m_videoPlacer)
            m_videoPlacer(on, standingScreen());
        m_videoScreen = on ? standingScreen() : nullptr;
    });
}

frmAudience::~frmAudience() = default;

void frmAudience::Form_Load() {
    using namespace audienceplacement;
    Saved saved;
    QString fontName;
    bool bold = false;
    int fontSize = 36;
    int speed = 30;
    quint32 fore = 0;
    quint32 back = 0;
    Guarded(kLoadSource, 2, [&] {
        saved.left = twipsText(keys::SecLeft, 0);
        saved.top = twipsText(keys::SecTop, 0);
        saved.state = settings::readInt(keys::SecState, 0);
        saved.width = twipsText(keys::SecWidth, kDesignWidth);
        saved.height = twipsText(keys::SecHeight, kDesignHeight);
        fontName = settings::readText(keys::Font, QStringLiteral("LCD"));
        bold = settings::readBool(keys::FontBold, false);
        fontSize = settings::readInt(keys::FontSize, 36);
        speed = settings::readInt(keys::ScrollerSpeed, 30);
        fore = vbcolor::parse(settings::readText(keys::AudienceScrollerFontColor, QStringLiteral("0")));
        back = vbcolor::parse(settings::readText(keys::AudienceScrollerColor, QStringLiteral("0")));
    });
    Guarded(kLoadSource, 3, [&] {
        ScrollerModel& m = scroller->model();
        m.setBackColor(back);
        m.setForeColor(fore);
        m.setInterval(qMax(1, speed));
        m.setFontBold(bold);
        m.setFontSize(fontSize);
        // Last: the name goes through the font's read, which brings the measuring font up to date.
        m.setFontName(audiencefont::resolveFamily(fontName));
    });
    Guarded(kLoadSource, 4, [&] {
        const QScreen* primary = QGuiApplication::primaryScreen();
        const Placement p =
            place(saved, IsFirstStart, primary ? primary->geometry() : QRect(0, 0, 1024, 768),
                  MMonitors::desktopOf(MMonitors::screenRects()), twips::perPixelX(), twips::perPixelY());
        setGeometry(p.rect);
        if (p.maximised)
            FullScreen();
        // A hidden window gets its resize event only when shown: the picture box takes its size now.
        fraLyrics->setGeometry(rect());
        placeStrip();
    });
    Guarded(kLoadSource, 7, [&] { ChangeBackgroundImage(); });
    Guarded(kLoadSource, 8, [&] { SetScrollerPosition(Cfg.ScrollerPosition); });
    Guarded(kLoadSource, 9, [&] {
        m_scrollerText = settings::readText(keys::ScrollerStartupText, QStringLiteral("Welcome"));
        scroller->setText(m_scrollerText);
    });
}

void frmAudience::ChangeBackgroundImage() {
    fraLyrics->showFile(settings::readText(keys::MainImage, QString()));
}

void frmAudience::SetScrollerPosition(int pos) {
    switch (pos) {
    case 0:
        scroller->setVisible(true);
        scroller->move(0, 0);
        break;
    case 1: {
        const int top = audienceplacement::bottomStripTop(twips::fromPixelsY(frameGeometry().height()),
                                                          twips::fromPixelsY(scroller->height()));
        scroller->setVisible(true);
        scroller->move(0, twips::toPixelsY(top));
        break;
    }
    case 2:
        scroller->setVisible(false);
        break;
    default:
        return;
    }
    m_scrollerPosition = pos;
    placeStrip();
}

void frmAudience::placeStrip() {
    if (scroller->isVisibleTo(this))
        scroller->resize(width(), scroller->height());
}

QScreen* frmAudience::standingScreen() const {
    if (QScreen* s = QGuiApplication::screenAt(frameGeometry().center()))
        return s;
    return screen() ? screen() : QGuiApplication::primaryScreen();
}

bool frmAudience::isFullScreenState() const {
    return windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen);
}

void frmAudience::FullScreen() {
    QScreen* s = standingScreen();
    if (!s)
        return;
    if (windowHandle() && windowHandle()->screen() != s)
        windowHandle()->setScreen(s);
    // Without a window manager the state alone moves nothing: the geometry does it.
    setGeometry(s->geometry());
    setWindowState((windowState() & ~Qt::WindowMinimized) | Qt::WindowFullScreen);
}

void frmAudience::Restore() {
    const QPoint at = geometry().topLeft();
    setWindowState(windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
    setGeometry(QRect(at, QSize(twips::toPixelsX(audienceplacement::kDesignWidth),
                                twips::toPixelsY(audienceplacement::kDesignHeight))));
}

void frmAudience::savePlace() {
    const QRect r = frameGeometry();
    settings::writeText(keys::SecLeft, QString::number(twips::fromPixelsX(r.x())));
    settings::writeText(keys::SecTop, QString::number(twips::fromPixelsY(r.y())));
    settings::writeInt(keys::SecState, isFullScreenState() ? 2 : 0);
    settings::writeText(keys::SecWidth, QString::number(twips::fromPixelsX(r.width())));
    settings::writeText(keys::SecHeight, QString::number(twips::fromPixelsY(r.height())));
}

void frmAudience::applyLyricsPlace() {
    if (!m_videoPlacer || !mnuPopupLyricsHere->isChecked())
        return;
    m_videoScreen = standingScreen();
    m_videoPlacer(true, m_videoScreen);
}

void frmAudience::closeEvent(QCloseEvent* e) {
    // However it is closed, the holder unloads it (and saves its place).
    QWidget::closeEvent(e);
    emit closeRequested();
}

void frmAudience::resizeEvent(QResizeEvent* e) {
    QWidget::resizeEvent(e);
    placeStrip();
    // The picture reads itself again at the new size.
    fraLyrics->setGeometry(rect());
}

void frmAudience::moveEvent(QMoveEvent* e) {
    QWidget::moveEvent(e);
    // The video follows the window onto another monitor.
    if (m_videoScreen && isVisible() && standingScreen() != m_videoScreen)
        applyLyricsPlace();
}

Qt::Edges frmAudience::edgesAt(const QPoint& pos) const {
    if (isFullScreenState())
        return {};
    Qt::Edges edges;
    if (pos.x() < kGrip)
        edges |= Qt::LeftEdge;
    if (pos.x() >= width() - kGrip)
        edges |= Qt::RightEdge;
    if (pos.y() < kGrip)
        edges |= Qt::TopEdge;
    if (pos.y() >= height() - kGrip)
        edges |= Qt::BottomEdge;
    return edges;
}

void frmAudience::showPopup(const QPoint& globalPos) {
    const bool full = isFullScreenState();
    mnuPopupFullScreen->setVisible(!full);
    mnuPopupRestore->setVisible(full);
    mnuPopup->popup(globalPos);
}

void frmAudience::mousePressEvent(QMouseEvent* e) {
    if (e->button() == Qt::RightButton) {
        showPopup(e->globalPosition().toPoint());
        return;
    }
    QWindow* w = windowHandle();
    if (!w)
        return;
    const Qt::Edges edges = edgesAt(e->position().toPoint());
    if (edges)
        w->startSystemResize(edges);
    else
        w->startSystemMove();
}

void frmAudience::mouseMoveEvent(QMouseEvent* e) {
    const Qt::Edges edges = edgesAt(e->position().toPoint());
    if (edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge))
        setCursor(Qt::SizeFDiagCursor);
    else if (edges == (Qt::RightEdge | Qt::TopEdge) || edges == (Qt::LeftEdge | Qt::BottomEdge))
        setCursor(Qt::SizeBDiagCursor);
    else if (edges & (Qt::LeftEdge | Qt::RightEdge))
        setCursor(Qt::SizeHorCursor);
    else if (edges & (Qt::TopEdge | Qt::BottomEdge))
        setCursor(Qt::SizeVerCursor);
    else
        unsetCursor();
    QWidget::mouseMoveEvent(e);
}
