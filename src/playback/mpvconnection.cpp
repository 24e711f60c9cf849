#include "mpvconnection.h"

#include "playback/playersocket.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocalSocket>

MpvConnection::MpvConnection() = default;
MpvConnection::~MpvConnection() {
    close();
}

bool MpvConnection::adoptDescriptor(int fd) {
    close();
    m_stalled = false;
    m_socket = std::make_unique<QLocalSocket>();
    if (!m_socket->setSocketDescriptor(fd)) {
        m_socket.reset();
        return false;
    }
    return true;
}

bool MpvConnection::connectToPath(const QString& path, int timeoutMs) {
    close();
    m_stalled = false;
    // Only a socket of this user's, with a process of this user's behind it.
    if (!PlayerSocket::isOwnSocket(path))
        return false;
    m_socket = std::make_unique<QLocalSocket>();
    m_socket->connectToServer(path);
    if (!m_socket->waitForConnected(timeoutMs) ||
        !PlayerSocket::peerIsOwnUser(int(m_socket->socketDescriptor()))) {
        close();
        return false;
    }
    return true;
}

void MpvConnection::close() {
    if (m_socket) {
        m_socket->abort();
        m_socket.reset();
    }
    m_pending.clear();
}

bool MpvConnection::isOpen() const {
    return m_socket && m_socket->state() == QLocalSocket::ConnectedState;
}

void MpvConnection::markUnanswered(const QString& reason) {
    if (m_stalled)
        return;
    m_stalled = true;
    if (m_onStall)
        m_onStall(reason);
}

bool MpvConnection::drainArrived() {
    const qsizetype before = m_pending.size();
    if (m_socket->bytesAvailable() > 0 || m_socket->waitForReadyRead(0))
        m_pending += m_socket->readAll();
    return m_pending.size() > before;
}

MpvConnection::Reply MpvConnection::request(const QJsonValue& command) {
    Reply r;
    if (!isOpen()) {
        r.error = QStringLiteral("not connected");
        markUnanswered(r.error);
        return r;
    }
    // A stalled player that has since said anything (a late reply, an event) is back.
    if (m_stalled && drainArrived())
        markAnswered();
    const qint64 id = m_nextId++;
    QJsonObject msg{{QStringLiteral("command"), command}, {QStringLiteral("request_id"), id}};
    QByteArray line = QJsonDocument(msg).toJson(QJsonDocument::Compact);
    line += '\n';
    QDeadlineTimer deadline(m_stalled ? std::min(m_timeoutMs, kStalledWaitMs) : m_timeoutMs);
    m_socket->write(line);
    while (m_socket->bytesToWrite() > 0) {
        if (!m_socket->waitForBytesWritten(int(deadline.remainingTime()))) {
            r.error = QStringLiteral("time-out writing to the player");
            markUnanswered(r.error);
            return r;
        }
    }
    const auto reply = readReply(id, deadline, &r.error);
    if (!reply) {
        markUnanswered(r.error);
        return r;
    }
    markAnswered();
    const QJsonObject obj = reply->toObject();
    r.error = obj.value(QStringLiteral("error")).toString();
    r.ok = r.error == QLatin1String("success");
    r.data = obj.value(QStringLiteral("data"));
    return r;
}

std::optional<QJsonValue> MpvConnection::readReply(qint64 id, QDeadlineTimer deadline, QString* error) {
    for (;;) {
        int nl;
        while ((nl = m_pending.indexOf('\n')) < 0) {
            m_pending += m_socket->readAll();
            if (m_pending.indexOf('\n') >= 0)
                break;
            if (!isOpen()) {
                *error = QStringLiteral("the player closed the connection");
                return std::nullopt;
            }
            if (deadline.hasExpired() || !m_socket->waitForReadyRead(int(deadline.remainingTime()))) {
                if (!m_socket->bytesAvailable()) {
                    *error = QStringLiteral("time-out waiting for the player");
                    return std::nullopt;
                }
            }
        }
        const QByteArray line = m_pending.left(nl);
        m_pending.remove(0, nl + 1);
        const QJsonDocument doc = QJsonDocument::fromJson(line);
        if (!doc.isObject())
            continue;
        const QJsonObject obj = doc.object();
        // Whatever the player says shows it is back: this request gets the
        // whole time-out, however late the replies to the earlier ones come.
        if (m_stalled) {
            markAnswered();
            deadline.setRemainingTime(m_timeoutMs);
        }
        // Events and the replies of requests that timed out earlier are passed over.
        if (obj.contains(QStringLiteral("event")))
            continue;
        if (obj.value(QStringLiteral("request_id")).toInteger(-1) != id)
            continue;
        return QJsonValue(obj);
    }
}

bool MpvConnection::post(const QJsonValue& command) {
    if (!isOpen())
        return false;
    QJsonObject msg{{QStringLiteral("command"), command}, {QStringLiteral("request_id"), m_nextId++}};
    QByteArray line = QJsonDocument(msg).toJson(QJsonDocument::Compact);
    line += '\n';
    m_socket->write(line);
    QDeadlineTimer deadline(m_timeoutMs);
    while (m_socket->bytesToWrite() > 0)
        if (!m_socket->waitForBytesWritten(int(deadline.remainingTime())))
            return false;
    return true;
}

MpvConnection::Reply MpvConnection::command(const QVariantList& args) {
    return request(QJsonArray::fromVariantList(args));
}

std::optional<QJsonValue> MpvConnection::property(const QString& name) {
    const Reply r = request(QJsonArray{QStringLiteral("get_property"), name});
    if (!r.ok)
        return std::nullopt;
    return r.data;
}

bool MpvConnection::setProperty(const QString& name, const QJsonValue& value) {
    return request(QJsonArray{QStringLiteral("set_property"), name, value}).ok;
}
