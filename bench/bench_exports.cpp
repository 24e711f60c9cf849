// The exports of the options screen on a catalogue of a million songs: the
// song list as CSV, the list without duplicates (build and file) and the
// songbook. Prints the time of each and the process's peak memory after it.

#include "benchcommon.h"

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/workingfolder.h"
#include "exports/deduplist.h"
#include "exports/songbook.h"
#include "exports/songlist.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

// The peak resident memory of this process so far, in MB.
double peakMb() {
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024.0;
    return -1;
}

double timedMs(const std::function<void()>& run) {
    return bench::medianMs(1, {}, run);
}

} // namespace

int main(int argc, char** argv) {
    bench::privateHome();
    QCoreApplication app(argc, argv);
    const int songs = app.arguments().contains(QStringLiteral("--100k")) ? 100000 : 1000000;

    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    bench::fillCatalogue(oApplicationPaths->ApplicationDatabaseFile(), songs);
    if (!OpenDatabase()) {
        std::printf("the catalogue did not open\n");
        return 1;
    }
    const QString out = oApplicationPaths->ApplicationDocuments();
    std::printf("catalogue of %d songs; peak memory after filling %.1f MB\n", songs, peakMb());
    const double scale = songs / 1000000.0;

    QString error;
    const QString listFile = out + SongList::kFileName;
    const double list =
        timedMs([&] { SongList::write(SongList::statement(SongList::AllSongs), listFile, &error); });
    bench::print("SongExport.csv of all songs (ms)", list, "ms", 4000 * scale);
    std::printf("  %lld bytes, peak memory %.1f MB (limit 200)\n", QFileInfo(listFile).size(), peakMb());

    qint64 kept = 0;
    const double build = timedMs([&] { kept = DedupList::BuildDedupTable(); });
    const QString dedupFile = out + DedupList::kFileName;
    const double write =
        timedMs([&] { DedupList::ExportDedup(dedupFile, DedupList::CaseMode::LeaveAlone, {}, &error); });
    bench::print("DeDup build and export (ms)", build + write, "ms", 10000 * scale);
    std::printf("  build %.0f ms, file %.0f ms, %lld songs kept, peak memory %.1f MB (limit 200)\n", build,
                write, kept, peakMb());

    Songbook::Outcome book;
    const double songbook =
        timedMs([&] { book = Songbook::write(out + "Bench.kbd", true, "host@example.com"); });
    bench::print("songbook .kbd (ms)", songbook, "ms", 8000 * scale);
    std::printf("  %lld songs, %s, peak memory %.1f MB (limit 200)\n", book.songs,
                book.written ? "written" : qPrintable(book.error), peakMb());
    return 0;
}
