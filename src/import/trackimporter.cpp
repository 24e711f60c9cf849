#include "trackimporter.h"

#include "eventlook.h"

#include "catalogue/database.h"
#include "catalogue/groupedinsert.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "core/prompts.h"
#include "importsession.h"
#include "importtransaction.h"

#include <QCoreApplication>

#include <array>

#include <sqlite3.h>

namespace {

const QString kSource = QStringLiteral("AddToImportDatabase");
// Line labels of the routine, as the error log reports them.
constexpr int kLineCut = 10;
constexpr int kLineInsert = 20;
constexpr int kLineCommit = 30;

} // namespace

// The import's one insert, prepared once per batch on the catalogue
// connection's SQLite handle and run with each row's values bound: the same
// connection and transaction as everything else, without a statement to parse
// per row.
class TrackImporter::Insert {
public:
    Insert() = default;
    Insert(const Insert&) = delete;
    Insert& operator=(const Insert&) = delete;
    ~Insert() { sqlite3_finalize(m_stmt); }

    // Inserts one row. Returns 0, kAlreadyThere for a path the catalogue
    // holds already, or SQLite's extended error code with its text in `failure`.
    static constexpr qint32 kAlreadyThere = -1;
    qint32 run(const NameCut::Values& values, bool kamikaze, QString& failure) {
        if (m_generation != ConnectionGeneration()) {
            // The connection was closed and opened again: the old statement
            // went with it.
            m_stmt = nullptr;
            m_db = IsDatabaseOpen() ? NativeHandle(dbConnection()) : nullptr;
            m_generation = ConnectionGeneration();
        }
        if (!m_db)
            throw KvError(3704, QStringLiteral("Operation is not allowed when the object is closed."),
                          kSource);
        // The row carries -1 or 0 in its Yes/No column already: the
        // catalogue's Yes/No trigger, compiled once into the statement, only
        // weighs its condition per row. A path that is there already is
        // passed over by the statement itself ("or ignore"; the path's unique
        // index is the row's only constraint that can fail), which also spares
        // each row the undo record a statement that may fail half-way keeps.
        int rc = SQLITE_OK;
        if (!m_stmt)
            rc = sqlite3_prepare_v2(
                m_db,
                "Insert or ignore into tblKaraokeTracks([TrackName], [ArtistName], [DiscName], "
                "[TrackNo], [Filename], [TrackPath], [Kamikaze])values(?, ?, ?, ?, ?, ?, ?)",
                -1, &m_stmt, nullptr);
        if (rc == SQLITE_OK) {
            for (int i = 0; i < 6; ++i)
                sqlite3_bind_text(m_stmt, i + 1, values[size_t(i)].data(), int(values[size_t(i)].size()),
                                  SQLITE_STATIC);
            sqlite3_bind_int(m_stmt, 7, kamikaze ? -1 : 0);
            rc = sqlite3_step(m_stmt);
            if (rc == SQLITE_DONE)
                rc = sqlite3_changes(m_db) == 0 ? kAlreadyThere : SQLITE_OK;
            sqlite3_reset(m_stmt);
            sqlite3_clear_bindings(m_stmt);
        }
        if (rc != SQLITE_OK && rc != kAlreadyThere) {
            rc = sqlite3_extended_errcode(m_db);
            failure = QString::fromUtf8(sqlite3_errmsg(m_db));
            release();
        }
        return rc;
    }

    void release() {
        if (m_generation == ConnectionGeneration())
            sqlite3_finalize(m_stmt);
        m_stmt = nullptr;
    }

private:
    sqlite3* m_db = nullptr;
    sqlite3_stmt* m_stmt = nullptr;
    quint64 m_generation = ~quint64(0);
};

namespace {

// Rows inserted by one statement while the run groups them.
constexpr int kRowsPerGroup = 25;

} // namespace

// The rows waiting for their group's statement.
//
// The groups run with the connection's triggers off. The catalogue's only
// triggers turn a Yes/No column's other values into -1, and the rows carry -1
// or 0 already, yet each row would pay for a call into the trigger to weigh
// that. The triggers are on again whenever the rows waiting are in, which the
// run sees to before anything else can write (a look at the events, a
// question, a commit): switching them makes the connection's statements again,
// so it happens at those few places and not per group.
class TrackImporter::Group {
public:
    explicit Group(sqlite3* db)
        : rows(db,
               "Insert or ignore into tblKaraokeTracks([TrackName], [ArtistName], [DiscName], [TrackNo], "
               "[Filename], [TrackPath], [Kamikaze])values",
               7, kRowsPerGroup),
          db(db), generation(ConnectionGeneration()) {}
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;
    ~Group() { triggersOn(); }

