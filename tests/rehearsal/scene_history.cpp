// The next evening, Anna is back and wants her song again, in her key. The
// host finds it in the history, queues it, and moves the history to a file
// and back: exported to the desktop, cleared, imported again.

#include "cast.h"
#include "core/prompts.h"
#include "scene.h"
#include "show.h"

#include <QAbstractItemModel>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QTableView>

namespace {

// The rows the history list shows: singer, artist, title and key.
QList<SingerRow> listed(QDialog& d) {
    QList<SingerRow> rows;
    auto* list = d.findChild<QTableView*>(QStringLiteral("olvHistory"));
    QAbstractItemModel* m = list ? list->model() : nullptr;
    for (int r = 0; m && r < m->rowCount(); ++r)
        rows.append({m->index(r, 1).data().toString(), m->index(r, 2).data().toString(),
                     m->index(r, 3).data().toString(), m->index(r, 4).data().toInt()});
    return rows;
}

QString rowsText(const QList<SingerRow>& rows) {
    QStringList out;
    for (const SingerRow& r : rows)
        out << r.text();
    return out.join(QStringLiteral("; "));
}

void annaIsBack(Show& show) {
    show.startProgram();
    // Whoever else sang stays in the history as they were.
    const QList<SingerRow> waiting = show.queue();
    QList<SingerRow> others;
    for (const SingerRow& r : show.history())
        if (r.singer != cast::anna().singer)
            others << r;
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    const QString file = QDir(desktop).filePath(QStringLiteral("Anna History.csv"));
    QDir().mkpath(desktop);
    QFile::remove(file);

    show.answer(QStringLiteral("History"), [&](QDialog& d) {
        show.choose(d, QStringLiteral("cboSingers"), QStringLiteral("Anna"));
        show.expect(listed(d) == QList<SingerRow>{cast::anna()},
                    QStringLiteral("Anna's song in her key in the list, not %1").arg(rowsText(listed(d))));
        d.findChild<QTableView*>(QStringLiteral("olvHistory"))->selectRow(0);
        show.click(d, QStringLiteral("cmdAddSingleSong"));

        show.answerBox(QStringLiteral("Export Song History"), Prompts::Ok);
        show.click(d, QStringLiteral("cmdExport"));
        show.expect(QFile::exists(file), QStringLiteral("\"Anna History.csv\" on the desktop"));

        show.answerBox(QStringLiteral("Clear History"), Prompts::Yes);
        show.click(d, QStringLiteral("cmdClearHistory"));
        show.expectHistory(others);

        show.answerFile(file);
        show.answerBox(QStringLiteral("Import Completed"), Prompts::Ok);
        show.click(d, QStringLiteral("cmdImport"));
        show.expectHistory(others + QList<SingerRow>{cast::anna()});
        show.shot(QStringLiteral("history"),
                  QStringLiteral("The history after Anna's rows went to the desktop, were cleared and "
                                 "came back."));
        show.click(d, QStringLiteral("cmdClose"));
    });
    show.click(QStringLiteral("btnHistory"));
    show.expectQueue(waiting + QList<SingerRow>{cast::anna()});
    show.expectHistory(others + QList<SingerRow>{cast::anna()});
    show.quitProgram();
    show.expectNothingUnexpected();
}

} // namespace

KV_SCENE(97, "Anna is back: her song from the history", annaIsBack)
