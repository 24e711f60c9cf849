// Fill music: the host assigns two jingles on the options page, plays one
// while the stage is empty, clicks the other over it, and the next singer's
// start cuts it at once. Then, with "Stop karaoke song on play of fill /
// jingle" on, a jingle clicked during the song fades the song out.

#include "cast.h"
#include "jingles/jingleplayer.h"
#include "jingles/ui/jingleoptionspage.h"
#include "playbackmedia.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "screens/mainparts.h"
#include "show.h"

#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QJsonValue>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace {

QString jinglePath(JinglePlayer& jingles) {
    return jingles.instance().property(QStringLiteral("path")).value_or(QJsonValue()).toString();
}

void expectJingle(Show& show, const QString& path, Where where = Where::current()) {
    JinglePlayer& jingles = show.window(where).parts().jinglePlayer();
    show.expectSoon(
        [&] { return jingles.PlayerState() == 1 && jinglePath(jingles) == path; },
        QStringLiteral("the jingle %1 to play").arg(path),
        [&] { return QStringLiteral("state %1, %2").arg(jingles.PlayerState()).arg(jinglePath(jingles)); },
        10000, where);
}

void fillMusic(Show& show) {
    const QString folder = show.library().root() + QStringLiteral("Fills/");
    const QString applause = folder + QStringLiteral("Applause.mp3");
    const QString fanfare = folder + QStringLiteral("Big Fanfare.mp3");
    QDir().mkpath(folder);
    show.expect(playbackmedia::makeMp3(applause, 20.0) && playbackmedia::makeMp3(fanfare, 20.0),
                QStringLiteral("two jingles made"));

    show.startProgram();
    frmMain& w = show.window();
    JinglePlayer& jingles = w.parts().jinglePlayer();
    show.expect(jingles.isRunning(), QStringLiteral("the jingle engine runs beside the player"));
    show.expect(w.cmdJingle[0]->text() == QStringLiteral(" Not Assigned"),
                QStringLiteral("button 1 unassigned, not \"%1\"").arg(w.cmdJingle[0]->text()));
    if (w.chkAutoPlay->isChecked())
        show.click(QStringLiteral("chkAutoPlay"));

    // The host assigns two fills on the options page.
    show.answer(QStringLiteral("Options"), [&](QDialog& d) {
        show.click(d, QStringLiteral("btnJingles"));
        auto* page = d.findChild<JingleOptionsPage*>();
        show.expect(page != nullptr, QStringLiteral("the Fill Buttons page"));
        show.answerFile(applause);
        show.click(*page->myJingle[0], QStringLiteral("myJingleButton"));
        show.answerFile(fanfare);
        show.click(*page->myJingle[1], QStringLiteral("myJingleButton"));
        show.expect(page->myJingle[1]->text() == fanfare, QStringLiteral("the fanfare's path on the page"));
        show.expect(page->chkStopKaraoke->isChecked(), QStringLiteral("Stop karaoke song on play ticked"));
        d.close();
    });
    show.click(QStringLiteral("btnOptions"));
    show.expect(w.cmdJingle[0]->text() == QStringLiteral("Applause") &&
                    w.cmdJingle[1]->text() == QStringLiteral("Big Fanfare"),
                QStringLiteral("the buttons named after their files, not \"%1\" and \"%2\"")
                    .arg(w.cmdJingle[0]->text(), w.cmdJingle[1]->text()));

    // Between singers: one fill, then the other over it.
    show.expectPlayer(QStringLiteral("STOPPED"));
    QTest::mouseClick(w.cmdJingle[0], Qt::LeftButton);
    expectJingle(show, applause);
    show.wait(1500);
    QTest::mouseClick(w.cmdJingle[1], Qt::LeftButton);
    expectJingle(show, fanfare);
    show.shot(QStringLiteral("fill-music"), QStringLiteral("A fill plays between singers."));

    // The next singer: the fill stops at once, before the song begins.
    show.click(QStringLiteral("btnPlayTrack"));
    show.expect(jingles.PlayerState() == 3,
                QStringLiteral("the fill cut by the song's start (state %1)").arg(jingles.PlayerState()));
    show.expectPlayer(QStringLiteral("PLAYING"), Span::below(5));
    show.expectStage(cast::cleo());

    // A fill during the song, the setting on: the fill sounds, the song fades and stops.
    show.expectPlayer(QStringLiteral("PLAYING"), Span::atLeast(1));
    QTest::mouseClick(w.cmdJingle[0], Qt::LeftButton);
    expectJingle(show, applause);
    show.expectSoon([&] { return show.status() == QStringLiteral("STOPPED"); },
                    QStringLiteral("the song to fade out and stop under the fill"),
                    [&] { return QStringLiteral("%1 at %2 s").arg(show.status()).arg(show.position()); },
                    10000);
    show.expect(jingles.PlayerState() == 1, QStringLiteral("the fill still playing after the fade"));
    show.quitProgram();
}

} // namespace

KV_SCENE(95, "fill music between singers", fillMusic)
