// The history of a busy venue: 100,000 performances. Prints the time the
// history screen takes to show its first screenful for "(All)" with "No Dups",
// and the times of the CSV export and re-import of every row.

#include "benchcommon.h"

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/settings.h"
#include "core/workingfolder.h"
#include "history/historycsv.h"
#include "history/historylistmodel.h"
#include "history/historyqueue.h"
#include "history/ui/frmhistory.h"
#include "queue/queuemodel.h"

#include <QApplication>
#include <QFileInfo>
#include <QTableView>

#include <sys/resource.h>

namespace {

// `rows` performances by 400 singers of songs from the word list, one in ten
// sung again by the same singer in the same key.
void fillHistory(const QString& path, int rows) {
    sqlite3* db = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &db);
    sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db,
                       "INSERT INTO tblKaraokeTrackHistory (SingerName, Artist, Title, [Key], TrackPath) "
                       "VALUES (?1, ?2, ?3, ?4, ?5)",
                       -1, &st, nullptr);
    QRandomGenerator rng(7);
    auto word = [&] { return QByteArray(bench::kWords[rng.bounded(bench::kWordCount)]); };
    QByteArray singer, artist, title, file;
    int key = 0;
    for (int i = 0; i < rows; ++i) {
        if (i % 10 != 9) {
            singer = "Singer " + QByteArray::number(rng.bounded(400));
            artist = word() + ' ' + word();
            title = word() + ' ' + word() + ' ' + word();
            file = "/media/karaoke/SC" + QByteArray::number(8000 + rng.bounded(5000)) + " - " + artist +
                   " - " + title + ".zip";
            key = int(rng.bounded(7)) - 3;
        }
        sqlite3_bind_text(st, 1, singer.constData(), int(singer.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 2, artist.constData(), int(artist.size()), SQLITE_TRANSIENT);
        sqlite3_bind_text(st, 3, title.constData(), int(title.size()), SQLITE_TRANSIENT);
        sqlite3_bind_int(st, 4, key);
        sqlite3_bind_text(st, 5, file.constData(), int(file.size()), SQLITE_TRANSIENT);
        sqlite3_step(st);
        sqlite3_reset(st);
    }
    sqlite3_finalize(st);
    sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
    sqlite3_close(db);
}

QByteArray loadAverage() {
    QFile f(QStringLiteral("/proc/loadavg"));
    return f.open(QIODevice::ReadOnly) ? f.readAll().split(' ').mid(0, 3).join(' ') : QByteArray("?");
}

// Processor time of this process so far (user and system), in ms: on a busy
// machine it shows what the wall-clock figure owes to waiting for a processor.
double cpuMs() {
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return (u.ru_utime.tv_sec + u.ru_stime.tv_sec) * 1000.0 +
           (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1000.0;
}

class NoQueue : public HistoryQueue {
public:
    void appendRow(const HistoryRow&) override {}
    void saveQueue() override {}
    void addToSavedQueue(int, const HistoryRow&) override {}
    void restoreQueue() override {}
};

} // namespace

int main(int argc, char** argv) {
    bench::privateHome();
    QApplication app(argc, argv);
    constexpr int kRows = 100000;

    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    fillHistory(oApplicationPaths->ApplicationDatabaseFile(), kRows);
    if (!OpenDatabase()) {
        std::printf("the catalogue did not open\n");
        return 1;
    }
    settings::writeBool(keys::AutoSelectAllInHistory, true);
    std::printf("history of %d rows (load average %s)\n", kRows, loadAverage().constData());

    HistoryListModel model;
    const double firstBlock = bench::medianMs(5, {}, [&] { model.load({HistoryStore::kAll, true, false}); });
    bench::print("(All), No Dups: the list's first block (ms)", firstBlock, "ms", 200);

    NoQueue queue;
    int shown = 0;
    const double screen = bench::medianMs(5, {}, [&] {
        frmHistory f(queue);
        f.show();
        QCoreApplication::processEvents();
        shown = f.model()->rowCount();
    });
    bench::print("history screen open to its first screenful (ms)", screen, "ms", 200);
    std::printf("  rows read by then: %d of %d\n", shown, kRows);

    const QString file = oApplicationPaths->ApplicationDocuments() + QStringLiteral("(All) History.csv");
    HistoryCsv::ExportOutcome ex;
    const double exportMs = bench::medianMs(3, {}, [&] {
        ex = HistoryCsv::write({HistoryStore::kAll, false, false}, file);
    });
    bench::print("export of every row (ms)", exportMs, "ms", 3000);
    std::printf("  %lld rows, %lld bytes%s\n", ex.rows, QFileInfo(file).size(),
                ex.written ? "" : qPrintable(QStringLiteral(", failed: ") + ex.error));

    HistoryStore::clear(HistoryStore::kAll);
    HistoryCsv::ImportOutcome im;
    const double cpuBefore = cpuMs();
    const double importMs = bench::medianMs(1, {}, [&] { im = HistoryCsv::read(file); });
    const double importCpu = cpuMs() - cpuBefore;
    bench::print("re-import of every row (ms)", importMs, "ms", 3000);
    std::printf("  %lld rows imported, %lld in the history, %.0f ms of processor time%s\n", im.rows,
                HistoryStore::rowCount(), importCpu,
                im.ok ? "" : qPrintable(QStringLiteral(", stopped: ") + im.error));
    return 0;
}
