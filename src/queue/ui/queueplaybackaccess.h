#pragma once

#include "playback/playbackseams.h"

class QueueController;

// The singer queue as playback reads and changes it.
class QueuePlaybackAccess : public QueueAccess {
public:
    explicit QueuePlaybackAccess(QueueController& queue) : m_queue(queue) {}

    int rowCount() const override;
    SelectedSong detailsFromRow(int row) const override;
    int selectedRow() const override;
    void removeRow(int row) override;
    void saveQueue() override;

private:
    QueueController& m_queue;
};
