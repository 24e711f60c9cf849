#include "queueplaybackaccess.h"

#include "queuecontroller.h"

int QueuePlaybackAccess::rowCount() const {
    return m_queue.rowCount();
}

SelectedSong QueuePlaybackAccess::detailsFromRow(int row) const {
    const QueueEntryDetails d = m_queue.GetDetailsFromRow(row);
    return SelectedSong{d.PerformerName, d.TrackPath, d.ArtistName, d.TrackName, d.Key};
}

int QueuePlaybackAccess::selectedRow() const {
    return m_queue.selectedIndex();
}

void QueuePlaybackAccess::removeRow(int row) {
    m_queue.removeRow(row);
}

void QueuePlaybackAccess::saveQueue() {
    m_queue.SaveQueue();
}
