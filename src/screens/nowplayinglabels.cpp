#include "nowplayinglabels.h"

#include <QLabel>
#include <QPushButton>

void NowPlayingLabels::showCurrentSong(const QString& performer, const QString& artist,
                                       const QString& title) {
    m_l.performer->setText(performer);
    m_l.artist->setText(artist);
    m_l.song->setText(title);
}

void NowPlayingLabels::showClock(const QString& totalTime, const QString& position) {
    m_l.totalTime->setText(totalTime);
    m_l.position->setText(position);
}

QString NowPlayingLabels::keyCaption() const {
    return m_l.keyReset->text();
}

void NowPlayingLabels::setKeyCaption(const QString& caption) {
    m_l.keyReset->setText(caption);
}
