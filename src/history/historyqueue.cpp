#include "historyqueue.h"

#include "queue/queueentrydetails.h"
#include "queue/queuemodel.h"
#include "queue/queuestore.h"

void QueueModelHistoryQueue::appendRow(const HistoryRow& r) {
    // The cells as the list takes them: an empty position, then the song.
    const QString cells =
        QStringList{QString(), r.SingerName, r.Artist, r.Title, QString::number(r.Key)}.join(
            QLatin1Char('\t'));
    m_model.addItemText(cells, r.TrackPath);
}

void QueueModelHistoryQueue::saveQueue() {
    ::SaveQueue(m_model);
}

void QueueModelHistoryQueue::addToSavedQueue(int position, const HistoryRow& r) {
    ::AddToSavedQueue(position, QueueEntryDetails{r.SingerName, r.TrackPath, r.Artist, r.Title, r.Key});
}

void QueueModelHistoryQueue::restoreQueue() {
    ::RestoreQueue(m_model);
}
