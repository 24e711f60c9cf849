#pragma once

#include <QDeadlineTimer>
#include <QJsonValue>
#include <QString>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>

class QLocalSocket;

// One connection to a player's JSON IPC channel. Every request is synchronous:
// it writes one line, then waits for the reply that carries its request_id,
// passing over event lines and stale replies, for at most the time-out. A
// player that hangs or has gone costs the caller that time-out once: from the
// first request it leaves unanswered until anything comes from it again, the
// connection counts as stalled and waits only briefly for each reply, so that
// a stall does not hold the caller a second per request.
class MpvConnection {
public:
    struct Reply {
        bool ok = false; // the player answered with "success"
        QString error;   // the player's error text, or ours for a transport failure
        QJsonValue data; // the "data" member of the reply
    };
    static constexpr int kStalledWaitMs = 100;

    MpvConnection();
    ~MpvConnection();
    MpvConnection(const MpvConnection&) = delete;
    MpvConnection& operator=(const MpvConnection&) = delete;

    // Takes over one end of a socket pair whose other end the player holds.
    bool adoptDescriptor(int fd);
    // Connects to a player's listening socket: only to a socket this user owns,
    // and the connection is dropped when the process behind it is someone else's.
    bool connectToPath(const QString& path, int timeoutMs);
    void close();
    bool isOpen() const;

    void setTimeout(int ms) { m_timeoutMs = ms; }
    int timeout() const { return m_timeoutMs; }

    // The last request went unanswered (time-out or a closed connection), and
    // nothing has come from the player since.
    bool isStalled() const { return m_stalled; }
    // Called once when the connection becomes stalled, with what went wrong.
    void setStallHandler(std::function<void(const QString& reason)> handler) {
        m_onStall = std::move(handler);
    }

    // Sends `command` (a JSON array, or an object of named arguments) and waits
    // for its reply.
    Reply request(const QJsonValue& command);

    // Sends `command` and does not wait for its reply (for a command after
    // which the player may never answer, such as quit). A late reply is passed
    // over by the next request like any stale one.
    bool post(const QJsonValue& command);

    // Conveniences over request().
    Reply command(const QVariantList& args);
    std::optional<QJsonValue> property(const QString& name);
    bool setProperty(const QString& name, const QJsonValue& value);

private:
    std::optional<QJsonValue> readReply(qint64 id, QDeadlineTimer deadline, QString* error);
    // Takes in what has arrived without waiting; true when anything came.
    bool drainArrived();
    void markAnswered() { m_stalled = false; }
    void markUnanswered(const QString& reason);

    std::unique_ptr<QLocalSocket> m_socket;
    QByteArray m_pending;
    qint64 m_nextId = 1;
    int m_timeoutMs = 1000;
    bool m_stalled = false;
    std::function<void(const QString&)> m_onStall;
};
