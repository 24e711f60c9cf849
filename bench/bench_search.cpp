// Typed search and "view all songs" on large catalogues: builds catalogues of
// 100,000 and 1,000,000 songs with file names made of seeded random words
// (some with letters beyond ASCII), waits for the song index, and times a
// fixed set of more than 200 typed searches as a press of Enter runs them
// (the statement or the index, and the first rows shown in the list), and
// listing the whole catalogue; reads the resident memory with the whole
// catalogue listed and scrolled through. Every search's answer, all its rows
// in order, is compared with the plain statement's: any difference ends the
// run with a failure. "--100k" stops after the 100,000-song figures.
#include "benchcommon.h"

#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songindex.h"
#include "catalogue/songindexkeeper.h"
#include "catalogue/songrowsource.h"
#include "catalogue/songsearch.h"
#include "catalogue/ui/searchcontroller.h"
#include "catalogue/ui/searchresultslist.h"
#include "catalogue/unicodelike.h"
#include "core/appsettings.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/workingfolder.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextStream>
#include <QThread>
#include <QTimer>
#include <algorithm>
#include <malloc.h>
#include <random>
#include <time.h>

namespace {

QTextStream out(stdout);

const char* const kWords[] = {
    "love",     "night",    "heart",   "baby",    "dance",   "fire",    "rain",     "summer",    "blue",
    "dream",    "girl",     "boy",     "time",    "world",   "light",   "star",     "river",     "road",
    "home",     "money",    "angel",   "devil",   "queen",   "king",    "crazy",    "wild",      "sweet",
    "lonely",   "happy",    "sad",     "black",   "white",   "red",     "golden",   "silver",    "moon",
    "sun",      "ocean",    "city",    "town",    "street",  "party",   "rock",     "roll",      "soul",
    "fever",    "magic",    "secret",  "tonight", "forever", "never",   "always",   "again",     "yesterday",
    "tomorrow", "rose",     "thunder", "storm",   "wind",    "sky",     "paradise", "highway",   "train",
    "whisky",   "cowboy",   "lady",    "mister",  "johnny",  "mary",    "billy",    "kiss",      "touch",
    "smile",    "tears",    "cry",     "shout",   "dancing", "running", "falling",  "flying",    "brown",
    "green",    "yellow",   "purple",  "diamond", "jungle",  "desert",  "island",   "valley",    "mountain",
    "electric", "young",    "old",     "little",  "big",     "bad",     "good",     "true",      "free",
    "alone",    "midnight", "morning", "sunday",  "friday",  "holiday", "letter",   "telephone", "radio",
    "video",    "guitar",   "piano",   "drum",    "bell",    "candle",  "window",   "door",      "wall",
    "bridge",   "garden",   "flower",  "Beyoncé", "Rós",     "café",    "señor",    "Ärzte",     "straße",
    "песня",    "Ζωή",      "naïve"};
constexpr int kWordCount = int(sizeof(kWords) / sizeof(kWords[0]));
const char* const kDiscs[] = {"SF", "SC", "DK", "ZM", "PHM", "CB", "MRH", "SGB"};

QString capitalised(const char* w) {
    QString s = QString::fromUtf8(w);
    s[0] = s[0].toUpper();
    return s;
}

class SongMaker {
public:
    QString words(int min, int max) {
        const int n = std::uniform_int_distribution<int>(min, max)(m_rng);
        QStringList parts;
        for (int i = 0; i < n; ++i)
            parts << capitalised(kWords[std::uniform_int_distribution<int>(0, kWordCount - 1)(m_rng)]);
        return parts.join(QLatin1Char(' '));
    }
    QString disc() {
        return QString::fromLatin1(kDiscs[std::uniform_int_distribution<int>(0, 7)(m_rng)]) +
               QString::number(std::uniform_int_distribution<int>(1, 9999)(m_rng)).rightJustified(4, u'0');
    }
    int track() { return std::uniform_int_distribution<int>(1, 20)(m_rng); }

private:
    std::mt19937 m_rng{20240611};
};

// Adds `count` songs in one transaction through one prepared statement.
bool addSongs(SongMaker& maker, int count, int serial) {
    QSqlDatabase db = dbConnection();
    db.transaction();
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("INSERT INTO tblKaraokeTracks (ArtistName, TrackName, DiscName, TrackNo, FileName, "
                       "TrackPath) VALUES (?, ?, ?, ?, ?, ?)"));
    for (int i = 0; i < count; ++i) {
        const QString artist = maker.words(1, 3);
        const QString title = maker.words(1, 4);
        const QString disc = maker.disc();
        const QString track = QString::number(maker.track()).rightJustified(2, u'0');
        const QString file = disc + u'-' + track + QStringLiteral(" - ") + artist + QStringLiteral(" - ") +
                             title + QStringLiteral(".zip");
        q.bindValue(0, artist);
        q.bindValue(1, title);
        q.bindValue(2, disc);
        q.bindValue(3, track);
        q.bindValue(4, file);
        // The serial keeps every path apart, as the unique index wants.
        q.bindValue(5, QStringLiteral("/srv/karaoke/%1/%2/").arg(disc).arg(serial + i) + file);
        if (!q.exec()) {
            out << "insert failed: " << q.lastError().text() << Qt::endl;
            db.rollback();
            return false;
        }
    }
    return db.commit();
}

