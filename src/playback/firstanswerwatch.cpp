#include "firstanswerwatch.h"

#include "playback/mpvinstance.h"

FirstAnswerWatch::FirstAnswerWatch(MpvInstance& mpv, std::function<void()> settle, QObject* parent)
    : QObject(parent), m_mpv(mpv), m_settle(std::move(settle)) {
    m_look.setInterval(kLookMs);
    connect(&m_look, &QTimer::timeout, this, [this] {
        if (m_mpv.hasSpoken() || !m_mpv.isOpen() || m_deadline.hasExpired()) {
            m_look.stop();
            m_settle();
        }
    });
}

void FirstAnswerWatch::begin(const QJsonArray& firstWord, int timeMs) {
    m_deadline.setRemainingTime(timeMs);
    // The reply to this shows that the process is up.
    m_mpv.post(firstWord);
    m_look.start();
}
