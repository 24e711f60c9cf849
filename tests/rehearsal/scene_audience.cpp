// The room's screen. Before the first song the host turns the audience screen
// on in the options, drags it onto the right half of the desk's wide display
// (below the player's window) and gives it the evening's picture from the
// preview's menu: the picture fills it and the strip scrolls the welcome over
// it. When Anna's song starts, the strip calls Ben, who is next.

#include "audience/ui/audiencepreview.h"
#include "audience/ui/backgroundpicture.h"
#include "audience/ui/frmaudience.h"
#include "audience/ui/vbwscroller.h"
#include "cast.h"
#include "core/settings.h"
#include "playerwindow.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "screens/mainparts.h"
#include "show.h"

#include <QCheckBox>
#include <QDialog>
#include <QDir>
#include <QGuiApplication>
#include <QLabel>
#include <QPainter>
#include <QScreen>

namespace {

// Where the host drags the window: the right half of the display, under the
// player's window and clear of the main window.
QRect roomScreen(const QWidget& main) {
    const int left = qMax(1920, main.frameGeometry().right() + 40);
    return QRect(left, 620, 3840 - left, 460);
}
const QColor kLeftColour(230, 120, 20);
const QColor kRightColour(20, 140, 150);

QString makeEveningPicture() {
    QImage img(1600, 900, QImage::Format_RGB32);
    img.fill(kLeftColour);
    QPainter p(&img);
    p.fillRect(QRect(800, 0, 800, 900), kRightColour);
    p.end();
    const QString path = QDir::homePath() + QStringLiteral("/evening.jpg");
    img.save(path, "jpeg", 95);
    return path;
}

QImage screenNow() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
    syncWithDisplay();
    QScreen* s = QGuiApplication::primaryScreen();
    return s ? s->grabWindow(0).toImage() : QImage();
}

bool near(const QColor& a, const QColor& b) {
    return qAbs(a.red() - b.red()) < 40 && qAbs(a.green() - b.green()) < 40 && qAbs(a.blue() - b.blue()) < 40;
}

frmAudience* audienceOf(Show& show) {
    return show.window().parts().audience().loaded();
}

void theAudienceScreenOpens(Show& show) {
    frmMain& w = show.window();
    show.answer(QStringLiteral("Options"), [&](QDialog& d) {
        show.click(d, QStringLiteral("btnShowSecondScreen"));
        show.click(d, QStringLiteral("chkShowSecondScreen"));
        d.close();
    });
    show.click(QStringLiteral("btnOptions"));
    frmAudience* a = audienceOf(show);
    show.expect(a && a->isVisible(), QStringLiteral("the audience window shown once the options close "
                                                    "(loaded %1, setting %2)")
                                         .arg(a != nullptr)
                                         .arg(settings::readBool(keys::ShowSecondScreen)));
    show.expect(settings::readBool(keys::ShowSecondScreen),
                QStringLiteral("ShowSecondScreen on in the file"));

    // The host drags it onto the room's half of the display.
    const QRect room = roomScreen(w);
    a->setGeometry(room);
    show.wait(300);
    show.expect(a->frameGeometry() == room,
                QStringLiteral("the audience window on the right half, not at %1,%2 %3x%4")
                    .arg(a->x())
                    .arg(a->y())
                    .arg(a->width())
                    .arg(a->height()));

    // The evening's picture, chosen from the preview's menu: both windows take it.
    const QString picture = makeEveningPicture();
    show.answerFile(picture);
    w.picPreview->mnuBGSelectImage->trigger();
    show.expectSoon([&] { return a->fraLyrics->picture().size() == a->size(); },
                    QStringLiteral("the picture read at the window's size"),
                    [&] {
                        return QStringLiteral("%1x%2")
                            .arg(a->fraLyrics->picture().width())
                            .arg(a->fraLyrics->picture().height());
                    });
    show.expect(!w.picPreview->picture().isNull(), QStringLiteral("the preview shows the picture as well"));
    show.expect(a->scroller->isVisible() && a->scroller->y() == 0 && a->scroller->width() == a->width(),
                QStringLiteral("the strip across the top of the window"));

    show.wait(600);
    const QImage screen = screenNow();
    const QPoint left = room.topLeft() + QPoint(200, 300);
    const QPoint right = room.topLeft() + QPoint(room.width() - 200, 300);
    const QPoint strip = room.topLeft() + QPoint(5, 5);
    show.expect(near(screen.pixelColor(left), kLeftColour) && near(screen.pixelColor(right), kRightColour),
                QStringLiteral("the picture filling the window on the screen (%1 and %2)")
                    .arg(screen.pixelColor(left).name(), screen.pixelColor(right).name()));
    show.expect(
        near(screen.pixelColor(strip), Qt::black),
        QStringLiteral("the strip's black band over it, not %1").arg(screen.pixelColor(strip).name()));
    show.note(QStringLiteral("startup text"), {a->scroller->text(), {}, {}, 0});
    show.expect(!a->scroller->text().isEmpty(), QStringLiteral("the strip scrolling the welcome"));
    show.shot(QStringLiteral("audience-screen"),
              QStringLiteral("The audience window on the right half, below the player: the evening's "
                             "picture and the strip with the welcome text."));
}

void theRoomIsToldWhoIsNext(Show& show) {
    frmAudience* a = audienceOf(show);
    show.expect(a && a->isVisible(), QStringLiteral("the audience window still shown"));
    const SingerRow ben = cast::ben();
    const QString wanted = QStringLiteral("Could Ben singing %1 please make their way").arg(ben.title);
    show.expect(a->scroller->text().startsWith(wanted) && a->ScrollerText() == a->scroller->text(),
                QStringLiteral("the strip calling Ben, not \"%1\"").arg(a->scroller->text()));
    show.expect(a->scroller->text() != show.noted(QStringLiteral("startup text")).singer,
                QStringLiteral("the strip changed from the welcome"));
    // The text is on the screen: it moves across the strip.
    const QRect label = a->scroller->txtCredits()->geometry();
    show.wait(300);
    show.expect(a->scroller->txtCredits()->geometry() != label, QStringLiteral("the strip scrolling"));
    show.shot(QStringLiteral("audience-next-singer"),
              QStringLiteral("Anna sings; the audience strip calls Ben, who is next."));
}

} // namespace

KV_SCENE(45, "the audience screen opens", theAudienceScreenOpens)
KV_SCENE(55, "the room is told who is next", theRoomIsToldWhoIsNext)
