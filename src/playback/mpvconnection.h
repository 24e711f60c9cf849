#pragma once

#include <QJsonValue>
#include <QString>
#include <QVariant>
#include <memory>
#include <optional>

class QLocalSocket;

// One connection to a player's JSON IPC channel. Every request is synchronous:
// it writes one line, then waits for the reply that carries its request_id,
// passing over event lines and stale replies, for at most the time-out. A
// player that hangs or has gone costs the caller that time-out and no more.
class MpvConnection {
public:
    struct Reply {
        bool ok = false; // the player answered with "success"
        QString error;   // the player's error text, or ours for a transport failure
        QJsonValue data; // the "data" member of the reply
    };

    MpvConnection();
    ~MpvConnection();
    MpvConnection(const MpvConnection&) = delete;
    MpvConnection& operator=(const MpvConnection&) = delete;

    // Takes over one end of a socket pair whose other end the player holds.
    bool adoptDescriptor(int fd);
    // Connects to a player's listening socket.
    bool connectToPath(const QString& path, int timeoutMs);
    void close();
    bool isOpen() const;

    void setTimeout(int ms) { m_timeoutMs = ms; }
    int timeout() const { return m_timeoutMs; }

    // Sends `command` (a JSON array, or an object of named arguments) and waits
    // for its reply.
    Reply request(const QJsonValue& command);

    // Conveniences over request().
    Reply command(const QVariantList& args);
    std::optional<QJsonValue> property(const QString& name);
    bool setProperty(const QString& name, const QJsonValue& value);

private:
    std::optional<QJsonValue> readReply(qint64 id, int timeoutMs, QString* error);

    std::unique_ptr<QLocalSocket> m_socket;
    QByteArray m_pending;
    qint64 m_nextId = 1;
    int m_timeoutMs = 1000;
};
