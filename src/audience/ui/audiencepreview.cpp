#include "audiencepreview.h"

#include "audience/backgroundimage.h"
#include "audience/ui/audiencescreen.h"
#include "core/settings.h"

#include <QMenu>
#include <QMouseEvent>

AudiencePreview::AudiencePreview(QWidget* parent) : BackgroundPicture(parent) {
    setObjectName(QStringLiteral("picPreview"));
    mnuBGImage = new QMenu(QStringLiteral("BG"), this);
    mnuBGImage->setObjectName(QStringLiteral("mnuBGImage"));
    mnuBGSelectImage =
        mnuBGImage->addAction(QStringLiteral("Change Image"), this, [] { backgroundimage::SelectImage(); });
    mnuBGSelectImage->setObjectName(QStringLiteral("mnuBGSelectImage"));
    mnuBGClearImage =
        mnuBGImage->addAction(QStringLiteral("Clear"), this, [] { backgroundimage::ClearImage(); });
    mnuBGClearImage->setObjectName(QStringLiteral("mnuBGClearImage"));
    mnuBGResetPosition =
        mnuBGImage->addAction(QStringLiteral("Reset Position"), this, &AudiencePreview::ResetPosition);
    mnuBGResetPosition->setObjectName(QStringLiteral("mnuBGResetPosition"));

    connect(&SettingsNotifier::instance(), &SettingsNotifier::settingChanged, this,
            [this](const QString& key) {
                if (key == keys::MainImage.qualifiedName())
                    showFile(settings::readText(keys::MainImage));
            });
}

void AudiencePreview::ResetPosition() {
    if (m_audience)
        m_audience->window().move(window()->frameGeometry().topLeft());
}

void AudiencePreview::mousePressEvent(QMouseEvent* e) {
    if (e->button() == Qt::RightButton)
        mnuBGImage->popup(e->globalPosition().toPoint());
}
