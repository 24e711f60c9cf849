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
    // `audience` (not owned) may be null; then Reset Position does nothing.
    explicit AudiencePreview(AudienceScreen* audience, QWidget* parent = nullptr);

    QMenu* mnuBGImage;
    QAction* mnuBGSelectImage;
    QAction* mnuBGClearImage;
    QAction* mnuBGResetPosition;

    // The audience window to the main window's top left corner.
    void ResetPosition();

protected:
    void mousePressEvent(QMouseEvent* e) override;

private:
    AudienceScreen* m_audience;
};
