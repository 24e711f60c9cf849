#include "vbwscroller.h"

#include "core/twips.h"

#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QWindow>
#include <cmath>

vbwScroller::vbwScroller(QWidget* parent) : QFrame(parent), m_txtCredits(new QLabel(this)) {
    setObjectName(QStringLiteral("scroller"));
    m_txtCredits->setObjectName(QStringLiteral("txtCredits"));
    m_txtCredits->setWordWrap(false);
    m_txtCredits->setFocusPolicy(Qt::NoFocus);
    m_txtCredits->setTextInteractionFlags(Qt::NoTextInteraction);
    m_txtCredits->setTextFormat(Qt::PlainText);
    // Presses on the text are the strip's.
    m_txtCredits->setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    // An opaque strip: a move of the text repaints the strip only, never what lies behind it.
    setAutoFillBackground(true);
    m_model.initProperties(font());
    connect(&m_model, &ScrollerModel::boxChanged, this, &vbwScroller::applyBox);
    connect(&m_model, &ScrollerModel::lookChanged, this, &vbwScroller::applyLook);
    applyLook();
}

QRect vbwScroller::boxPixels(float left, float top, float width, float height) {
    const double px = twips::perPixelX();
    const double py = twips::perPixelY();
    const int x = int(std::floor(double(left) / px));
    const int y = int(std::floor(double(top) / py));
    return QRect(x, y, int(std::ceil(double(width) / px)), int(std::ceil(double(height) / py)));
}

void vbwScroller::applyBox() {
    const QRect r = boxPixels(m_model.boxLeft(), m_model.boxTop(), m_model.boxWidth(), m_model.boxHeight());
    if (m_txtCredits->geometry() != r)
        m_txtCredits->setGeometry(r);
}

void vbwScroller::applyLook() {
    QPalette pal = palette();
    const QColor back = vbcolor::toQColor(m_model.BackColor(), pal);
    QColor fore = vbcolor::toQColor(m_model.ForeColor(), pal);
    // Both colours default to black: text in the strip's own colour would be
    // unreadable, so it is drawn in white on a dark strip, black on a light one.
    if (fore.rgb() == back.rgb())
        fore = back.lightness() < 128 ? QColor(Qt::white) : QColor(Qt::black);
    pal.setColor(QPalette::Window, back);
    pal.setColor(QPalette::WindowText, fore);
    setPalette(pal);
    m_txtCredits->setPalette(pal);
    m_txtCredits->setFont(m_model.boxFont());
    QString shown = m_model.text();
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (m_txtCredits->text() != shown)
        m_txtCredits->setText(shown);
    const int a = m_model.Alignment();
    const Qt::Alignment h = a == 0 ? Qt::AlignLeft : a == 1 ? Qt::AlignRight : Qt::AlignHCenter;
    m_txtCredits->setAlignment(h | Qt::AlignTop);
    setFrameStyle(m_model.Border() == 1 ? (QFrame::Box | QFrame::Plain) : QFrame::NoFrame);
}

void vbwScroller::showEvent(QShowEvent* e) {
    QFrame::showEvent(e);
    if (!m_shown && !e->spontaneous()) {
        m_shown = true;
        m_model.setControlSize(width() * twips::perPixelX(), height() * twips::perPixelY());
        m_model.firstShow();
    }
}

void vbwScroller::resizeEvent(QResizeEvent* e) {
    QFrame::resizeEvent(e);
    m_model.setControlSize(width() * twips::perPixelX(), height() * twips::perPixelY());
}

void vbwScroller::mousePressEvent(QMouseEvent* e) {
    if (e->button() == Qt::RightButton) {
        if (m_popup)
            m_popup->popup(e->globalPosition().toPoint());
        return;
    }
    if (QWindow* w = window()->windowHandle())
        w->startSystemMove();
}
