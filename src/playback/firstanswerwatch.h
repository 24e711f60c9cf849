#pragma once

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QObject>
#include <QTimer>

#include <functional>

class MpvInstance;

// Waits for the first answer of an mpv process just started, without holding
// anything up: it sends the process a first word, and the event loop looks
// every few milliseconds whether anything came back, whether the connection
// closed, or whether the time given has run out. Then `settle` runs, once,
// and does whatever setting-up the answer allows (or gives the process up).
// The owner may settle sooner itself: `stop` ends the looking.
class FirstAnswerWatch : public QObject {
public:
    static constexpr int kLookMs = 5;

    FirstAnswerWatch(MpvInstance& mpv, std::function<void()> settle, QObject* parent = nullptr);

    // Starts looking, with `timeMs` for the process to answer from now.
    void begin(const QJsonArray& firstWord, int timeMs);
    void stop() { m_look.stop(); }
    bool isWatching() const { return m_look.isActive(); }
    // What is left of the time given.
    QDeadlineTimer deadline() const { return m_deadline; }

private:
    MpvInstance& m_mpv;
    std::function<void()> m_settle;
    QDeadlineTimer m_deadline;
    QTimer m_look;
};
