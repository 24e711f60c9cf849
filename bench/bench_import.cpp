// Times the import's walk over a synthetic library of 100,000 song files in
// 500 folders (named "Disk-Track - Artist - Title"), with the name cutting and
// the inserts in batches of 3000, on a fresh catalogue for each run, until
// the song index is ready for the next search; and, for scale, `find` over
// the same tree. "--million" does the same for 1,000,000 files in 5,000
// folders (the median of three runs). The run's closing pause and compaction
// are left out.
#include "benchcommon.h"

#include "catalogue/database.h"
#include "catalogue/songindexkeeper.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/consoleprompts.h"
#include "core/globals.h"
#include "core/prompts.h"
#include "core/workingfolder.h"
#include "import/importrun.h"
#include "import/importtransaction.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <ctime>
#include <unistd.h>
#include <vector>

namespace {

int kFolders = 500;
constexpr int kFilesPerFolder = 200;
int kRuns = 5;

bool buildLibrary(const QString& root) {
    for (int d = 0; d < kFolders; ++d) {
        const QString folder = root + QStringLiteral("/Disc %1").arg(d, 3, 10, QLatin1Char('0'));
        if (!QDir().mkpath(folder))
            return false;
        for (int t = 0; t < kFilesPerFolder; ++t) {
            QFile f(folder + QStringLiteral("/SC%1-%2 - Artist %3 - Title %4.zip")
                                 .arg(8100 + d)
                                 .arg(t % 100, 2, 10, QLatin1Char('0'))
                                 .arg(d * 7 + t % 13)
                                 .arg(d * kFilesPerFolder + t));
            if (!f.open(QIODevice::WriteOnly))
                return false;
        }
    }
    return true;
}

double median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// Puts the empty template catalogue in place of the working one.
bool freshCatalogue() {
    CloseDatabase();
    const QString live = oApplicationPaths->ApplicationDatabaseFile();
    QFile::remove(live);
    return QFile::copy(cApplicationPaths::installFolder() + QStringLiteral("/kvsonglist.mdb"), live) &&
           QFile::setPermissions(live, QFile::ReadOwner | QFile::WriteOwner) && OpenDatabase();
}

qint64 rowCount() {
    QSqlQuery q = ExecuteSql(QStringLiteral("SELECT count(*) FROM tblKaraokeTracks"));
    return q.next() ? q.value(0).toLongLong() : -1;
}

} // namespace

int main(int argc, char** argv) {
    QTextStream out(stdout);
    QTemporaryDir home;
    if (!home.isValid())
        return 1;
    // A private home, so that the host's own catalogue is never touched.
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_DATA_HOME", (home.path() + QStringLiteral("/data")).toUtf8());
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    QCoreApplication app(argc, argv);
    if (app.arguments().contains(QStringLiteral("--million"))) {
        kFolders = 5000;
        kRuns = 3;
    }
    // "--runs N" for a quicker look.
    if (const qsizetype at = app.arguments().indexOf(QStringLiteral("--runs")); at > 0)
        kRuns = qMax(1, app.arguments().value(at + 1).toInt());
    ConsolePrompts silent;
    setPrompts(&silent);

    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();

    // "--library DIR" keeps the synthetic library in DIR, built there once.
    QString root = home.path() + QStringLiteral("/library");
    if (const qsizetype at = app.arguments().indexOf(QStringLiteral("--library")); at > 0)
        root = app.arguments().value(at + 1);
    QElapsedTimer build;
    build.start();
    if (!QDir(root).exists() && !buildLibrary(root)) {
        out << "cannot build the library under " << root << "\n";
        return 1;
    }
    // The library just made is written out before the timing starts, so that
    // the disk's catching up with it does not land in the import's figures.
    ::sync();
    out << "library: " << kFolders * kFilesPerFolder << " files in " << kFolders << " folders, built in "
        << QString::number(build.elapsed() / 1000.0, 'f', 2) << " s\n";

    std::vector<double> importTimes;
    std::vector<double> withIndexTimes;
    std::vector<double> importCpu;
    for (int run = 0; run < kRuns; ++run) {
        if (!freshCatalogue()) {
            out << "cannot reset the catalogue\n";
            return 1;
        }
        ImportRun importer;
        importer.importer().ConventionNumber = 2;
        QElapsedTimer t;
        t.start();
        const std::clock_t cpu = std::clock();
        {
            // As the import run does it.
            const BulkWrites bulk;
            BeginTrans();
            importer.SearchForFiles(root + QLatin1Char('/'));
            CommitTrans();
        }
        importTimes.push_back(t.nsecsElapsed() / 1e9);
        // The index the next search reads is part of the import's work.
        SongIndexKeeper::instance().refresh();
        if (!SongIndexKeeper::instance().waitUntilCurrent(false, 120000)) {
            out << "the song index did not come\n";
            return 1;
        }
        withIndexTimes.push_back(t.nsecsElapsed() / 1e9);
        importCpu.push_back(double(std::clock() - cpu) / CLOCKS_PER_SEC);
        const qint64 rows = rowCount();
        if (rows != kFolders * kFilesPerFolder) {
            out << "run " << run + 1 << " catalogued " << rows << " rows\n";
            return 1;
        }
    }

    std::vector<double> findTimes;
    for (int run = 0; run < kRuns; ++run) {
        QProcess find;
        find.setStandardOutputFile(QProcess::nullDevice());
        QElapsedTimer t;
        t.start();
        find.start(QStringLiteral("find"), {root, QStringLiteral("-type"), QStringLiteral("f")});
        find.waitForFinished(-1);
        findTimes.push_back(t.nsecsElapsed() / 1e9);
    }

    auto runsText = [](const std::vector<double>& v) {
        QStringList s;
        for (double x : v)
            s << QString::number(x, 'f', 3);
        return s.join(QStringLiteral(", "));
    };
    const double importMedian = median(importTimes);
    const double findMedian = median(findTimes);
    out << "import walk+cut+insert, " << kFolders * kFilesPerFolder << " files: median "
        << QString::number(importMedian, 'f', 3) << " s (runs " << runsText(importTimes) << ")\n";
    out << "import processor time: median " << QString::number(median(importCpu), 'f', 3) << " s (runs "
        << runsText(importCpu) << ")\n";
    out << "find -type f, same tree: median " << QString::number(findMedian, 'f', 3) << " s (runs "
        << runsText(findTimes) << ")\n";
    out << "import / find: " << QString::number(importMedian / findMedian, 'f', 1) << "x\n";
    out.flush();
    const int files = kFolders * kFilesPerFolder;
    const bool million = files >= 1000000;
    bench::print(million ? "import of 1,000,000 files, song index ready (median)"
                         : "import of 100,000 files, song index ready (median)",
                 median(withIndexTimes) * 1000, "ms", million ? 6000 : 500);
    CloseDatabase();
    return 0;
}
