#include "backgroundpicture.h"

#include "audience/mgdiplusresize.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "core/pathhelpers.h"

#include <QPaintEvent>
#include <QPainter>

namespace {
constexpr int kReloadAfterResizeMs = 120;
}

BackgroundPicture::BackgroundPicture(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_reload.setSingleShot(true);
    m_reload.setInterval(kReloadAfterResizeMs);
    connect(&m_reload, &QTimer::timeout, this, &BackgroundPicture::reload);
}

void BackgroundPicture::showFile(const QString& file) {
    m_file = file;
    m_reload.stop();
    reload();
}

void BackgroundPicture::reload() {
    m_picture = QPixmap();
    m_failed = false;
    if (!m_file.isEmpty() && width() > 0 && height() > 0) {
        if (!FileExists(m_file)) {
            m_failed = true;
        } else {
            try {
                int w = width();
                int h = height();
                m_picture = QPixmap::fromImage(
                    mGDIPlusResize::LoadPictureGDIPlus(m_file, w, h, QColor(Qt::white), false));
            } catch (const KvError& e) {
                m_failed = true;
                // Once per file: a resize must not write the same record again and again.
                if (m_loggedFailure != m_file) {
                    m_loggedFailure = m_file;
                    LogErrorExQuietly(e.source(), e.number(), e.description(), 0);
                }
            }
        }
    }
    update();
}

void BackgroundPicture::paintEvent(QPaintEvent* e) {
    ++m_paints;
    QPainter p(this);
    if (m_picture.isNull()) {
        p.fillRect(e->rect(), Qt::white);
    } else if (m_picture.size() == size()) {
        p.drawPixmap(e->rect(), m_picture, e->rect());
    } else {
        // Between a resize and the new reading: the old picture stretched.
        p.drawPixmap(rect(), m_picture);
    }
}

void BackgroundPicture::resizeEvent(QResizeEvent* e) {
    QWidget::resizeEvent(e);
    if (m_picture.isNull() && m_file.isEmpty())
        return;
    if (m_picture.isNull() && !m_failed)
        reload();
    else
        m_reload.start();
}
