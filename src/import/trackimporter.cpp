#include "trackimporter.h"

#include "catalogue/database.h"
#include "core/errorlog.h"
#include "core/kverror.h"
#include "core/prompts.h"
#include "importsession.h"
#include "importtext.h"
#include "importtransaction.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QList>
#include <QStringView>

#include <array>
#include <span>

#include <sqlite3.h>

namespace {

const QString kSource = QStringLiteral("AddToImportDatabase");
// Line labels of the routine, as the error log reports them.
constexpr int kLineCut = 10;
constexpr int kLineInsert = 20;
constexpr int kLineCommit = 30;

// A piece or sub-piece that the convention reads and the name does not have.
struct MissingPiece {};

enum class Field { Artist, Track, Disc, TrackNo };

// One statement of a convention: set a field from a piece, from a sub-piece,
// from two sub-pieces joined by "-", or cut a piece into sub-pieces at "-".
struct Op {
    enum Kind { Piece, Sub, SubPair, Split } kind;
    Field field;
    int a;
    int b;
};

constexpr Op piece(Field f, int i) {
    return {Op::Piece, f, i, 0};
}
constexpr Op sub(Field f, int i) {
    return {Op::Sub, f, i, 0};
}
constexpr Op subPair(Field f, int i, int j) {
    return {Op::SubPair, f, i, j};
}
constexpr Op split(int i) {
    return {Op::Split, Field::Artist, i, 0};
}

// How many pieces a name must have for the convention's statements to run,
// and the statements in their order (the order decides what a name that
// fails half-way still gets).
struct Rule {
    int pieces;
    bool exact;
    std::array<Op, 5> ops;
    int opCount;
    // Which title a name gets when its piece count does not fit.
    bool fallbackToFileName;
};

constexpr Field A = Field::Artist;
constexpr Field T = Field::Track;
constexpr Field D = Field::Disc;
constexpr Field N = Field::TrackNo;

// Indexed by convention number; number 4 (All In One) has no rule.
constexpr std::array<Rule, 13> kRules = {{
    /* 0 */ {2, false, {piece(A, 1), piece(T, 0)}, 2, true},
    /* 1 */ {2, false, {piece(A, 0), piece(T, 1)}, 2, false},
    /* 2 */ {3, true, {piece(A, 1), piece(T, 2), split(0), sub(D, 0), sub(N, 1)}, 5, true},
    /* 3 */ {3, true, {piece(A, 2), piece(T, 1), split(0), sub(D, 0), sub(N, 1)}, 5, false},
    /* 4 */ {0, false, {}, 0, false},
    /* 5 */ {3, true, {split(2), piece(A, 1), piece(T, 0), sub(D, 0), sub(N, 1)}, 5, false},
    /* 6 */ {3, true, {split(2), piece(A, 0), piece(T, 1), sub(D, 0), sub(N, 1)}, 5, false},
    /* 7 */ {3, true, {piece(A, 2), piece(T, 1), split(0), subPair(D, 0, 1), sub(N, 2)}, 5, false},
    /* 8 */ {3, true, {piece(A, 1), piece(T, 2), split(0), subPair(D, 0, 1), sub(N, 2)}, 5, false},
    /* 9 */ {3, true, {piece(A, 1), piece(T, 2), split(0), sub(N, 0)}, 4, false},
    /* 10 */ {3, true, {piece(A, 2), piece(T, 1), split(0), sub(N, 0)}, 4, false},
    /* 11 */ {3, false, {piece(A, 2), piece(T, 3), piece(D, 1)}, 3, false},
    /* 12 */ {3, true, {piece(A, 2), piece(T, 1), piece(D, 0)}, 3, false},
}};

constexpr int kAllInOne = 4;

QString clean(QStringView v) {
    return EscapeQuotes(CleanNamePart(v));
}

// The value an escaped text stands for in a statement's quotes: each pair of
// quotes is one. The cut escapes its values for the statement text it once
// made; binding the values they stand for stores exactly the same.
QByteArray literalValue(const QString& escaped) {
    if (!escaped.contains(QLatin1Char('\'')))
        return escaped.toUtf8();
    QString value = escaped;
    value.replace(QStringLiteral("''"), QStringLiteral("'"));
    return value.toUtf8();
}

// The text less its last four characters: the extension of most song files.
QStringView withoutExtension(QStringView name) {
    if (name.size() < 4)
        throw KvError(5, QStringLiteral("Invalid procedure call or argument"), kSource);
    return name.chopped(4);
}

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
    qint32 run(const std::array<QByteArray, 6>& values, bool kamikaze, QString& failure) {
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
                sqlite3_bind_text(m_stmt, i + 1, values[size_t(i)].constData(), int(values[size_t(i)].size()),
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

// The working values of one file while its name is cut.
class TrackImporter::Cut {
public:
    Cut(TrackImporter& owner, const QString& path) : m_owner(owner), m_path(path) {
        const qsizetype slash = path.lastIndexOf(QLatin1Char('/'));
        m_name = QStringView(path).sliced(slash + 1);
        Filename = MakeSafeSql(m_name.toString());
        m_working = m_name.toString();
        m_working.replace(QLatin1Char('_'), QLatin1Char(' '));
        m_pieces = QStringView(m_working).split(QStringLiteral(" - "));
    }

    QString TrackName, ArtistName, DiscName, TrackNo, Filename, TrackPath;

    void run(int convention) {
        if (convention == kAllInOne) {
            TrackName = EscapeQuotes(withoutExtension(m_name));
            TrackPath = EscapeQuotes(m_path);
            return;
        }
        if (convention < 0 || convention >= int(kRules.size())) {
            fallback(true);
            return;
        }
        const Rule& rule = kRules[convention];
        const qsizetype count = m_pieces.size();
        if (rule.exact ? count != rule.pieces : count < rule.pieces) {
            fallback(rule.fallbackToFileName);
            return;
        }
        for (const Op& op : std::span(rule.ops.data(), rule.opCount)) {
            try {
                apply(op);
            } catch (const MissingPiece&) {
                missingPiece();
            }
        }
        TrackPath = EscapeQuotes(m_path);
    }

private:
    QStringView pieceAt(int i) const {
        if (i >= m_pieces.size())
            throw MissingPiece{};
        return m_pieces[i];
    }
    QStringView subAt(int i) const {
        if (i >= m_subs.size())
            throw MissingPiece{};
        return m_subs[i];
    }
    QString& field(Field f) {
        switch (f) {
        case Field::Artist:
            return ArtistName;
        case Field::Track:
            return TrackName;
        case Field::Disc:
            return DiscName;
        case Field::TrackNo:
            return TrackNo;
        }
        return TrackNo;
    }

    void apply(const Op& op) {
        switch (op.kind) {
        case Op::Piece:
            field(op.field) = clean(pieceAt(op.a));
            break;
        case Op::Sub:
            field(op.field) = clean(subAt(op.a));
            break;
        case Op::SubPair: {
            QString joined = subAt(op.a).toString();
            joined += QLatin1Char('-');
            joined += subAt(op.b);
            field(op.field) = clean(joined);
            break;
        }
        case Op::Split: {
            // An empty piece cuts into no sub-pieces at all.
            const QStringView p = pieceAt(op.a);
            m_subs = p.isEmpty() ? QList<QStringView>() : p.split(QLatin1Char('-'));
            break;
        }
        }
    }

    // The piece count does not fit: the file goes in under its whole name.
    void fallback(bool rawFileName) {
        ArtistName.clear();
        DiscName.clear();
        TrackNo.clear();
        TrackName = rawFileName ? EscapeQuotes(Filename) : EscapeQuotes(withoutExtension(m_working));
        TrackPath = EscapeQuotes(m_path);
    }

    // A statement read a piece the name lacks. The host may hear of it; the
    // file keeps its file name as title and the cut goes on with the next
    // statement.
    void missingPiece() {
        ImportSession& session = importSession();
        if (!session.NotificationsOff) {
            const int answer = prompts().msgBox(
                QStringLiteral("Error On Import, Please check the following file for correct naming "
                               "convention: \nFile Name: ") +
                    m_working + QStringLiteral("\nDo you wish to be notified each time this happens?"),
                Prompts::YesNo, QStringLiteral("Import Error"));
            if (answer == Prompts::Yes)
                session.NotificationsOff = false;
            else if (answer == Prompts::No)
                session.NotificationsOff = true;
        }
        TrackPath = EscapeQuotes(m_path);
        TrackName = EscapeQuotes(Filename);
        ++m_owner.ProcessedCount;
    }

    TrackImporter& m_owner;
    const QString& m_path;
    QStringView m_name;
    QString m_working;
    QList<QStringView> m_pieces;
    QList<QStringView> m_subs;
};

namespace {

// Gives the screen its chance to work after a row. Asking the event loop
// costs a system call even when nothing waits, so within a few milliseconds
// of the last look the chance is passed over: the screen still answers within
// a frame, and a hundred thousand rows do not pay for a hundred thousand looks.
void pumpNowAndThen() {
    static QElapsedTimer lastLook;
    constexpr qint64 kLookEveryNs = 4'000'000;
    if (lastLook.isValid() && lastLook.nsecsElapsed() < kLookEveryNs)
        return;
    QCoreApplication::processEvents();
    lastLook.start();
}

} // namespace

TrackImporter::TrackImporter() : m_pump(pumpNowAndThen) {}

TrackImporter::TrackImporter(TrackImporter&&) noexcept = default;
TrackImporter& TrackImporter::operator=(TrackImporter&&) noexcept = default;

TrackImporter::~TrackImporter() {
    releaseStatement();
}

void TrackImporter::releaseStatement() {
    if (m_insert)
        m_insert->release();
}

void TrackImporter::AddToImportDatabase(const QString& path, bool kamikaze) {
    int line = kLineCut;
    try {
        Cut cut(*this, path);
        cut.run(ConventionNumber);

        line = kLineInsert;
        const std::array<QByteArray, 6> values = {literalValue(cut.TrackName), literalValue(cut.ArtistName),
                                                  literalValue(cut.DiscName),  literalValue(cut.TrackNo),
                                                  literalValue(cut.Filename),  literalValue(cut.TrackPath)};
        if (!m_insert)
            m_insert = std::make_unique<Insert>();
        QString failureText;
        if (const qint32 failure = m_insert->run(values, kamikaze, failureText); failure != 0) {
            if (failure != Insert::kAlreadyThere)
                throw KvError(failure, failureText, kSource);
            // The catalogue has this file already: counted, left as it is.
            ++ProcessedCount;
            return;
        }

        ++ProcessedCount;
        ++importSession().NewTrackCount;
        if (m_pump)
            m_pump();
        if (ProcessedCount % kCommitEvery == 0) {
            line = kLineCommit;
            releaseStatement();
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
