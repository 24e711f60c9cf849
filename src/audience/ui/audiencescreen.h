#pragma once

#include "audience/audiencestrip.h"
#include "audience/ui/frmaudience.h"

#include <QObject>
#include <QPointer>

// Holds the audience window for the main window: loads it the first time
// anything touches it, shows it at start-up when the settings say so, and
// unloads it (saving its place) from its menu, from the options screen or at
// the end. The announcements reach the strip through it.
class AudienceScreen : public QObject, public AudienceStrip {
    Q_OBJECT
public:
    explicit AudienceScreen(QObject* parent = nullptr);
    ~AudienceScreen() override;

    // The window, loaded (hidden) when it is not.
    frmAudience& window();
    // The window when loaded, else null.
    frmAudience* loaded() const { return m_window; }
    // Saves its place and closes it; the next touch loads it anew.
    void unload();
    // Start-up and the options screen's close: shown when ShowSecondScreen is on, unloaded otherwise.
    void showIfWanted();
    // Shows it, and places the strip again now that the window has its real size.
    void show();

    // How the player's video is put on a monitor; kept for every window loaded.
    void setVideoPlacer(frmAudience::VideoPlacer placer);

    // AudienceStrip
    bool isShown() const override;
    void resetStrip() override;
    void setStripText(const QString& text) override;
    void setPendingText(const QString& text) override;

signals:
    // A window was loaded (the preview and the options page follow it).
    void windowLoaded(frmAudience* window);

private:
    QPointer<frmAudience> m_window;
    frmAudience::VideoPlacer m_placer;
};
