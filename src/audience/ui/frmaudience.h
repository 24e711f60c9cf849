#pragma once

#include <QString>
#include <QWidget>
#include <functional>

class BackgroundPicture;
class QAction;
class QMenu;
class QScreen;
class vbwScroller;

// The second screen, what the room sees: one picture filling a window without
// a title bar and, over it, the scrolling strip. The host drags it (any button
// but the right) onto the room's display and picks Full Screen from its
// right-click menu; it remembers its place and state in the settings (in
// twips) and goes back there at the next start, onto the desktop if the
// monitor it stood on has gone.
class frmAudience : public QWidget {
    Q_OBJECT
public:
    // Form_Load: reads the settings and takes its place (hidden until shown).
    explicit frmAudience(QWidget* parent = nullptr);
    ~frmAudience() override;

    vbwScroller* scroller = nullptr;
    BackgroundPicture* fraLyrics = nullptr;
    QMenu* mnuPopup = nullptr;
    QAction* mnuPopupRestore = nullptr;
    QAction* mnuPopupFullScreen = nullptr;
    QAction* mnuPopUpClose = nullptr;
    // Our own: the karaoke player's video full screen on this window's monitor.
    QAction* mnuPopupLyricsHere = nullptr;

    // Reloads MainImage and paints it over the window.
    void ChangeBackgroundImage();
    // 0 strip at the top, 1 at the bottom, 2 no strip; anything else does nothing.
    void SetScrollerPosition(int pos);
    // The pending strip text, taken over each time a pass completes.
    QString ScrollerText() const { return m_scrollerText; }
    void setScrollerText(const QString& text) { m_scrollerText = text; }

    // Full Screen (state 2) on the monitor under the window's centre; Restore
    // (state 0) at the design size.
    void FullScreen();
    void Restore();
    bool isFullScreenState() const;
    // The monitor the window stands on (under its centre).
    QScreen* standingScreen() const;

    // Writes SecLeft, SecTop, SecState, SecWidth, SecHeight from the window as it is.
    void savePlace();

    // What puts the player's video on a monitor (on: full screen there; off: back in its window).
    using VideoPlacer = std::function<void(bool on, QScreen* screen)>;
    void setVideoPlacer(VideoPlacer placer) { m_videoPlacer = std::move(placer); }
    // Puts the video where LyricsOnAudienceScreen says, when it says so.
    void applyLyricsPlace();

signals:
    // Close from the menu: the holder unloads the window.
    void closeRequested();

protected:
    void closeEvent(QCloseEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void moveEvent(QMoveEvent* e) override;

private:
    void Form_Load();
    void showPopup(const QPoint& globalPos);
    void placeStrip();
    Qt::Edges edgesAt(const QPoint& pos) const;

    QString m_scrollerText;
    int m_scrollerPosition = 0;
    QSize m_lastMaximisedSize;
    VideoPlacer m_videoPlacer;
    QScreen* m_videoScreen = nullptr;
};
