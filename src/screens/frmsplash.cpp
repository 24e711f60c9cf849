#include "frmsplash.h"

#include "core/version.h"

#include <QApplication>
#include <QFont>
#include <QScreen>
#include <QVBoxLayout>

frmSplash::frmSplash(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    setObjectName(QStringLiteral("frmSplash"));
    setFixedSize(420, 220);
    setStyleSheet(QStringLiteral("frmSplash { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, "
                                 "stop:0 #1a0b3d, stop:1 #5b1a6e); border: 1px solid #ffd54a; }"
                                 "QLabel { color: white; }"));
    setAttribute(Qt::WA_StyledBackground);

    auto* title = new QLabel(QStringLiteral("Korvane"), this);
    QFont big = title->font();
    big.setPointSize(30);
    big.setBold(true);
    title->setFont(big);
    title->setStyleSheet(QStringLiteral("color: #ffd54a;"));
    title->setAlignment(Qt::AlignCenter);

    lblApplicationDetails = new QLabel(QStringLiteral("Version: ") + kv::versionText(), this);
    lblApplicationDetails->setObjectName(QStringLiteral("lblApplicationDetails"));
    lblApplicationDetails->setAlignment(Qt::AlignCenter);

    lblProgress = new QLabel(this);
    lblProgress->setObjectName(QStringLiteral("lblProgress"));
    lblProgress->setAlignment(Qt::AlignCenter);

    auto* layout = new QVBoxLayout(this);
    layout->addStretch();
    layout->addWidget(title);
    layout->addWidget(lblApplicationDetails);
    layout->addStretch();
    layout->addWidget(lblProgress);

    SplashTimer = new QTimer(this);
    SplashTimer->setObjectName(QStringLiteral("SplashTimer"));
    SplashTimer->setSingleShot(true);
    connect(SplashTimer, &QTimer::timeout, this, [this] {
        m_timerElapsed = true;
        finishIfBoth();
    });
}

void frmSplash::ShowSplash(QWidget* over, int minimumMs) {
    SplashTimer->setInterval(minimumMs);
    QRect area = over ? over->frameGeometry() : QRect();
    if (area.isEmpty() || !over->isVisible()) {
        if (auto* s = QGuiApplication::primaryScreen())
            area = s->availableGeometry();
    }
    move(area.center() - rect().center());
    show();
    raise();
    SplashTimer->start();
    QCoreApplication::processEvents();
}

void frmSplash::setProgress(const QString& text) {
    lblProgress->setText(text);
    QCoreApplication::processEvents();
}

void frmSplash::ReadyToWork() {
    m_ready = true;
    finishIfBoth();
}

void frmSplash::finishIfBoth() {
    if (!(m_timerElapsed && m_ready))
        return;
    emit done();
    close();
    deleteLater();
}
