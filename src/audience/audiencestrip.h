#pragma once

#include <QString>

// The audience window's strip as the announcements see it, so that they need
// no window to be tested. The window loads itself when it is touched.
class AudienceStrip {
public:
    virtual ~AudienceStrip() = default;
    // The audience window is on screen.
    virtual bool isShown() const = 0;
    // The strip starts over (scroller.Reset).
    virtual void resetStrip() = 0;
    // What the strip shows now (scroller.text).
    virtual void setStripText(const QString& text) = 0;
    // The text the strip takes over at the end of each pass (frmAudience.ScrollerText).
    virtual void setPendingText(const QString& text) = 0;
};
