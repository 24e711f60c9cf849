#include "playerprocess.h"

#include <QProcess>

#include <csignal>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

PlayerProcess::PlayerProcess() = default;
PlayerProcess::~PlayerProcess() {
    kill();
}

int PlayerProcess::start(const QString& program, const QStringList& arguments) {
    kill();
    int fds[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, fds) != 0)
        return -1;
    const int ours = fds[0];
    const int theirs = fds[1];
    const pid_t parent = ::getpid();

    m_process = std::make_unique<QProcess>();
    m_process->setProgram(program);
    m_process->setArguments(arguments +
                            QStringList{QStringLiteral("--input-ipc-client=fd://%1").arg(theirs)});
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
        return -1;
    }
    return ours;
}

qint64 PlayerProcess::processId() const {
    return m_process ? m_process->processId() : 0;
}

bool PlayerProcess::isRunning() const {
    return m_process && m_process->state() != QProcess::NotRunning;
}

void PlayerProcess::kill() {
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
