#include "audiencescreen.h"

#include "audience/ui/vbwscroller.h"
#include "core/appsettings.h"
#include "core/globals.h"
#include "core/settings.h"

AudienceScreen::AudienceScreen(QObject* parent) : QObject(parent) {
    // A new picture reaches the window at once, whoever changed it.
    connect(&SettingsNotifier::instance(), &SettingsNotifier::settingChanged, this,
            [this](const QString& key) {
                if (key == keys::MainImage.qualifiedName() && m_window)
                    m_window->ChangeBackgroundImage();
            });
}

AudienceScreen::~AudienceScreen() {
    unload();
}

frmAudience& AudienceScreen::window() {
    if (!m_window) {
        m_window = new frmAudience();
        m_window->setVideoPlacer(m_placer);
        frmAudience* w = m_window;
        connect(w, &frmAudience::closeRequested, this, [this, w] {
            if (m_window == w)
                unload();
        });
        emit windowLoaded(m_window);
    }
    return *m_window;
}

void AudienceScreen::unload() {
    if (!m_window)
        return;
    frmAudience* w = m_window;
    m_window = nullptr;
    // At the very end the settings store may already be closed: nothing is saved then.
    if (oSettings)
        w->savePlace();
    w->hide();
    w->deleteLater();
}

void AudienceScreen::showIfWanted() {
    if (Cfg.ShowSecondScreen)
        show();
    else
        unload();
}

void AudienceScreen::show() {
    frmAudience& w = window();
    w.show();
    w.SetScrollerPosition(Cfg.ScrollerPosition);
    w.applyLyricsPlace();
}

void AudienceScreen::setVideoPlacer(frmAudience::VideoPlacer placer) {
    m_placer = std::move(placer);
    if (m_window)
        m_window->setVideoPlacer(m_placer);
}

bool AudienceScreen::isShown() const {
    return m_window && m_window->isVisible();
}

void AudienceScreen::resetStrip() {
    window().scroller->Reset();
}

void AudienceScreen::setStripText(const QString& text) {
    window().scroller->setText(text);
}

void AudienceScreen::setPendingText(const QString& text) {
    window().setScrollerText(text);
}
