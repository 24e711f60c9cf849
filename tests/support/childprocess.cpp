#include "childprocess.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

namespace kvtest {

QString builtProgram(const QString& name) {
    return QCoreApplication::applicationDirPath() + QLatin1Char('/') + name;
}

ChildResult runTool(const QStringList& args, int deadlineMs, const QString& folder,
                    const std::function<void()>& inChild) {
    QProcess p;
    if (!folder.isEmpty())
        p.setWorkingDirectory(folder);
    if (inChild)
        p.setChildProcessModifier(inChild);
    p.start(builtProgram(QStringLiteral("korvane-tool")), args);
    ChildResult r;
    if (!p.waitForStarted(deadlineMs))
        return r;
    r.finished = p.waitForFinished(deadlineMs);
    if (!r.finished) {
        p.kill();
        p.waitForFinished(-1);
    }
    r.exitCode = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = p.readAllStandardOutput();
    r.err = p.readAllStandardError();
    return r;
}

MarkedChild::MarkedChild(const QString& program, const QStringList& args) {
    m_process.start(program, args);
}

MarkedChild::~MarkedChild() {
    kill();
}

bool MarkedChild::waitForMarker(const QByteArray& marker, int deadlineMs) {
    const QDeadlineTimer deadline(deadlineMs);
    for (;;) {
        m_out += m_process.readAllStandardOutput();
        for (const QByteArray& line : m_out.split('\n'))
            if (line.contains(marker))
                return true;
        if (m_process.state() == QProcess::NotRunning || deadline.hasExpired())
            return false;
        m_process.waitForReadyRead(int(qMin<qint64>(deadline.remainingTime(), 1000)));
    }
}

void MarkedChild::kill() {
    if (m_process.state() == QProcess::NotRunning)
        return;
    m_process.kill(); // SIGKILL: no handler, no clean-up of any kind
    m_process.waitForFinished(-1);
}

QByteArray MarkedChild::errors() {
    return m_process.readAllStandardError();
}

} // namespace kvtest
