// Between songs the host tidies the catalogue from the search list: a broken
// song is marked as faulty, a song whose artist and title were swapped in its
// file name is put right, and its file renamed after the corrected row. Then
// the song list, the list without duplicates and a songbook for the mobile app
// are written, and each file holds the catalogue as it now stands.

#include "catalogue/database.h"
#include "core/capplicationpaths.h"
#include "core/globals.h"
#include "exportedfiles.h"
#include "exports/exportfile.h"
#include "exports/ui/fradatabase.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "show.h"

#include <QAction>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QMenu>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>

namespace {

// The last two songs of the disc series: no singer of the evening asks for them.
QList<LibrarySong> songsToTidy(Show& show) {
    QList<LibrarySong> picked;
    const QList<LibrarySong>& all = show.library().songs();
    for (auto it = all.rbegin(); it != all.rend() && picked.size() < 2; ++it)
        if (it->kind == LibrarySong::Zip && it->folder == ShowLibrary::neonHarbour().folder)
            picked << *it;
    return picked;
}

QString one(const QString& sql) {
    QSqlQuery q = ExecuteSql(sql);
    return q.next() ? q.value(0).toString() : QString();
}

// Searches for `song` until it is the one row of the list, and opens the
// list's pop-up menu on it with the right button.
void findAndOpenMenu(Show& show, const LibrarySong& song) {
    frmMain& w = show.window();
    show.retype(w, QStringLiteral("txtSearch"), song.artist + QLatin1Char(' ') + song.title);
    const QStringList wanted{song.artist, song.title, song.disc, song.trackNo};
    show.expectSoon([&] { return show.searchResults() == QList<QStringList>{wanted}; },
                    QStringLiteral("\"%1\" found alone").arg(song.title),
                    [&] { return QStringLiteral("%1 rows").arg(show.searchResults().size()); });
    QTableView* list = w.olvSearchResults;
    const QRect row = list->visualRect(list->model()->index(0, 1));
    QTest::mouseClick(list->viewport(), Qt::RightButton, Qt::NoModifier, row.center());
    show.expectSoon([&] { return w.mnuSearchOptions->isVisible(); },
                    QStringLiteral("the Search Options menu"), [] { return QStringLiteral("not shown"); });
}

void chooseFromMenu(Show& show, const QString& entry) {
    QMenu* menu = show.window().mnuSearchOptions;
    QAction* action = menu->findChild<QAction*>(entry);
    show.expect(action != nullptr, QStringLiteral("the entry ") + entry);
    // The entry under the pointer, taken with Enter: a menu passes over a
    // click that comes the moment it opens.
    QTest::mouseMove(menu, menu->actionGeometry(action).center());
    menu->setActiveAction(action);
    QTest::keyClick(menu, Qt::Key_Return);
    show.expectSoon([&] { return !menu->isVisible(); }, QStringLiteral("the menu closed"),
                    [] { return QStringLiteral("still open"); });
}

using exportedfiles::readCsv;

QStringList kbd(const QString& path, const QString& sql) {
    return exportedfiles::sqliteColumn(path, sql);
}

void theHostTidiesTheCatalogue(Show& show) {
    const QList<LibrarySong> songs = songsToTidy(show);
    show.expect(songs.size() == 2, QStringLiteral("two songs of the disc series to tidy"));
    const LibrarySong& broken = songs[0];
    const LibrarySong& swapped = songs[1];

    // A song that will not play is marked, with a note; a search no longer finds it.
    findAndOpenMenu(show, broken);
    show.answerBox(QStringLiteral("Mark the song as having errors"), 1);
    show.answerFile(QStringLiteral("skips at the chorus"));
    chooseFromMenu(show, QStringLiteral("mnuSearchOptionMarkError"));
    const QString brokenPath = show.library().path(broken);
    const QString mark =
        one(QStringLiteral("SELECT Error || '|' || ifnull(Notes, '') FROM tblKaraokeTracks WHERE "
                           "TrackPath = '%1'")
                .arg(MakeSafeSql(brokenPath)));
    show.expect(mark == QStringLiteral("-1|skips at the chorus"),
                QStringLiteral("the song marked with the host's note, not [%1] (%2); marked: %3")
                    .arg(mark, brokenPath)
                    .arg(one(QStringLiteral(
                        "SELECT group_concat(TrackPath) FROM tblKaraokeTracks WHERE Error <> 0"))));

    show.retype(show.window(), QStringLiteral("txtSearch"),
                broken.artist + QLatin1Char(' ') + broken.title + ' ');
    show.expectSoon([&] { return show.searchResults().isEmpty(); },
                    QStringLiteral("the marked song no longer found"),
                    [&] { return QStringLiteral("%1 rows").arg(show.searchResults().size()); });

    // Artist and title swapped, in the list and in the catalogue.
    findAndOpenMenu(show, swapped);
    chooseFromMenu(show, QStringLiteral("mnuSearchOptionsSwap"));
    const QStringList fixed{swapped.title, swapped.artist, swapped.disc, swapped.trackNo};
    show.expect(show.searchResults() == QList<QStringList>{fixed},
                QStringLiteral("the list row ") + fixed.join(QStringLiteral(" | ")));
    const QString oldPath = show.library().path(swapped);
    show.expect(
        one(QStringLiteral("SELECT ArtistName || '|' || TrackName FROM tblKaraokeTracks WHERE TrackPath = "
                           "'%1'")
                .arg(MakeSafeSql(oldPath))) == swapped.title + QLatin1Char('|') + swapped.artist,
        QStringLiteral("artist and title swapped in the catalogue"));

    // Its file renamed after the corrected row.
    show.shot(QStringLiteral("search-options"), QStringLiteral("The search list's pop-up menu of repairs."));
    chooseFromMenu(show, QStringLiteral("mnuSearchOptionRename"));
    const QString newPath = show.library().folderPath(swapped.folder) + swapped.disc + QLatin1Char('-') +
                            swapped.trackNo + QStringLiteral(" - ") + swapped.title + QStringLiteral(" - ") +
                            swapped.artist + QStringLiteral(".zip");
    show.expect(QFile::exists(newPath) && !QFile::exists(oldPath),
                QStringLiteral("the file renamed to ") + QDir(newPath).dirName());
    show.expect(one(QStringLiteral("SELECT COUNT(*) FROM tblKaraokeTracks WHERE TrackPath = '%1'")
                        .arg(MakeSafeSql(newPath))) == QStringLiteral("1"),
                QStringLiteral("the catalogue row holding the new path"));

    // The lists and the songbook, from the options screen's database page.
    const int total = one(QStringLiteral("SELECT COUNT(*) FROM tblKaraokeTracks")).toInt();
    const int distinct =
        one(QStringLiteral(
                "SELECT COUNT(*) FROM (SELECT DISTINCT ArtistName, TrackName FROM tblKaraokeTracks)"))
            .toInt();
    const QString desktop = desktopFolder() + QLatin1Char('/');
    QFile::remove(desktop + QStringLiteral("SongExport.csv"));
    QFile::remove(desktop + QStringLiteral("depexport(dedup).csv"));
    fraDatabase page;
    page.resize(900, 600);
    page.show();
    show.wait(100);
    show.choose(page, QStringLiteral("cboManageOptions"), QStringLiteral("All Songs"));
    show.click(page, QStringLiteral("cmdShowExport"));
    show.answerBox(QStringLiteral("Export Completed"), 1);
    show.click(page, QStringLiteral("btnExportAll"));
    const QList<QStringList> list = readCsv(desktop + QStringLiteral("SongExport.csv"));
    show.expect(list.value(0) == QStringList{"Artist", "Track", "Disc", "TrackNo", "Location"},
                QStringLiteral("the song list's header"));
    show.expect(
        list.size() == total + 1,
        QStringLiteral("every song in the list (%1 rows for %2 songs)").arg(list.size() - 1).arg(total));
    show.expect(list.contains(fixed + QStringList{newPath}),
                QStringLiteral("the corrected song in the list"));

    show.answerBox(QStringLiteral("Export Completed"), 1);
    show.click(page, QStringLiteral("btnExportDedup"));
    QFile dedup(desktop + QStringLiteral("depexport(dedup).csv"));
    show.expect(dedup.open(QIODevice::ReadOnly), QStringLiteral("the DeDup list on the desktop"));
    const QList<QByteArray> lines = dedup.readAll().split('\n');
    const QByteArray fixedLine = "\"" + swapped.title.toUtf8() + "\",\"" + swapped.artist.toUtf8() + "\",\"" +
                                 swapped.disc.toUtf8() + "\",\"" + swapped.trackNo.toUtf8() + "\"\r";
    show.expect(
        lines.size() == distinct + 1 && lines.last().isEmpty(),
        QStringLiteral("one line for each of %1 songs, %2 lines").arg(distinct).arg(lines.size() - 1));
    show.expect(
        std::any_of(lines.begin(), lines.end(), [&](const QByteArray& l) { return l.endsWith(fixedLine); }),
        QStringLiteral("the corrected song in the DeDup list"));

    const QString book = oApplicationPaths->ApplicationDocuments() + QStringLiteral("Friday Songbook.kbd");
    show.answer(QStringLiteral("Export For Mobile App"), [&](QDialog& d) {
        show.type(d, QStringLiteral("txtSongBookTitle"), QStringLiteral("Friday Songbook"));
        show.click(d, QStringLiteral("chkUseEmailAddressForRequests"));
        show.type(d, QStringLiteral("txtEmailAddress"), QStringLiteral("host@example.com"));
        show.click(d, QStringLiteral("cmdExportForMobile"));
    });
    show.click(page, QStringLiteral("cmdExportForMobile"));
    show.expectSoon(
        [&] { return show.textOf(page, QStringLiteral("lblExport")) == QStringLiteral("Export Completed"); },
        QStringLiteral("the songbook written"),
        [&] { return show.textOf(page, QStringLiteral("lblExport")); });
    show.shot(QStringLiteral("exports"), QStringLiteral("The database page after the three exports."));
    show.expect(kbd(book, QStringLiteral("pragma integrity_check")) == QStringList{QStringLiteral("ok")},
                QStringLiteral("a whole songbook file"));
    show.expect(kbd(book, QStringLiteral("SELECT COUNT(*) FROM KaraokeSongs")) ==
                    QStringList{QString::number(total)},
                QStringLiteral("every song in the songbook"));
    show.expect(kbd(book, QStringLiteral("SELECT EmailAddress FROM HostDetails")) ==
                    QStringList{QStringLiteral("host@example.com")},
                QStringLiteral("the host's address in the songbook"));
    show.expect(kbd(book, QStringLiteral("SELECT COUNT(*) FROM KaraokeSongs WHERE SearchCriteria = '%1'")
                              .arg(MakeSafeSql(swapped.title + ' ' + swapped.artist + ' ' + swapped.disc))) ==
                    QStringList{QStringLiteral("1")},
                QStringLiteral("the corrected song in the songbook"));
    show.expectNothingUnexpected();
}

} // namespace

KV_SCENE(75, "the host tidies the catalogue and hands out the song list", theHostTidiesTheCatalogue)
