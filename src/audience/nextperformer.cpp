#include "nextperformer.h"

#include "core/appsettings.h"
#include "core/errorlog.h"

QString NextPerformerAnnouncer::fillTemplate(const QString& text, const SelectedSong& song) {
    QString out = text;
    out.replace(QStringLiteral("%p"), song.PerformerName, Qt::CaseSensitive);
    out.replace(QStringLiteral("%a"), song.ArtistName, Qt::CaseSensitive);
    out.replace(QStringLiteral("%t"), song.TrackName, Qt::CaseSensitive);
    return out;
}

int NextPerformerAnnouncer::announcedRow(int position, int rows, bool nextPerformerPosition) {
    if (position == rows)
        position = 0;
    if (rows <= 1 || !nextPerformerPosition)
        return 0;
    return position;
}

void NextPerformerAnnouncer::UpdateNextPerformer(int row) {
    const int rows = m_queue.rowCount();
    if (rows == 0)
        return;
    const int chosen = announcedRow(row, rows, Cfg.NextPerformerPosition);
    // A row that is not there (no selection) is logged by the queue and gives empty names.
    const QString text = fillTemplate(Cfg.ScrollerText, m_queue.detailsFromRow(chosen));
    m_strip.resetStrip();
    m_strip.setStripText(text);
    m_strip.setPendingText(text);
}

void NextPerformerAnnouncer::ClearNextPerformer() {
    Guarded(kClearSource, 1, [this] {
        if (!m_strip.isShown())
            return;
        m_strip.setStripText(Cfg.ScrollerStartupText);
        m_strip.setPendingText(Cfg.ScrollerStartupText);
    });
}

void NextPerformerAnnouncer::btnUpdateNP_Click() {
    if (m_queue.rowCount() > 0)
        UpdateNextPerformer(m_queue.selectedRow());
}