qint64 vmRssKiB() {
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').value(0).toLongLong();
    return -1;
}

// CPU time of the process: on a machine shared with other work, this shows
// what the search itself costs, apart from waiting for a core.
double cpuMs() {
    timespec ts{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return ts.tv_sec * 1e3 + ts.tv_nsec / 1e6;
}

double median(QList<double> v) {
    std::sort(v.begin(), v.end());
    return v.size() % 2 ? v[v.size() / 2] : (v[v.size() / 2 - 1] + v[v.size() / 2]) / 2;
}

// The search frame of the main window, shown off screen.
struct Frame {
    QWidget window;
    QLineEdit* txtSearch = new QLineEdit(&window);
    QPushButton* btnSearch = new QPushButton(&window);
    QPushButton* btnClearSearch = new QPushButton(&window);
    QTableView* olvSearchResults = new QTableView(&window);
    QTimer* tmrSearch = new QTimer(&window);
    SearchController search{SearchWidgets{txtSearch, btnSearch, btnClearSearch, olvSearchResults, tmrSearch}};

    Frame() {
        txtSearch->setObjectName(QStringLiteral("txtSearch"));
        txtSearch->setGeometry(0, 0, 400, 25);
        olvSearchResults->setGeometry(0, 30, 830, 400);
        window.resize(840, 440);
        window.show();
    }
};

// The fixed set of typed searches: whole words, their beginnings, middles
// and ends, two to four words, letters beyond ASCII, words in nearly every
// name and in none, and the awkward ones (wildcards, quotes, blanks, a very
// long text).
QStringList querySet() {
    QStringList q;
    std::mt19937 rng(7);
    auto word = [&] {
        return QString::fromUtf8(kWords[std::uniform_int_distribution<int>(0, kWordCount - 1)(rng)]);
    };
    auto part = [&](const QString& w, int kind) {
        const int n = int(w.size());
        const int len = qMin(n, std::uniform_int_distribution<int>(2, 10)(rng));
        if (kind == 0)
            return w.left(len);
        if (kind == 1)
            return w.right(len);
        return w.mid(qMax(0, (n - len) / 2), len);
    };
    for (int i = 0; i < 40; ++i)
        q << word();
    for (int i = 0; i < 60; ++i)
        q << part(word(), i % 3);
    for (int i = 0; i < 30; ++i)
        q << word() + u' ' + word();
    for (int i = 0; i < 20; ++i)
        q << part(word(), 0) + u' ' + part(word(), 2);
    for (int i = 0; i < 15; ++i)
        q << word() + u' ' + word() + u' ' + part(word(), 1);
    for (int i = 0; i < 10; ++i)
        q << word() + u' ' + part(word(), 0) + u' ' + word() + u' ' + part(word(), 2);
    q << QStringLiteral("a") << QStringLiteral("the") << QStringLiteral("e") << QStringLiteral("zip")
      << QStringLiteral("sc") << QStringLiteral("a e") << QStringLiteral("- ") << QStringLiteral("01");
    q << QStringLiteral("zzzq") << QStringLiteral("qxj") << QStringLiteral("xylophone")
      << QStringLiteral("love zzzq") << QStringLiteral("kw") << QStringLiteral("loveless");
    q << QStringLiteral("beyoncé") << QStringLiteral("BEYONCÉ") << QStringLiteral("ärzte")
      << QStringLiteral("ÄRZTE") << QStringLiteral("ПЕСНЯ") << QStringLiteral("ζωή")
      << QStringLiteral("straße") << QStringLiteral("STRASSE") << QStringLiteral("ñ") << QStringLiteral("ïv")
      << QStringLiteral("rós café");
    q << QStringLiteral("%") << QStringLiteral("_") << QStringLiteral("%%") << QStringLiteral("%_%_")
      << QStringLiteral("l_ve") << QStringLiteral("lo%ve") << QStringLiteral("_____________")
      << QStringLiteral("it's") << QStringLiteral("'") << QStringLiteral("\"love\"") << QStringLiteral("o'")
      << QStringLiteral("   love   night") << QStringLiteral("love   ") << QStringLiteral("  ")
      << QString(10000, u'x') << QString(10000, u'_') << QString(5000, u'%')
      << QStringLiteral("love").repeated(2500);
    return q;
}

double percentile(QList<double> v, double p) {
    std::sort(v.begin(), v.end());
    return v.isEmpty() ? 0 : v[qMin(v.size() - 1, qsizetype(p * v.size()))];
}

// Times every query of the set through the search box (FilterIt and the
// first paint), and checks each answer against the plain statement's.
// Returns false on the first difference.
bool runQuerySet(Frame& f, int catalogue, const QStringList& queries, bool check,
                 const char* what = "typed search") {
    QList<double> ms;
    QList<double> cpu;
    QList<double> find;
    int differences = 0;
    for (const QString& text : queries) {
        f.txtSearch->blockSignals(true);
        f.txtSearch->setText(text);
        f.txtSearch->blockSignals(false);
        QList<double> runs;
        QList<double> cpuRuns;
        QList<double> findRuns;
        for (int i = 0; i < 3; ++i) {
            QElapsedTimer t;
            const double c0 = cpuMs();
            t.start();
            f.search.FilterIt();
            findRuns << t.nsecsElapsed() / 1e6;
            QCoreApplication::processEvents(); // the list lays out and paints its first rows
            runs << t.nsecsElapsed() / 1e6;
            cpuRuns << cpuMs() - c0;
        }
        ms << median(runs);
        cpu << median(cpuRuns);
        find << median(findRuns);
        if (!check || SongSearch::trimBlanks(text).isEmpty())
            continue;
        const QStringList words = SongSearch::searchWords(text);
        std::unique_ptr<SongRowSource> indexed = IndexedSearch(dbConnection(), words);
        if (!indexed) {
            out << "the index did not answer \"" << text.left(40) << "\"" << Qt::endl;
            return false;
        }
        QList<qint64> plain;
        try {
            StatementRowSource statement(dbConnection(),
                                         SongSearch::filterSql(SongSearch::filterList(text, false)));
            plain = remainingIds(statement);
        } catch (...) {
            out << "the statement failed for \"" << text.left(40) << "\"" << Qt::endl;
            return false;
        }
        const QList<qint64> fromIndex = remainingIds(*indexed);
        if (fromIndex != plain) {
            ++differences;
            qsizetype at = 0;
            while (at < qMin(plain.size(), fromIndex.size()) && plain[at] == fromIndex[at])
                ++at;
            out << "DIFFERENT ANSWER for \"" << text.left(40) << "\": statement " << plain.size()
                << " rows, index " << fromIndex.size() << " rows, first difference at row " << at << Qt::endl;
        }
    }
    out << QStringLiteral(
               "%1, %2 songs, %3 queries: median %4 ms, 95th percentile %5 ms, "
               "slowest %6 ms (CPU median %7 ms; finding the first block of rows %8 ms, the rest is "
               "the list's layout and paint)")
               .arg(QLatin1String(what))
               .arg(catalogue)
               .arg(queries.size())
               .arg(median(ms), 0, 'f', 2)
               .arg(percentile(ms, 0.95), 0, 'f', 2)
               .arg(percentile(ms, 1.0), 0, 'f', 2)
               .arg(median(cpu), 0, 'f', 2)
               .arg(median(find), 0, 'f', 2)
        << Qt::endl;
    const bool big = catalogue >= 1000000;
    const auto label = [&](const char* figure) {
        return QStringLiteral("%1, %2 songs: %3")
            .arg(QLatin1String(what))
            .arg(catalogue)
            .arg(QLatin1String(figure))
            .toUtf8();
    };
    bench::print(label("median to first screenful").constData(), median(ms), "ms", big ? 20 : 3);
    if (big)
        bench::print(label("95th percentile").constData(), percentile(ms, 0.95), "ms", 50);
    if (check) {
        out << QStringLiteral("same answers as the statement: %1 of %2 queries")
                   .arg(queries.size() - differences)
                   .arg(queries.size())
            << Qt::endl;
        bench::print(label("answers unlike the statement's").constData(), differences, "", 1);
    }
    return differences == 0;
}

// Accent-blind searching: the index's answers against the statement's under
// the same setting, and the time of a search.
bool runAccentBlind(Frame& f, int catalogue) {
    SetAccentBlindLike(true);
    const bool ready = SongIndexKeeper::instance().waitUntilCurrent(true, 120000);
    // The whole set, so that the median is as steady as the typed search's,
    // and words whose accents the setting leaves out.
    const QStringList queries =
        querySet() + QStringList{QStringLiteral("beyonce"), QStringLiteral("ros"),
                                 QStringLiteral("arzte"),   QStringLiteral("cafe senor"),
                                 QStringLiteral("naive"),   QStringLiteral("Beyoncé")};
    const bool same = ready && runQuerySet(f, catalogue, queries, true, "accent-blind search");
    SetAccentBlindLike(false);
    SongIndexKeeper::instance().waitUntilCurrent(false, 120000);
    out << QStringLiteral("resident memory after the accent-blind searches: %1 MB")
               .arg(vmRssKiB() / 1024.0, 0, 'f', 1)
        << Qt::endl;
    return same;
}

void timeLoadAll(Frame& f, int catalogue, int runs) {
    QList<double> ms;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer t;
        t.start();
        f.search.LoadAllSongs();
        QCoreApplication::processEvents();
        ms << t.nsecsElapsed() / 1e6;
    }
    out << QStringLiteral("view all songs, %1 songs, first screenful: %2 ms median of %3")
               .arg(catalogue)
               .arg(median(ms), 0, 'f', 1)
               .arg(runs)
        << Qt::endl;
    if (catalogue >= 1000000)
        bench::print("view all songs, 1000000 songs: first screenful", median(ms), "ms", 50);
}

