// The options screen's database page on a catalogue of a million songs:
// "Show" of all songs to the first screenful, the song list as CSV, the list
// without duplicates (build and file) and the songbook. Prints the time of
// each and the process's peak memory during it.

#include "benchcommon.h"

#include "catalogue/database.h"
#include "catalogue/songindexkeeper.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/workingfolder.h"
#include "exports/deduplist.h"
#include "exports/songbook.h"
#include "exports/songlist.h"
#include "exports/songlistmodel.h"
#include "exports/ui/fradatabase.h"

#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QTableView>

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

// Starts a new peak: the kernel's high-water mark goes back to what the
// process holds now.
void resetPeak() {
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}

double timedMs(const std::function<void()>& run) {
    return bench::medianMs(1, {}, run);
}

} // namespace

int main(int argc, char** argv) {
    bench::privateHome();
    QApplication app(argc, argv);
    const int songs = app.arguments().contains(QStringLiteral("--100k")) ? 100000 : 1000000;

    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    bench::fillCatalogue(oApplicationPaths->ApplicationDatabaseFile(), songs);
    if (!OpenDatabase()) {
        std::printf("the catalogue did not open\n");
        return 1;
    }
    // The program reads its song index as it opens the catalogue; the
    // figures are those of a program that has it.
    const double indexMs = timedMs([] { SongIndexKeeper::instance().waitUntilCurrent(false, 120000); });
    const QString out = oApplicationPaths->ApplicationDocuments();
    std::printf("catalogue of %d songs; song index ready after %.0f ms; peak memory so far %.1f MB\n", songs,
                indexMs, peakMb());
    const double scale = songs / 1000000.0;

    // "Show" of "All Songs" on the page, until the list has painted its
    // first screenful.
    {
        resetPeak();
        fraDatabase page;
        page.resize(800, 600);
        page.show();
        QCoreApplication::processEvents();
        page.cboManageOptions->setCurrentIndex(0);
        const double shown = timedMs([&] {
            page.cmdShowExport_Click();
            page.lvExport->viewport()->repaint();
            QCoreApplication::processEvents();
        });
        bench::print("Show of All Songs, first screenful (ms)", shown, "ms", 300);
        std::printf("  %d rows read of %d, %.1f MB held by the list, peak memory %.1f MB (limit 200)\n",
                    page.exportModel()->rowCount(), songs, page.exportModel()->bytesHeld() / 1048576.0,
                    peakMb());
    }

    QString error;
    resetPeak();
    const QString listFile = out + SongList::kFileName;
    const double list =
        timedMs([&] { SongList::write(SongList::statement(SongList::AllSongs), listFile, &error); });
    bench::print("SongExport.csv of all songs (ms)", list, "ms", 4000 * scale);
    std::printf("  %lld bytes, peak memory %.1f MB (limit 200)\n", QFileInfo(listFile).size(), peakMb());

    resetPeak();
    qint64 kept = 0;
    const double build = timedMs([&] { kept = DedupList::BuildDedupTable(); });
    const QString dedupFile = out + DedupList::kFileName;
    const double write =
        timedMs([&] { DedupList::ExportDedup(dedupFile, DedupList::CaseMode::LeaveAlone, {}, &error); });
    bench::print("DeDup build and export (ms)", build + write, "ms", 10000 * scale);
    std::printf("  build %.0f ms, file %.0f ms, %lld songs kept, peak memory %.1f MB (limit 200)\n", build,
                write, kept, peakMb());

    resetPeak();
    Songbook::Outcome book;
    const double songbook =
        timedMs([&] { book = Songbook::write(out + "Bench.kbd", true, "host@example.com"); });
    bench::print("songbook .kbd (ms)", songbook, "ms", 8000 * scale);
    std::printf("  %lld songs, %s, peak memory %.1f MB (limit 200)\n", book.songs,
                book.written ? "written" : qPrintable(book.error), peakMb());
    return 0;
}
