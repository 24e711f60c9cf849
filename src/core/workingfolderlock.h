#pragma once

#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

class QLocalServer;

// One process writes to a working folder at a time: Korvane for the whole of
// its run, korvane-tool import while it imports. The lock is a lock file in
// the working folder; a holder that was killed leaves a stale file, which
// the next taker recognises by its dead process and takes over. Reading the
// catalogue (a search) needs no lock.
//
// The running program also listens beside the lock file, so that a second
// start on the same folder can ask it to bring its window forward.
class WorkingFolderLock : public QObject {
    Q_OBJECT
public:
    // `folder` is the working folder, with a trailing separator.
    explicit WorkingFolderLock(const QString& folder, QObject* parent = nullptr);
    ~WorkingFolderLock() override;

    // Takes the lock; false when another live process holds it.
    bool tryLock();
    // After a failed tryLock(): true when another process holds the lock,
    // false when the lock file could not be made at all.
    bool heldByAnother() const;
    // Who holds the lock, for a message: "Korvane (process 1234)".
    QString holder() const;

    // Listens for a second start's request (the program does, once it holds
    // the lock); each one emits raiseRequested().
    void listenForSecondStarts();
    // Asks the holder to bring its window forward; true when it was reached.
    bool askHolderToComeForward() const;

    // The lock file's name and the name the program listens under, in the folder.
    static const QString kLockFileName;
    static const QString kListenerName;

signals:
    void raiseRequested();

private:
    QString m_folder;
    QLockFile m_lock;
    QLocalServer* m_listener = nullptr;
};

// The start-up's step: takes the working folder for the program. When another
// process holds it, the host is told who (and the other program is asked to
// come forward), and nothing is returned: the program must end.
std::unique_ptr<WorkingFolderLock> TakeWorkingFolder(const QString& folder);
