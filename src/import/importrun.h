#pragma once

#include "filepatternmatcher.h"
#include "trackimporter.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <set>
#include <utility>

class WalkAhead;

// One import of a folder tree into the catalogue, without a screen: the
// import screen forwards its buttons here and shows what the signals say.
//
// The walk keeps the screen alive by processing pending events (once per row,
// and every 50th and 100th file), and everything that reaches it while it runs
// (a cancel, a close, a second click on the button) does so through the flags
// ImportRunning and CancelRequested alone.
class ImportRun : public QObject {
    Q_OBJECT
public:
    explicit ImportRun(QObject* parent = nullptr);

    // The files an import takes.
    static const QString kSongFilePattern;
    // The title of the box that names the files a run left out.
    static const QString kNamesLeftOutTitle;

    // The button "Find Tracks": during a run, asks whether to cancel it;
    // otherwise imports `folderText` by `convention` when it is a folder. Both
    // ways end with the count of the catalogue and of the new tracks.
    void GetTracks(const QString& folderText, int convention);
    // Walks `folder` (with a trailing separator) and everything below it,
    // handing every song file to AddToImportDatabase.
    void SearchForFiles(const QString& folder);
    // Counts the catalogue's rows, shows the count and returns it (-1 when the
    // count failed).
    qint64 RefreshTrackCount();

    bool ImportRunning = false;
    bool CancelRequested = false;
    // The song files of the last run whose names are not UTF-8 text, as the
    // host reads them: they have no path that opens them again, so they are
    // left out, and named in a box when the run has ended.
    QStringList NamesLeftOut;
    // The root of the run: the folder's absolute clean path, with a trailing separator.
    QString RootFolder;

    TrackImporter& importer() { return m_importer; }
    // True when the run stopped at a row the catalogue refused (see
    // TrackImporter::StopReason); the host has been told.
    bool stopped() const { return !m_importer.StopReason.isEmpty(); }
    qint32 processedCount() const { return m_importer.ProcessedCount; }

    // Read afresh for every file: whether its row is a kamikaze track.
    void setKamikazeSource(std::function<bool()> source) { m_kamikaze = std::move(source); }
    // What keeps the screen alive (the application's pending events unless replaced).
    void setEventPump(std::function<void()> pump);
    // The run waits this long after the walk before it ends (1000 ms), so
    // that the last progress can be read.
    void setSettlePause(int ms) { m_settlePauseMs = ms; }

signals:
    // Caption of the run's button: "Cancel Import" while running, "Find Tracks" otherwise.
    void buttonCaptionChanged(const QString& caption);
    // The hourglass on (true) or off. It goes off after every press of the
    // run's button, also one that only asked whether to cancel.
    void busyChanged(bool busy);
    // A run has begun (true), or the outermost run has ended (false). While a
    // run is on, the catalogue must not be cleared or compacted under it.
    void runningChanged(bool running);
    // A text for the status label.
    void statusChanged(const QString& text);
    // The file being imported, every 50th file; the screen shortens it to its label.
    void progressPath(const QString& path);
    // The text of the catalogue count label.
    void totalCountChanged(const QString& text);
    // The run has ended (or was refused); the transfer button is enabled again.
    void transferEnabled();

private:
    using FolderId = std::pair<quint64, quint64>;
    void runImport(const QString& folderText, int convention);
    void walk(const QString& folder, const QByteArray& folderBytes, std::set<FolderId>& visited);
    void pump(bool now = false);
    void tellNamesLeftOut();
    static qint64 catalogueRows();
    // The box names this many of the files left out, and counts the rest.
    static constexpr int kNamesShown = 20;

    TrackImporter m_importer;
    // The reading ahead of the walk under way, if any.
    WalkAhead* m_ahead = nullptr;
    FilePatternMatcher m_matcher;
    std::function<bool()> m_kamikaze;
    std::function<void()> m_pump;
    bool m_callersPump = false;
    // The run has shown where it is at least once.
    bool m_progressShown = false;
    int m_settlePauseMs = 1000;
    int m_runDepth = 0;
};

// True when `path` names a folder; false for anything else, or nothing.
bool IsFolder(const QString& path);
// Appends the folder separator unless the text already ends in one.
QString EnsureTrailingSlash(const QString& path);
