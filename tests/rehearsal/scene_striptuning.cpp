// With the audience window up, the host tunes its strip on the options
// screen: a faster speed takes hold at once, and the new welcome text comes
// round at the end of the pass that is running, without a restart.

#include "audience/ui/frmaudience.h"
#include "audience/ui/vbwscroller.h"
#include "core/settings.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "screens/mainparts.h"
#include "show.h"

#include <QDialog>

namespace {

void setStrip(Show& show, const QString& speed, const QString& welcome) {
    show.answer(QStringLiteral("Options"), [&](QDialog& d) {
        show.click(d, QStringLiteral("btnShowSecondScreen"));
        show.retype(d, QStringLiteral("spnScrollerSpeed"), speed);
        if (!welcome.isEmpty()) {
            show.retype(d, QStringLiteral("txtScrollerStartupText"), welcome);
            show.click(d, QStringLiteral("btnSetStartupText"));
        }
        d.close();
    });
    show.click(QStringLiteral("btnOptions"));
}

void theHostTunesTheStrip(Show& show) {
    frmAudience* a = show.window().parts().audience().loaded();
    show.expect(a && a->isVisible(), QStringLiteral("the audience window up"));
    const QString welcome = QStringLiteral("Welcome to karaoke night at the Harbour");
    setStrip(show, QStringLiteral("1"), welcome);
    show.expect(
        a->scroller->model().Interval() == 10,
        QStringLiteral("the strip ticking every 10 ms at once, not %1").arg(a->scroller->model().Interval()));
    show.expectSoon([&] { return a->scroller->text() == welcome; },
                    QStringLiteral("the new welcome on the strip after its pass"),
                    [&] { return a->scroller->text(); }, 30000);
    show.expect(settings::readText(keys::ScrollerStartupText) == welcome &&
                    settings::readInt(keys::ScrollerSpeed) == 10,
                QStringLiteral("the welcome and the speed in the settings file"));
    setStrip(show, QStringLiteral("3"), {});
    show.expect(a->scroller->model().Interval() == 30,
                QStringLiteral("the strip back at its evening's pace"));
}

} // namespace

KV_SCENE(46, "the host tunes the strip", theHostTunesTheStrip)
