// Typed search and "view all songs" on large catalogues: builds catalogues of
// 100,000 and 1,000,000 songs with file names made of seeded random words,
// times the search box's query for one and two words (building the statement,
// running it and showing the first rows in the results list, as a press of
// Enter does), times listing the whole catalogue, and reads the process's
// resident memory with the whole catalogue listed and scrolled through.
// Prints one line per figure; each time is the median of several runs.
// "--100k" stops after the 100,000-song figures.
#include "catalogue/database.h"
#include "catalogue/searchresultsmodel.h"
#include "catalogue/songsearch.h"
#include "catalogue/ui/searchcontroller.h"
#include "catalogue/ui/searchresultslist.h"
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
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextStream>
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
    "bridge",   "garden",   "flower"};
constexpr int kWordCount = int(sizeof(kWords) / sizeof(kWords[0]));
const char* const kDiscs[] = {"SF", "SC", "DK", "ZM", "PHM", "CB", "MRH", "SGB"};

QString capitalised(const char* w) {
    QString s = QString::fromLatin1(w);
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

void timeSearch(Frame& f, int catalogue, const QString& label, const QString& text, int runs) {
    f.txtSearch->blockSignals(true);
    f.txtSearch->setText(text);
    f.txtSearch->blockSignals(false);
    QList<double> ms;
    QList<double> cpu;
    for (int i = 0; i < runs + 1; ++i) {
        QElapsedTimer t;
        const double c0 = cpuMs();
        t.start();
        f.search.FilterIt();
        QCoreApplication::processEvents(); // the list lays out and paints its first rows
        if (i > 0) {                       // the first run warms the cache
            ms << t.nsecsElapsed() / 1e6;
            cpu << cpuMs() - c0;
        }
    }
    QSqlQuery count(dbConnection());
    count.exec(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks WHERE ") +
               SongSearch::condition(SongSearch::ByFileName, text, false));
    const qint64 matches = count.next() ? count.value(0).toLongLong() : -1;
    out << QStringLiteral(
               "search %1 songs, %2 (\"%3\"): %4 ms median of %5 (CPU %6 ms), %7 rows match, %8 in "
               "the first screenful")
               .arg(catalogue)
               .arg(label, text)
               .arg(median(ms), 0, 'f', 1)
               .arg(runs)
               .arg(median(cpu), 0, 'f', 1)
               .arg(matches)
               .arg(f.search.model()->rowCount())
        << Qt::endl;
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
}

void runSearches(Frame& f, int catalogue) {
    const int runs = 7;
    timeSearch(f, catalogue, QStringLiteral("one word"), QStringLiteral("love"), runs);
    timeSearch(f, catalogue, QStringLiteral("two words"), QStringLiteral("love night"), runs);
    timeSearch(f, catalogue, QStringLiteral("a long word"), QStringLiteral("telephone"), runs);
    // Part of "night", "light", "tonight", "midnight": about one row in eight.
    timeSearch(f, catalogue, QStringLiteral("a common fragment"), QStringLiteral("ight"), runs);
    timeSearch(f, catalogue, QStringLiteral("no match"), QStringLiteral("zzzq"), runs);
}

} // namespace

int main(int argc, char** argv) {
    // A home of its own, so the user's catalogue is never touched.
    QTemporaryDir home;
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

    SongMaker maker;
    QElapsedTimer fill;
    fill.start();
    if (!addSongs(maker, 100000, 0))
        return 1;
    out << QStringLiteral("fill 100000 songs: %1 ms").arg(fill.elapsed()) << Qt::endl;

    {
        Frame f;
        runSearches(f, 100000);
        timeLoadAll(f, 100000, 5);
        // The same searches with a page cache that holds the whole catalogue
        // (the connection's default is 2 MB): what a larger cache would give.
        QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA cache_size = -65536"));
        out << "with PRAGMA cache_size = -65536 (64 MB):" << Qt::endl;
        runSearches(f, 100000);
        QSqlQuery(dbConnection()).exec(QStringLiteral("PRAGMA cache_size = -2000"));
    }

    if (small)
        return 0;
    fill.restart();
    if (!addSongs(maker, 900000, 100000))
        return 1;
    out << QStringLiteral("fill 900000 more songs: %1 ms").arg(fill.elapsed()) << Qt::endl;
    malloc_trim(0);

    Frame f;
    runSearches(f, 1000000);
    f.search.ClearSearchList();
    QCoreApplication::processEvents();
    malloc_trim(0);
    out << QStringLiteral("resident memory before view all songs: %1 MB").arg(vmRssKiB() / 1024.0, 0, 'f', 1)
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

    CloseDatabase();
    return 0;
}
