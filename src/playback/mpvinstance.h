#pragma once

#include <QDeadlineTimer>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <functional>
#include <memory>
#include <optional>

class QLocalSocket;
class QProcess;

// One mpv process of the program's own and its JSON IPC channel.
//
// The process is tied to this program twice over, so that it can never outlive
// it: it holds one end of a socket pair as its IPC client and quits when the
// other end closes, and the kernel kills it when the thread that started it dies
// (parent-death signal, kept across exec). The program talks to it over its end
// of that pair; the listening socket (when one is set) lets another copy of the
// program find a running instance.
//
// Every request is synchronous: it writes one line, then waits for the reply
// that carries its request_id, passing over stale replies, for at most the
// time-out. A player that hangs or has gone costs the caller that time-out once:
// from the first request it leaves unanswered until anything comes from it
// again, the instance counts as stalled and waits only briefly for each reply,
// so that a stall does not hold the caller a second per request.
//
// Events that arrive among the replies are kept and handed to the event
// handler once the request that met them is over (never in the middle of one).
class MpvInstance {
public:
    struct Reply {
        bool ok = false; // the player answered with "success"
        QString error;   // the player's error text, or ours for a transport failure
        QJsonValue data; // the "data" member of the reply
    };
    static constexpr int kStalledWaitMs = 100;

    MpvInstance();
    ~MpvInstance();
    MpvInstance(const MpvInstance&) = delete;
    MpvInstance& operator=(const MpvInstance&) = delete;

    // ---- the process

    // Where the instance listens for other clients (empty: nowhere).
    void setSocketPath(const QString& path) { m_socketPath = path; }
    QString socketPath() const { return m_socketPath; }
    // Starts `program` with `arguments`, the listening socket and the IPC-client
    // option that names the player's end of the socket pair, and takes over our
    // end. False when the program could not be started.
    bool start(const QString& program, const QStringList& arguments);
    qint64 processId() const;
    bool isRunning() const;
    // Closes the connection and ends the process (when it is still there),
    // waiting for it briefly.
    void kill();

    // ---- the connection

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

    // ---- events

    // Receives each event object ({"event": "end-file", ...}) in the order the
    // player sent them.
    void setEventHandler(std::function<void(const QJsonObject& event)> handler) {
        m_onEvent = std::move(handler);
    }
    // Takes in what has arrived, without waiting, and hands its events over.
    void pollEvents();
    // Takes in what has arrived, without waiting: true when anything the
    // player said is waiting to be read.
    bool hasSpoken();

private:
    std::optional<QJsonValue> readReply(qint64 id, QDeadlineTimer deadline, QString* error);
    // Takes in what has arrived without waiting; true when anything came.
    bool drainArrived();
    // Keeps the events among the complete lines that have arrived; replies
    // left there are stale (their requests gave up on them) and go.
    void takeEventLines();
    void deliverEvents();
    void markAnswered() { m_stalled = false; }
    void markUnanswered(const QString& reason);

    std::unique_ptr<QProcess> m_process;
    QString m_socketPath;

    std::unique_ptr<QLocalSocket> m_socket;
    QByteArray m_pending;
    qint64 m_nextId = 1;
    int m_timeoutMs = 1000;
    bool m_stalled = false;
    std::function<void(const QString&)> m_onStall;

    QList<QJsonObject> m_events;
    bool m_delivering = false;
    std::function<void(const QJsonObject&)> m_onEvent;
};