    void triggersOff() {
        if (!triggersAreOff)
            SetTriggersOn(db, false);
        triggersAreOff = true;
    }
    // A connection closed under the group took the setting with it.
    void triggersOn() {
        if (triggersAreOff && generation == ConnectionGeneration())
            SetTriggersOn(db, true);
        triggersAreOff = false;
    }

    GroupedInsert rows;
    sqlite3* db;
    quint64 generation;
    int waiting = 0;
    qint64 counted = 0;
    bool triggersAreOff = false;
};

TrackImporter::TrackImporter() = default;

TrackImporter::TrackImporter(TrackImporter&&) noexcept = default;
TrackImporter& TrackImporter::operator=(TrackImporter&&) noexcept = default;

TrackImporter::~TrackImporter() {
    releaseStatement();
}

void TrackImporter::setEventPump(std::function<void()> pump) {
    m_pump = std::move(pump);
    m_lookNowAndThen = false;
}

void TrackImporter::releaseStatement() {
    flushRows();
    m_group.reset();
    if (m_insert)
        m_insert->release();
}

void TrackImporter::setGrouping(bool on) {
    if (!on)
        flushRows();
    m_grouping = on;
}

// What waits goes in before the screen gets its chance: a pump of the
// caller's own runs after every row, the looks now and then every few
// milliseconds.
void TrackImporter::afterRow() {
    if (m_lookNowAndThen) {
        if (EventLookDue()) {
            flushRows();
            QCoreApplication::processEvents();
        }
    } else if (m_pump) {
        flushRows();
        m_pump();
    }
}

void TrackImporter::queueRow(const NameCut& cut, bool kamikaze) {
    if (m_group && m_group->generation != ConnectionGeneration())
        m_group.reset();
    if (!m_group) {
        if (!IsDatabaseOpen())
            throw KvError(3704, QStringLiteral("Operation is not allowed when the object is closed."),
                          kSource);
        m_group = std::make_unique<Group>(NativeHandle(dbConnection()));
    }
    m_group->triggersOff();
    ++m_group->waiting;
    for (const QByteArrayView value : cut.values())
        m_group->rows.add(value);
    m_group->rows.add(qint64(kamikaze ? -1 : 0));
    if (!m_group->rows.endRow())
        groupFailed();
    else if (m_group->waiting == kRowsPerGroup)
        groupRan();
}

void TrackImporter::flushRows() {
    if (!m_group || m_group->waiting == 0)
        return;
    if (m_group->generation != ConnectionGeneration()) {
        // The connection went under the rows: they are lost with its batch.
        m_group.reset();
        return;
    }
    if (m_group->rows.finish())
        groupRan();
    else
        groupFailed();
    if (m_group)
        m_group->triggersOn();
}

// The rows the group's statement took are new tracks; the others were in the
// catalogue already.
void TrackImporter::groupRan() {
    const qint64 inserted = m_group->rows.inserted();
    importSession().NewTrackCount += qint32(inserted - m_group->counted);
    m_group->counted = inserted;
    m_group->waiting = 0;
}

// The catalogue refused the group's statement, which took none of its rows.
// While the batch stands, the rows go in again one by one, as they would
// have without the group: those before the refused one are kept, and the run
// stops at it. A batch that fell with the statement (a full disk may take it
// down) stops the run at the group's first file.
void TrackImporter::groupFailed() {
    sqlite3* db = NativeHandle(dbConnection());
    const qint32 code = db ? sqlite3_extended_errcode(db) : 0;
    const std::unique_ptr<Group> group = std::move(m_group);
    const GroupedInsert& refused = group->rows;
    // Each row's path is its last text value.
    auto pathOf = [&](int row) { return QString::fromUtf8(refused.refusedText(row, NameCut::TrackPath)); };
    auto stopAt = [this](qint32 number, const QString& why, const QString& path) {
        // Logged without a box: the run that called tells the host once.
        LogErrorExQuietly(kSource, number, why, kLineInsert);
        StopReason = why + QStringLiteral("\nFile: ") + path;
    };
    if (!db || sqlite3_get_autocommit(db))
        return stopAt(code, refused.error(), pathOf(0));
    for (int row = 0; row < refused.refusedRows(); ++row) {
        NameCut::Values values;
        for (int column = 0; column < 6; ++column)
            values[size_t(column)] = refused.refusedText(row, column);
        QString failure;
        qint32 result = 0;
        try {
            if (!m_insert)
                m_insert = std::make_unique<Insert>();
            result = m_insert->run(values, refused.refusedInteger(row, 6) != 0, failure);
        } catch (const KvError& e) {
            result = e.number();
            failure = e.description();
        }
        if (result == 0)
            ++importSession().NewTrackCount;
        else if (result != Insert::kAlreadyThere)
            return stopAt(result, failure, pathOf(row));
    }
}

