#include "mpvinstance.h"

#include "playback/playersocket.h"

#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QProcess>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

MpvInstance::MpvInstance() = default;
MpvInstance::~MpvInstance() {
    kill();
}

// ---------------------------------------------------------------- the process

bool MpvInstance::start(const QString& program, const QStringList& arguments) {
    kill();
    int fds[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0)
        return false;
    const int ours = fds[0];
    const int theirs = fds[1];
    const pid_t parent = ::getpid();

    QStringList args = arguments;
    if (!m_socketPath.isEmpty())
        args.append(QStringLiteral("--input-ipc-server=") + m_socketPath);
    args.append(QStringLiteral("--input-ipc-client=fd://%1").arg(theirs));

    m_process = std::make_unique<QProcess>();
    m_process->setProgram(program);
    m_process->setArguments(args);
    m_process->setStandardInputFile(QProcess::nullDevice());
    m_process->setStandardOutputFile(QProcess::nullDevice());
    m_process->setStandardErrorFile(QProcess::nullDevice());
    // Runs in the child between fork and exec: only async-signal-safe calls.
    m_process->setChildProcessModifier([theirs, parent] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(127);            // the program died before the signal was armed
        ::fcntl(theirs, F_SETFD, 0); // the player's end survives exec
    });
    m_process->start();
    const bool started = m_process->waitForStarted(5000);
    ::close(theirs);
    if (!started) {
        ::close(ours);
        m_process.reset();
        return false;
    }
    if (!adoptDescriptor(ours)) {
        ::close(ours);
        kill();
        return false;
    }
    return true;
}

qint64 MpvInstance::processId() const {
    return m_process ? m_process->processId() : 0;
}

bool MpvInstance::isRunning() const {
    return m_process && m_process->state() != QProcess::NotRunning;
}

void MpvInstance::kill() {
    close();
    if (!m_process)
        return;
    if (m_process->state() != QProcess::NotRunning) {
        m_process->terminate();
        if (!m_process->waitForFinished(1500)) {
            m_process->kill();
            m_process->waitForFinished(1500);
        }
    }
    m_process.reset();
}

// ---------------------------------------------------------------- the connection

bool MpvInstance::adoptDescriptor(int fd) {
    close();
    m_stalled = false;
    m_socket = std::make_unique<QLocalSocket>();
    if (!m_socket->setSocketDescriptor(fd)) {
        m_socket.reset();
        return false;
    }
    return true;
}

bool MpvInstance::connectToPath(const QString& path, int timeoutMs) {
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

void MpvInstance::close() {
    if (m_socket) {
        m_socket->abort();
        m_socket.reset();
    }
    m_pending.clear();
    m_events.clear();
}

bool MpvInstance::isOpen() const {
    return m_socket && m_socket->state() == QLocalSocket::ConnectedState;
}

void MpvInstance::markUnanswered(const QString& reason) {
    if (m_stalled)
        return;
    m_stalled = true;
    if (m_onStall)
        m_onStall(reason);
}

bool MpvInstance::drainArrived() {
    const qsizetype before = m_pending.size();
    if (m_socket->bytesAvailable() > 0 || m_socket->waitForReadyRead(0))
        m_pending += m_socket->readAll();
    return m_pending.size() > before;
}

bool MpvInstance::hasSpoken() {
    if (isOpen())
        drainArrived();
    return !m_pending.isEmpty();
}

MpvInstance::Reply MpvInstance::request(const QJsonValue& command) {
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
        deliverEvents();
        return r;
    }
    markAnswered();
    const QJsonObject obj = reply->toObject();
    r.error = obj.value(QStringLiteral("error")).toString();
    r.ok = r.error == QLatin1String("success");
    r.data = obj.value(QStringLiteral("data"));
    deliverEvents();
    return r;
}

std::optional<QJsonValue> MpvInstance::readReply(qint64 id, QDeadlineTimer deadline, QString* error) {
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
        if (obj.contains(QStringLiteral("event"))) {
            if (m_onEvent)
                m_events.append(obj);
            continue;
        }
        // The replies of requests that timed out earlier are passed over.
        if (obj.value(QStringLiteral("request_id")).toInteger(-1) != id)
            continue;
        return QJsonValue(obj);
    }
}

bool MpvInstance::post(const QJsonValue& command) {
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

MpvInstance::Reply MpvInstance::command(const QVariantList& args) {
    return request(QJsonArray::fromVariantList(args));
}

std::optional<QJsonValue> MpvInstance::property(const QString& name) {
    const Reply r = request(QJsonArray{QStringLiteral("get_property"), name});
    if (!r.ok)
        return std::nullopt;
    return r.data;
}

bool MpvInstance::setProperty(const QString& name, const QJsonValue& value) {
    return request(QJsonArray{QStringLiteral("set_property"), name, value}).ok;
}

// ---------------------------------------------------------------- events

void MpvInstance::takeEventLines() {
    for (int nl; (nl = m_pending.indexOf('\n')) >= 0;) {
        const QJsonDocument doc = QJsonDocument::fromJson(m_pending.left(nl));
        m_pending.remove(0, nl + 1);
        if (!doc.isObject())
            continue;
        if (m_stalled)
            markAnswered();
        if (m_onEvent && doc.object().contains(QStringLiteral("event")))
            m_events.append(doc.object());
    }
}

void MpvInstance::pollEvents() {
    if (!isOpen() || m_delivering)
        return;
    drainArrived();
    takeEventLines();
    deliverEvents();
}

void MpvInstance::deliverEvents() {
    // A handler that asks the player something meets further events; they
    // join the list and are handed over by this same loop.
    if (m_delivering || !m_onEvent)
        return;
    m_delivering = true;
    while (!m_events.isEmpty()) {
        const QJsonObject event = m_events.takeFirst();
        m_onEvent(event);
    }
    m_delivering = false;
}
