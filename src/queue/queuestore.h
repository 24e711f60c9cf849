#pragma once

class QueueModel;

// The snapshot of the queue in tblQueue, which brings the queue back after a
// restart. Both procedures are guarded: a failure is logged, the host is told,
// and the program goes on.

// Appends every saved row, in QueuePos order, behind the rows the model holds
// already (the model is not cleared first).
void RestoreQueue(QueueModel& model);

// Replaces the saved rows with the model's, numbered afresh from 0. The delete
// and the new rows are one transaction: after a failure the old snapshot stands.
// Returns true when the new snapshot is in place.
bool SaveQueue(const QueueModel& model);

// Removes every saved row. Raises the catalogue's error when the statement fails.
void ClearSavedQueue();
