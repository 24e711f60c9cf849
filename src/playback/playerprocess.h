#pragma once

#include <QString>
#include <QStringList>
#include <memory>

class QProcess;

// The player's process. It is tied to this program twice over, so that it can
// never outlive it: the player holds one end of a socket pair as its IPC client
// and quits when the other end closes, and the kernel kills it when the thread
// that started it dies (parent-death signal, kept across exec).
class PlayerProcess {
public:
    PlayerProcess();
    ~PlayerProcess();
    PlayerProcess(const PlayerProcess&) = delete;
    PlayerProcess& operator=(const PlayerProcess&) = delete;

    // Starts `program` with `arguments`, followed by the IPC-client option that
    // names the player's end of the socket pair. Returns our end (to be adopted
    // by an MpvConnection) or -1 when the program could not be started.
    int start(const QString& program, const QStringList& arguments);
    qint64 processId() const;
    bool isRunning() const;
    // Ends the process (when it is still there) and waits for it briefly.
    void kill();

private:
    std::unique_ptr<QProcess> m_process;
};
