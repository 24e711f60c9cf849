#include "workingfolderlock.h"

#include "prompts.h"

#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

namespace {

// The name under which the program's executable runs, as the lock file records it.
const QString kProgramName = QStringLiteral("korvane");
const QByteArray kComeForward = "come forward\n";

} // namespace

const QString WorkingFolderLock::kLockFileName = QStringLiteral("korvane.lock");
const QString WorkingFolderLock::kListenerName = QStringLiteral("korvane.sock");

WorkingFolderLock::WorkingFolderLock(const QString& folder, QObject* parent)
    : QObject(parent), m_folder(folder), m_lock(folder + kLockFileName) {
    // Held for a whole show: never taken over for its age, only when its
    // process is gone.
    m_lock.setStaleLockTime(0);
}

WorkingFolderLock::~WorkingFolderLock() {
    if (m_listener)
        m_listener->close();
}

bool WorkingFolderLock::tryLock() {
    return m_lock.tryLock(0);
}

bool WorkingFolderLock::heldByAnother() const {
    return m_lock.error() == QLockFile::LockFailedError;
}

QString WorkingFolderLock::holder() const {
    qint64 pid = 0;
    QString host, app;
    if (!m_lock.getLockInfo(&pid, &host, &app))
        return QStringLiteral("another program");
    const QString who = app == kProgramName ? QStringLiteral("Korvane") : app;
    return QStringLiteral("%1 (process %2)").arg(who).arg(pid);
}

void WorkingFolderLock::listenForSecondStarts() {
    if (m_listener)
        return;
    m_listener = new QLocalServer(this);
    m_listener->setSocketOptions(QLocalServer::UserAccessOption);
    const QString name = m_folder + kListenerName;
    // Whatever lies there was left by a holder that is gone: the lock is ours.
    QLocalServer::removeServer(name);
    if (!m_listener->listen(name))
        return; // a path too long for a socket: a second start is refused all the same
    connect(m_listener, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* s = m_listener->nextPendingConnection()) {
            connect(s, &QLocalSocket::readyRead, this, [this, s] {
                if (s->readAll().contains(kComeForward.trimmed()))
                    emit raiseRequested();
                s->disconnectFromServer();
            });
            connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
        }
    });
}

bool WorkingFolderLock::askHolderToComeForward() const {
    QLocalSocket s;
    s.connectToServer(m_folder + kListenerName, QIODevice::WriteOnly);
    if (!s.waitForConnected(1000))
        return false;
    s.write(kComeForward);
    const bool sent = s.waitForBytesWritten(1000);
    s.disconnectFromServer();
    return sent;
}

std::unique_ptr<WorkingFolderLock> TakeWorkingFolder(const QString& folder) {
    auto lock = std::make_unique<WorkingFolderLock>(folder);
    if (lock->tryLock()) {
        lock->listenForSecondStarts();
        return lock;
    }
    const QString where = QDir::toNativeSeparators(folder);
    const QString text =
        !lock->heldByAnother()
            ? QStringLiteral("Korvane cannot make its lock file in its working folder:\n%1\n\n"
                             "Check that the folder exists and that you may write in it.")
                  .arg(where)
        : lock->askHolderToComeForward()
            ? QStringLiteral("Korvane is already running on this working folder: %1.\n%2\n\n"
                             "Its window has been brought to the front.")
                  .arg(lock->holder(), where)
            : QStringLiteral("This working folder is in use by %1.\n%2\n\n"
                             "Start Korvane again when that program has ended.")
                  .arg(lock->holder(), where);
    prompts().msgBox(text, Prompts::Exclamation, QStringLiteral("Working Folder In Use"));
    return nullptr;
}
