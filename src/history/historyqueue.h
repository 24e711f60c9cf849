#pragma once

#include "historystore.h"

class QueueModel;

// What the history screen needs of the singer queue: a song appended to the
// queue list and the list saved, or songs written straight into the saved
// queue and then brought into the list. The main window serves it with its
// queue list; tests serve it with a model of their own.
class HistoryQueue {
public:
    virtual ~HistoryQueue() = default;
    // A row at the end of the queue list: singer, artist, title and key, the
    // song's path as its hidden value. Does not save.
    virtual void appendRow(const HistoryRow& row) = 0;
    // SaveQueue: the list into tblQueue.
    virtual void saveQueue() = 0;
    // One row into tblQueue at `position`, the list left as it is. Throws a
    // KvError when the row is refused.
    virtual void addToSavedQueue(int position, const HistoryRow& row) = 0;
    // RestoreQueue: every saved row behind the rows the list holds.
    virtual void restoreQueue() = 0;
};

// The queue list's model and its snapshot in tblQueue.
class QueueModelHistoryQueue : public HistoryQueue {
public:
    explicit QueueModelHistoryQueue(QueueModel& model) : m_model(model) {}
    void appendRow(const HistoryRow& row) override;
    void saveQueue() override;
    void addToSavedQueue(int position, const HistoryRow& row) override;
    void restoreQueue() override;

private:
    QueueModel& m_model;
};