void TrackImporter::AddToImportDatabase(const QString& path, bool kamikaze) {
    AddToImportDatabase(path, CutFileName(path, ConventionNumber), kamikaze);
}

void TrackImporter::AddToImportDatabase(const QString& path, const NameCut& cutAhead, bool kamikaze) {
    int line = kLineCut;
    try {
        // A run started from inside this one may have changed the convention
        // since the name was cut.
        NameCut recut;
        if (cutAhead.convention != ConventionNumber)
            recut = CutFileName(path, ConventionNumber);
        const NameCut& cut = cutAhead.convention != ConventionNumber ? recut : cutAhead;
        if (cut.missingPieces > 0) {
            // The host is asked with the rows before this one in the catalogue.
            flushRows();
            if (!StopReason.isEmpty())
                return;
        }
        tellMissingPieces(cut);
        if (cut.failure)
            std::rethrow_exception(cut.failure);

        line = kLineInsert;
        // While the run groups its rows, a row waits for its group's
        // statement, unless it ends a batch: the commit after it depends on
        // whether it was new, so it goes in on its own, after the others.
        const bool endsBatch = (ProcessedCount + 1) % kCommitEvery == 0;
        if (m_grouping && !endsBatch) {
            queueRow(cut, kamikaze);
            ++ProcessedCount;
            afterRow();
            return;
        }
        flushRows();
        if (!StopReason.isEmpty())
            return;
        if (!m_insert)
            m_insert = std::make_unique<Insert>();
        QString failureText;
        if (const qint32 failure = m_insert->run(cut.values(), kamikaze, failureText); failure != 0) {
            if (failure != Insert::kAlreadyThere)
                throw KvError(failure, failureText, kSource);
            // The catalogue has this file already: counted, left as it is.
            ++ProcessedCount;
            return;
        }

        ++ProcessedCount;
        ++importSession().NewTrackCount;
        afterRow();
        if (ProcessedCount % kCommitEvery == 0) {
            line = kLineCommit;
            m_insert->release();
            CommitTrans();
            BeginTrans();
        }
    } catch (...) {
        const std::exception_ptr e = std::current_exception();
        qint32 number = 0;
        try {
            std::rethrow_exception(e);
        } catch (const KvError& k) {
            number = k.number();
        } catch (...) {
        }
        // Logged without a box: the run that called tells the host once.
        LogErrorExQuietly(kSource, number, describeException(e), line);
        // A row the catalogue refused for any reason but a duplicate (a locked
        // catalogue, a full disk) means the rows after it would fail the same
        // way, or worse, land outside the batch: the run stops here.
        if (line >= kLineInsert)
            StopReason = describeException(e) + QStringLiteral("\nFile: ") + path;
    }
}

// Each piece the name lacked is a question to the host, unless the host has
// said no more; the file is counted once more for each, as it always was.
void TrackImporter::tellMissingPieces(const NameCut& cut) {
    for (int i = 0; i < cut.missingPieces; ++i) {
        ImportSession& session = importSession();
        if (!session.NotificationsOff) {
            const int answer = prompts().msgBox(
                QStringLiteral("Error On Import, Please check the following file for correct naming "
                               "convention: \nFile Name: ") +
                    cut.shownName + QStringLiteral("\nDo you wish to be notified each time this happens?"),
                Prompts::YesNo, QStringLiteral("Import Error"));
            if (answer == Prompts::Yes)
                session.NotificationsOff = false;
            else if (answer == Prompts::No)
                session.NotificationsOff = true;
        }
        ++ProcessedCount;
    }
}
