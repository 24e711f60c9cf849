#include "importrun.h"

#include "walkahead.h"

#include "catalogue/cataloguestore.h"

#include "catalogue/database.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "core/prompts.h"
#include "eventlook.h"
#include "importsession.h"
#include "importtext.h"
#include "importtransaction.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QThread>

#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace {

const QString kRunSource = QStringLiteral("KvApp.frmImportSongs.btnGetTracks_Click");
const QString kCountSource = QStringLiteral("KvApp.frmImportSongs.RefreshTrackCount");
// The walk's errors carry the name it had when it lived on the options screen.
const QString kWalkPlace = QStringLiteral("in KvApp.frmOptions.SearchForFiles ");
const QString kFindTracks = QStringLiteral("Find Tracks");
const QString kCancelImport = QStringLiteral("Cancel Import");

// Line labels of the walk, as its error box reports them.
constexpr int kLineOpenFolder = 3;
constexpr int kLineNextEntry = 6;

QString systemError(int err) {
    return QString::fromLocal8Bit(std::strerror(err));
}

} // namespace

const QString ImportRun::kNamesLeftOutTitle = QStringLiteral("Files Not Imported");

const QString ImportRun::kSongFilePattern =
    QStringLiteral("*.zip; *.mp3; *.wma; *.ogg; *.mpg; *.dat; *.avi; *.divx; *.mp4");

bool IsFolder(const QString& path) {
    return !path.isEmpty() && QFileInfo(path).isDir();
}

QString EnsureTrailingSlash(const QString& path) {
    return path.endsWith(QLatin1Char('/')) ? path : path + QLatin1Char('/');
}

ImportRun::ImportRun(QObject* parent)
    : QObject(parent), m_matcher(kSongFilePattern), m_pump([] { QCoreApplication::processEvents(); }) {}

void ImportRun::setEventPump(std::function<void()> pump) {
    m_pump = pump;
    m_callersPump = true;
    m_importer.setEventPump(std::move(pump));
}

void ImportRun::pump(bool now) {
    // A caller's own pump runs every time; the application's events are
    // looked at every few milliseconds, or `now`.
    if (!m_callersPump && !now && !EventLookDue())
        return;
    // The screen may read the catalogue: what waits for its group goes in first.
    m_importer.flushRows();
    if (m_pump)
        m_pump();
}

void ImportRun::GetTracks(const QString& folderText, int convention) {
    if (ImportRunning) {
        const int answer =
            prompts().msgBox(QStringLiteral("Are you sure you wish to cancel the import?"),
                             Prompts::OkCancel | Prompts::Question, QStringLiteral("Cancel Import"));
        if (answer == Prompts::Ok) {
            CancelRequested = true;
            emit buttonCaptionChanged(kFindTracks);
        }
    } else if (!IsFolder(folderText)) {
        prompts().msgBox(QStringLiteral("Please choose a valid folder"), Prompts::Exclamation,
                         QStringLiteral("Invalid Folder"));
    } else {
        runImport(folderText, convention);
    }
    RefreshTrackCount();
    emit statusChanged(QString::number(importSession().NewTrackCount) +
                       QStringLiteral(" new tracks were imported."));
    emit busyChanged(false);
    emit transferEnabled();
    if (m_runDepth == 0 && !NamesLeftOut.isEmpty())
        tellNamesLeftOut();
}

void ImportRun::tellNamesLeftOut() {
    QStringList shown = NamesLeftOut.mid(0, kNamesShown);
    if (NamesLeftOut.size() > kNamesShown)
        shown << QStringLiteral("... and %1 more").arg(NamesLeftOut.size() - kNamesShown);
    prompts().msgBox(QStringLiteral("These files were not imported, because their names are not UTF-8 text. "
                                    "Rename them and import the folder again:\n\n") +
                         shown.join(QLatin1Char('\n')),
                     Prompts::Exclamation, kNamesLeftOutTitle);
}

void ImportRun::runImport(const QString& folderText, int convention) {
    // A run started from inside another one finds the outer run's rows
    // there, those still waiting for their group too.
    m_importer.releaseStatement();
    const qint32 newBefore = importSession().NewTrackCount;
    qint64 rowsBefore = -1;
    if (++m_runDepth == 1) {
        NamesLeftOut.clear();
        m_importer.StopReason.clear();
        rowsBefore = catalogueRows();
        emit runningChanged(true);
    }
    m_importer.ProcessedCount = 0;
    m_progressShown = false;
    emit busyChanged(true);
    emit buttonCaptionChanged(kCancelImport);
    ImportRunning = true;
    CancelRequested = false;
    m_importer.ConventionNumber = convention;
    // Paths are stored absolute and clean, so that a folder named another way
    // (relative, with "..", with doubled separators) finds its songs again.
    RootFolder = EnsureTrailingSlash(QDir::cleanPath(QFileInfo(folderText).absoluteFilePath()));
    m_matcher = FilePatternMatcher(kSongFilePattern);

    {
        const BulkWrites bulk;
        Guarded(kRunSource, 5, [] { BeginTrans(); });
        SearchForFiles(RootFolder);
        m_importer.releaseStatement();
        if (m_settlePauseMs > 0)
            QThread::msleep(m_settlePauseMs);
        emit statusChanged(stopped() ? QStringLiteral("Import Stopped") : QStringLiteral("Import Completed"));
        Guarded(kRunSource, 9, [this] {
            // After a failed statement SQLite may have rolled the batch back itself.
            if (stopped()) {
                if (InTransaction())
                    RollbackTrans();
            } else if (CancelRequested) {
                RollbackTrans();
            } else {
                CommitTrans();
            }
        });
    }
    emit buttonCaptionChanged(kFindTracks);
    CancelRequested = false;
    ImportRunning = false;
    emit transferEnabled();
    // A run started from inside another one (between two of its folders) leaves
    // the compaction to the outer run: closing the connection now would drop
    // the outer run's open batch.
    if (m_runDepth == 1 && stopped()) {
        // The rows of the batch that failed are gone: the count tells what the
        // catalogue really gained. No compaction on a disk that just failed.
        if (const qint64 rowsNow = catalogueRows(); rowsBefore >= 0 && rowsNow >= 0)
            importSession().NewTrackCount = newBefore + qint32(rowsNow - rowsBefore);
        prompts().msgBox(QStringLiteral("The import has stopped: ") + m_importer.StopReason +
                             QStringLiteral("\n\nThe songs saved before the stop stay in the catalogue; the "
                                            "rest of the folder was not imported."),
                         Prompts::Critical, QStringLiteral("Import Stopped"));
    } else if (m_runDepth == 1) {
        DatabaseCompact();
    }
    emit busyChanged(false);
    if (m_runDepth-- == 1)
        emit runningChanged(false);
}

