#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <functional>

// Programs of the build run as child processes of a test, in the test's own
// environment (so on the same working folder).
namespace kvtest {

// The path of a program built beside the test executables.
QString builtProgram(const QString& name);

struct ChildResult {
    bool finished = false; // false when it had to be killed at the deadline
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

// Runs korvane-tool with `args` (in `folder` when given; `inChild` runs in the
// child before the tool starts) and waits for it, killing it after `deadlineMs`.
ChildResult runTool(const QStringList& args, int deadlineMs = 60000, const QString& folder = {},
                    const std::function<void()>& inChild = {});

// A child that prints a marker line when it reaches a chosen point and then
// waits there, so that the test can kill it at that very point.
class MarkedChild {
public:
    MarkedChild(const QString& program, const QStringList& args);
    ~MarkedChild();
    // Waits for a line of standard output that holds `marker`; false when the
    // child ended or the deadline passed first.
    bool waitForMarker(const QByteArray& marker, int deadlineMs = 60000);
    // SIGKILL, and waits until it is gone.
    void kill();
    QByteArray output() const { return m_out; }
    QByteArray errors();

private:
    QProcess m_process;
    QByteArray m_out;
};

} // namespace kvtest
