#pragma once

#include "audience/ui/backgroundpicture.h"

class AudienceScreen;
class QAction;
class QMenu;

// The main window's small copy of the audience picture (fraLyrics there). It
// follows MainImage whoever changes it; its right button pops up the picture
// menu mnuBGImage: change the picture, clear it, or bring a lost audience
// window back onto the host's screen.
class AudiencePreview : public BackgroundPicture {
    Q_OBJECT
public:
    explicit AudiencePreview(QWidget* parent = nullptr);
    // The audience window that Reset Position moves (not owned; null: nothing moves).
    void setAudience(AudienceScreen* audience) { m_audience = audience; }

    QMenu* mnuBGImage;
    QAction* mnuBGSelectImage;
    QAction* mnuBGClearImage;
    QAction* mnuBGResetPosition;

    // The audience window to the main window's top left corner.
    void ResetPosition();

protected:
    void mousePressEvent(QMouseEvent* e) override;

private:
    AudienceScreen* m_audience = nullptr;
};
