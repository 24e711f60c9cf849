// The host indexes the song folders, one naming convention at a time, on the
// import screen: a mistyped folder first, then each folder with its progress,
// the count, and the compaction that ends every run.

#include "core/prompts.h"
#include "scene.h"
#include "show.h"
#include "workspace.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QTimer>

#include <sys/stat.h>

namespace {

// What the import screen shows while a run goes on, sampled each time the run
// lets the screen breathe. (It reads the controls directly: a timer's slot is
// no place for a step that may throw.)
struct RunWatch {
    explicit RunWatch(QDialog& d)
        : status(d.findChild<QLabel*>(QStringLiteral("lblImportStatus"))),
          button(d.findChild<QPushButton*>(QStringLiteral("btnGetTracks"))) {
        sampler.setInterval(0);
        QObject::connect(&sampler, &QTimer::timeout, [this] {
            if (status && (statuses.isEmpty() || statuses.last() != status->text()))
                statuses << status->text();
            if (button)
                captions << button->text();
            const QCursor* cursor = QApplication::overrideCursor();
            hourglass = hourglass || (cursor && cursor->shape() == Qt::WaitCursor);
        });
        sampler.start();
    }
    QPointer<QLabel> status;
    QPointer<QPushButton> button;
    QTimer sampler;
    QStringList statuses;
    QStringList captions;
    bool hourglass = false;
};

quint64 fileId(const QString& path) {
    struct stat st;
    return ::stat(QFile::encodeName(path).constData(), &st) == 0 ? quint64(st.st_ino) : 0;
}

void importFolder(Show& show, QDialog& d, const LibraryFolder& folder, int* total) {
    const ShowLibrary& library = show.library();
    show.retype(d, QStringLiteral("txtFolder"), library.folderPath(folder.name));
    show.choose(d, QStringLiteral("cdoFileConvention"), folder.convention);
    if (d.findChild<QCheckBox*>(QStringLiteral("chkKamikaze"))->isChecked() != folder.kamikaze)
        show.click(d, QStringLiteral("chkKamikaze"));
    const QString catalogue = TestWorkspace::workingFolder() + QStringLiteral("kvsonglist.mdb");
    const quint64 before = fileId(catalogue);
    const int songs = library.songsIn(folder.name);
    *total += songs;
    {
        RunWatch watch(d);
        show.click(d, QStringLiteral("btnGetTracks"));
        show.expect(
            watch.captions.contains(QStringLiteral("Cancel Import")) && watch.hourglass,
            QStringLiteral("\"Cancel Import\" and the hourglass while %1 is imported").arg(folder.name));
        // Every fiftieth file shows, shortened to the label, where the run is.
        const bool progress = std::any_of(watch.statuses.begin(), watch.statuses.end(), [](const QString& s) {
            return s.endsWith(QLatin1String(".zip")) || s.endsWith(QLatin1String(".mp3"));
        });
        show.expect(progress || songs < 50,
                    QStringLiteral("the run's progress in the status line; it showed: ") +
                        watch.statuses.join(QStringLiteral(" | ")));
    }
    show.expect(show.textOf(d, QStringLiteral("lblImportStatus")) ==
                    QStringLiteral("%1 new tracks were imported.").arg(*total),
                QStringLiteral("%1 new tracks counted so far, not \"%2\"")
                    .arg(*total)
                    .arg(show.textOf(d, QStringLiteral("lblImportStatus"))));
    show.expect(show.textOf(d, QStringLiteral("lblTotalCount")) ==
                    QStringLiteral("Total count of tracks in the database is %1").arg(*total),
                QStringLiteral("the catalogue's count %1, not \"%2\"")
                    .arg(*total)
                    .arg(show.textOf(d, QStringLiteral("lblTotalCount"))));
    // The run ends by compacting the catalogue into a new file, and leaves no copy behind.
    show.expect(fileId(catalogue) != before &&
                    !QFile::exists(TestWorkspace::workingFolder() + QStringLiteral("kvSongListTemp.mdb")),
                QStringLiteral("the catalogue compacted after importing ") + folder.name);
}

void theSongsAreImported(Show& show) {
    show.answer(QStringLiteral("Index Tracks"), [&show](QDialog& d) {
        show.retype(d, QStringLiteral("txtFolder"), show.library().root() + QStringLiteral("Karoke"));
        show.answerBox(QStringLiteral("Invalid Folder"), Prompts::Ok);
        show.click(d, QStringLiteral("btnGetTracks"));
        int total = 0;
        for (const LibraryFolder& folder : show.library().folders())
            importFolder(show, d, folder, &total);
        show.expect(total == show.library().songs().size(),
                    QStringLiteral("every song of the library imported"));
        show.shot(QStringLiteral("import"),
                  QStringLiteral("The import screen after the last folder: %1 songs in the "
                                 "catalogue.")
                      .arg(total));
        d.close();
    });
    show.click(QStringLiteral("cmdImport"));
}

} // namespace

KV_SCENE(20, "the songs are imported", theSongsAreImported)