// korvane-tool search as a script would run it and read its first 40 rows
// (what `| head -40` waits for): the median over a few queries, from the
// start of the process to the 40th row.
double timeToolSearch(const QStringList& queries) {
    const QString tool = QCoreApplication::applicationDirPath() + QStringLiteral("/korvane-tool");
    QList<double> ms;
    for (const QString& text : queries) {
        QProcess p;
        QElapsedTimer t;
        t.start();
        p.start(tool, QStringList{QStringLiteral("search")} + text.split(u' '));
        QByteArray seen;
        while (seen.count('\n') < 40 && p.waitForReadyRead(10000))
            seen += p.readAllStandardOutput();
        ms << t.nsecsElapsed() / 1e6;
        p.kill();
        p.waitForFinished();
    }
    return median(ms);
}

// Waits until the program's copy of its song index (`accentBlind` or not)
// is on disk for the catalogue as it stands: the copy follows the index into
// use, and the tool reads it.
bool waitForSavedIndex(bool accentBlind) {
    QSqlQuery top(dbConnection());
    if (!top.exec(QStringLiteral("Select ifnull(max(KaraokeTrackID), 0) From tblKaraokeTracks")) ||
        !top.next())
        return false;
    const qint64 maxId = top.value(0).toLongLong();
    QElapsedTimer waited;
    waited.start();
    while (!SongIndex::load(SongIndexKeeper::instance().savedPath(), accentBlind, maxId)) {
        if (waited.elapsed() > 120000)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
    return true;
}

// Reads the song index afresh and waits for it, printing the time.
bool timeIndexRead(int catalogue) {
    QElapsedTimer t;
    t.start();
    SongIndexKeeper::instance().refresh();
    if (!SongIndexKeeper::instance().waitUntilCurrent(false, 120000)) {
        out << "the song index did not come" << Qt::endl;
        return false;
    }
    out << QStringLiteral(
               "song index read in the background, %1 songs: %2 ms; it holds %3 MB; resident memory %4 MB")
               .arg(catalogue)
               .arg(t.elapsed())
               .arg(SongIndexKeeper::instance().current(false)->bytesHeld() / 1048576.0, 0, 'f', 1)
               .arg(vmRssKiB() / 1024.0, 0, 'f', 1)
        << Qt::endl;
    return true;
}

} // namespace

