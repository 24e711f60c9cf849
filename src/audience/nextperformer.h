#pragma once

#include "audience/audiencestrip.h"
#include "playback/playbackseams.h"

#include <QString>

// Tells the room who is up next: the announcement template filled from one
// queue row goes on the audience strip at once, and stays there pass after
// pass until the next one, or until the startup text comes back. The
// template and the startup text are those the settings hold (Cfg).
class NextPerformerAnnouncer : public AnnouncementSink {
public:
    static inline const QString kClearSource = QStringLiteral("KvApp.frmMain.ClearNextPerformer");

    NextPerformerAnnouncer(QueueAccess& queue, AudienceStrip& strip) : m_queue(queue), m_strip(strip) {}

    // "%p", "%a", "%t" replaced, case-sensitive, in that order, by the
    // performer, the artist and the title: a value holding "%a" or "%t" is
    // replaced in turn by the later ones.
    static QString fillTemplate(const QString& text, const SelectedSong& song);
    // The row announced for `position` in a queue of `rows`: the position
    // itself when NextPerformerPosition is on and more than one row is left,
    // row 0 otherwise; a position one past the end wraps to 0.
    static int announcedRow(int position, int rows, bool nextPerformerPosition);

    // The announcement for the queue as it stands, `row` being the row of the
    // song just started or the row the host selected.
    void UpdateNextPerformer(int row) override;
    // The startup text back on the strip, when the audience window is shown.
    void ClearNextPerformer() override;

    // The host's buttons "U NP" and "C NP".
    void btnUpdateNP_Click();
    void btnClearNP_Click() { ClearNextPerformer(); }

private:
    QueueAccess& m_queue;
    AudienceStrip& m_strip;
};
