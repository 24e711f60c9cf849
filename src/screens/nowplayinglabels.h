#pragma once

#include "playback/playbackseams.h"

class QLabel;
class QPushButton;

// The song on stage as the main window shows it: the three labels, the clock
// labels, and the caption of btnKeyReset, where the current key lives.
class NowPlayingLabels : public NowPlayingView {
public:
    struct Labels {
        QLabel *performer, *artist, *song, *totalTime, *position;
        QPushButton* keyReset;
    };
    explicit NowPlayingLabels(const Labels& labels) : m_l(labels) {}

    void showCurrentSong(const QString& performer, const QString& artist, const QString& title) override;
    void showClock(const QString& totalTime, const QString& position) override;
    QString keyCaption() const override;
    void setKeyCaption(const QString& caption) override;

private:
    Labels m_l;
};