int main(int argc, char** argv) {
    // A home of its own, so the user's catalogue is never touched.
    QTemporaryDir home;
    // KV_BENCH_KEEP_HOME=1 leaves the catalogue behind for a look afterwards.
    if (qEnvironmentVariableIsSet("KV_BENCH_KEEP_HOME")) {
        home.setAutoRemove(false);
        out << "home kept in " << home.path() << Qt::endl;
    }
    for (const char* sub : {"data", "Documents", "runtime"})
        QDir(home.path()).mkpath(QString::fromLatin1(sub));
    QFile::setPermissions(home.path() + "/runtime", QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_DATA_HOME", (home.path() + "/data").toUtf8());
    qputenv("XDG_DOCUMENTS_DIR", (home.path() + "/Documents").toUtf8());
    qputenv("XDG_RUNTIME_DIR", (home.path() + "/runtime").toUtf8());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const bool small = app.arguments().contains(QStringLiteral("--100k"));

    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    if (!OpenDatabase()) {
        out << "the catalogue did not open" << Qt::endl;
        return 1;
    }

    out << QStringLiteral("resident memory at the start: %1 MB").arg(vmRssKiB() / 1024.0, 0, 'f', 1)
        << Qt::endl;
    SongMaker maker;
    QElapsedTimer fill;
    fill.start();
    if (!addSongs(maker, 100000, 0))
        return 1;
    out << QStringLiteral("fill 100000 songs: %1 ms").arg(fill.elapsed()) << Qt::endl;

    const QStringList queries = querySet();
    {
        Frame f;
        if (!timeIndexRead(100000) ||
            !runQuerySet(f, 100000, queries, !app.arguments().contains("--no-check")) ||
            !runAccentBlind(f, 100000))
            return 1;
        timeLoadAll(f, 100000, 5);
    }

    if (small)
        return 0;
    fill.restart();
    if (!addSongs(maker, 900000, 100000))
        return 1;
    out << QStringLiteral("fill 900000 more songs: %1 ms").arg(fill.elapsed()) << Qt::endl;
    malloc_trim(0);
    out << QStringLiteral("resident memory after the fill: %1 MB").arg(vmRssKiB() / 1024.0, 0, 'f', 1)
        << Qt::endl;

    Frame f;
    if (!timeIndexRead(1000000) ||
        !runQuerySet(f, 1000000, queries, !app.arguments().contains("--no-check")) ||
        !runAccentBlind(f, 1000000))
        return 1;
    const QStringList toolQueries = queries.mid(0, 12) + queries.mid(140, 8);
    if (!waitForSavedIndex(false)) {
        out << "the song index's copy did not come" << Qt::endl;
        return 1;
    }
    const double toolMs = timeToolSearch(toolQueries);
    bench::print("korvane-tool search piped to head -40, 1000000 songs, median", toolMs, "ms", 150);
    QFile::rename(SongIndexKeeper::instance().savedPath(), SongIndexKeeper::instance().savedPath() + ".away");
    out << QStringLiteral("for comparison, the same without the saved index (the statement): %1 ms")
               .arg(timeToolSearch(toolQueries.mid(0, 6)), 0, 'f', 1)
        << Qt::endl;
    QFile::rename(SongIndexKeeper::instance().savedPath() + ".away", SongIndexKeeper::instance().savedPath());

    f.search.ClearSearchList();
    QCoreApplication::processEvents();
    malloc_trim(0);
    const struct mallinfo2 heap = mallinfo2();
    out << QStringLiteral("resident memory before view all songs: %1 MB (the heap: %2 MB in use, %3 MB free; "
                          "%4 MB mapped; SQLite %5 MB)")
               .arg(vmRssKiB() / 1024.0, 0, 'f', 1)
               .arg(heap.uordblks / 1048576.0, 0, 'f', 1)
               .arg(heap.fordblks / 1048576.0, 0, 'f', 1)
               .arg(heap.hblkhd / 1048576.0, 0, 'f', 1)
               .arg(sqlite3_memory_used() / 1048576.0, 0, 'f', 1)
        << Qt::endl;
    timeLoadAll(f, 1000000, 3);
    out << QStringLiteral("resident memory, 1000000 songs listed, top: %1 MB")
               .arg(vmRssKiB() / 1024.0, 0, 'f', 1)
        << Qt::endl;

    SearchResultsModel* model = f.search.model();
    QElapsedTimer scroll;
    scroll.start();
    model->fetchUpTo(500000);
    f.olvSearchResults->scrollTo(model->index(500000, 1), QAbstractItemView::PositionAtCenter);
    QCoreApplication::processEvents();
    out << QStringLiteral("scroll to the middle (%1 rows read): %2 ms, resident memory %3 MB")
               .arg(model->rowCount())
               .arg(scroll.elapsed())
               .arg(vmRssKiB() / 1024.0, 0, 'f', 1)
        << Qt::endl;

    scroll.restart();
    model->fetchUpTo(-1);
    f.olvSearchResults->scrollToBottom();
    QCoreApplication::processEvents();
    out << QStringLiteral(
               "scroll to the end (%1 rows read): %2 ms, resident memory %3 MB, rows held in %4 MB")
               .arg(model->rowCount())
               .arg(scroll.elapsed())
               .arg(vmRssKiB() / 1024.0, 0, 'f', 1)
               .arg(model->bytesHeld() / 1048576.0, 0, 'f', 1)
        << Qt::endl;
    bench::print("resident memory, 1000000 songs listed to the end", vmRssKiB() / 1024.0, "MB", 150);

    CloseDatabase();
    return 0;
}
