// Saving and restoring the singer queue: a queue of 500 rows written to
// tblQueue (one transaction: the delete and every row) and read back into an
// empty list, through the program's own procedures. Prints the median of
// several runs of each.
#include "benchcommon.h"

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/cinifile.h"
#include "core/globals.h"
#include "core/workingfolder.h"
#include "queue/queuemodel.h"
#include "queue/queuestore.h"

#include <QApplication>

int main(int argc, char** argv) {
    bench::privateHome();
    QApplication app(argc, argv);
    oApplicationPaths = std::make_unique<cApplicationPaths>();
    CheckWorkingFolder();
    oSettings = std::make_unique<CIniFile>();
    if (!OpenDatabase()) {
        std::fprintf(stderr, "the catalogue did not open\n");
        return 1;
    }

    constexpr int kRows = 500;
    constexpr int kRuns = 15;
    QueueModel queue;
    for (int i = 0; i < kRows; ++i) {
        const QString w = QString::fromLatin1(bench::kWords[i % bench::kWordCount]);
        queue.addItem({QString(), QStringLiteral("Singer %1 O'%2").arg(i).arg(w),
                       QStringLiteral("The %1s").arg(w), QStringLiteral("%1 %2 night").arg(w).arg(i),
                       QString::number(i % 13 - 6)},
                      QStringLiteral("/music/karaoke/Disc %1/The %2s - %2 %3.zip").arg(i / 20).arg(w).arg(i));
    }

    bool allSaved = true;
    const double save = bench::medianMs(kRuns, nullptr, [&] { allSaved &= SaveQueue(queue); });
    QueueModel restored;
    const double restore = bench::medianMs(
        kRuns, [&] { restored.clearItems(); }, [&] { RestoreQueue(restored); });
    if (!allSaved || restored.rowCount() != kRows ||
        restored.items().last().tag != queue.items().last().tag) {
        std::fprintf(stderr, "the queue did not round-trip (%d rows back)\n", restored.rowCount());
        return 1;
    }
    bench::print("SaveQueue, 500 rows (median of 15)", save, "ms", 20);
    bench::print("RestoreQueue, 500 rows into an empty list (median of 15)", restore, "ms", 20);

    // The save's time is mostly the disk syncs of the rollback journal. For
    // comparison: the same save with the catalogue in write-ahead-log mode,
    // synced at checkpoints (this benchmark's private copy only).
    ExecuteSql(QStringLiteral("PRAGMA journal_mode=WAL")).next();
    ExecuteSql(QStringLiteral("PRAGMA synchronous=NORMAL"));
    const double saveWal = bench::medianMs(kRuns, nullptr, [&] { allSaved &= SaveQueue(queue); });
    bench::print("SaveQueue, 500 rows, catalogue in WAL mode (median of 15)", saveWal, "ms", 20);

    CloseDatabase();
    oSettings.reset();
    return 0;
}