void ImportRun::SearchForFiles(const QString& folder) {
    std::set<FolderId> visited;
    const QByteArray folderBytes = QFile::encodeName(folder);
    // The folders are read and the names cut on the other processor while
    // this thread asks the host and inserts. A run started from inside this
    // one has its own.
    WalkAhead ahead(folder, folderBytes, m_matcher, m_importer.ConventionNumber);
    WalkAhead* const outer = std::exchange(m_ahead, &ahead);
    // The rows go in many to a statement; the last of them when the walk ends.
    m_importer.setGrouping(true);
    const auto restore = qScopeGuard([&] {
        m_importer.setGrouping(outer != nullptr);
        m_ahead = outer;
    });
    walk(folder, folderBytes, visited);
}

void ImportRun::walk(const QString& folder, const QByteArray& folderBytes, std::set<FolderId>& visited) {
    if (CancelRequested) {
        ImportRunning = false;
        return;
    }
    ImportRunning = true;

    // The walk opens every folder itself when it gets there, read ahead or
    // not, so that one gone meanwhile is reported where it was.
    DIR* dir = ::opendir(folderBytes.constData());
    if (!dir) {
        const int error = errno;
        m_ahead->open(folder, folderBytes, nullptr, nullptr, false);
        m_importer.flushRows();
        ShowApplicationError(systemError(error), kWalkPlace, kLineOpenFolder, Prompts::Exclamation, folder);
        return;
    }
    // A folder reached a second time (through a link) is not walked again, so
    // that a link back up the tree cannot make the walk endless.
    struct stat self;
    const bool identified = ::fstat(::dirfd(dir), &self) == 0;
    const bool seen = identified && !visited.emplace(quint64(self.st_dev), quint64(self.st_ino)).second;
    const std::shared_ptr<WalkAhead::Folder> listing =
        m_ahead->open(folder, folderBytes, dir, identified ? &self : nullptr, seen);
    ::closedir(dir);
    const auto finished = qScopeGuard([&] { m_ahead->done(listing); });

    // One buffer for the entries' paths: the folder's part stays, the name changes.
    QByteArray childBytes = folderBytes;
    for (size_t i = 0; i < WalkAhead::size(*listing); ++i) {
        if (CancelRequested) {
            m_importer.ProcessedCount = 0;
            break;
        }
        if (stopped())
            break;
        WalkAhead::Entry& entry = m_ahead->take(*listing, i);
        // The entry's path is made only when it is needed: a plain file is
        // no folder, and its song row has the path already.
        const auto childPath = [&]() -> const QByteArray& {
            childBytes.truncate(folderBytes.size());
            childBytes += entry.bytes;
            return childBytes;
        };
        const bool isFolder = entry.type != DT_REG && IsFolderEntry(childPath(), entry.type);
        m_ahead->settle(*listing, entry, isFolder);
        if (isFolder) {
            if (CancelRequested)
                break;
            // A folder's path was made for the check above.
            childBytes += '/';
            walk(folder + entry.name + QLatin1Char('/'), childBytes, visited);
        } else {
            if (entry.song) {
                // A name that is not UTF-8 (old Windows discs carry Latin-1
                // names) has no text that opens the file again: it is left
                // out and named to the host at the end, never stored under a
                // path that leads nowhere.
                if (!entry.pathOpensIt) {
                    NamesLeftOut.append(FileNameForDisplay(childPath()));
                } else {
                    const bool kamikaze = m_kamikaze && m_kamikaze();
                    m_importer.AddToImportDatabase(entry.path, entry.cut, kamikaze);
                    if (m_importer.ProcessedCount % 50 == 0) {
                        emit progressPath(entry.path);
                        // The run's first progress shows at once, however
                        // short the run; the rest as the screen's looks come.
                        pump(!std::exchange(m_progressShown, true));
                    }
                }
            }
        }
        if (m_importer.ProcessedCount % 100 == 0)
            pump();
    }
    if (const int readError = WalkAhead::readError(*listing); readError != 0) {
        m_importer.flushRows();
        ShowApplicationError(systemError(readError), kWalkPlace, kLineNextEntry, Prompts::Exclamation,
                             folder);
        return;
    }
    ImportRunning = false;
}

qint64 ImportRun::catalogueRows() {
    try {
        return CatalogueStore::CountTracks();
    } catch (const KvError&) {
        return -1;
    }
}

qint64 ImportRun::RefreshTrackCount() {
    qint64 count = -1;
    try {
        count = CatalogueStore::CountTracks();
    } catch (const KvError& e) {
        LogErrorEx(kCountSource, e.number(), e.description(), 1);
        return -1;
    }
    emit totalCountChanged(QStringLiteral("Total count of tracks in the database is ") +
                           QString::number(count));
    return count;
}
