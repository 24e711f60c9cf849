// Before the singers come, the host sets the console up on the options screen:
// each page is looked at, the colour scheme is tried in all three looks, a
// General box is ticked and the delay of Auto Play changed. Each change shows
// at once, without a restart, and the file holds it.

#include "core/appsettings.h"
#include "core/settings.h"
#include "scene.h"
#include "screens/frmmain.h"
#include "show.h"

#include <QDialog>
#include <QPalette>
#include <QTableView>
#include <QTimer>

namespace {

// The hue of the main window's background, as the host sees it.
QString lookOf(QWidget& w) {
    const QColor c = w.palette().color(QPalette::Window);
    if (c.hslSaturation() < 40)
        return c.lightness() > 150 ? QStringLiteral("Silver") : QStringLiteral("grey");
    const int hue = c.hslHue();
    if (hue >= 80 && hue < 170)
        return QStringLiteral("Green");
    if (hue >= 170 && hue < 260)
        return QStringLiteral("Blue");
    return QStringLiteral("other");
}

void theHostSetsTheConsoleUp(Show& show) {
    frmMain& w = show.window();
    const QSize before = w.size();
    for (const QString& scheme :
         {QStringLiteral("Green"), QStringLiteral("Silver"), QStringLiteral("Blue")}) {
        show.answer(QStringLiteral("Options"), [&](QDialog& d) {
            const QString before = lookOf(w);
            show.expect(lookOf(d) == before,
                        QStringLiteral("the options screen in the scheme of the main window (%1), not %2")
                            .arg(before, lookOf(d)));
            show.choose(d, QStringLiteral("cboColorSchemes"), scheme);
            show.expect(lookOf(d) == scheme,
                        QStringLiteral("the options screen %1 at once, not %2").arg(scheme, lookOf(d)));
            show.expect(lookOf(w) == scheme,
                        QStringLiteral("the main window %1 at once, not %2").arg(scheme, lookOf(w)));
            if (scheme == QStringLiteral("Blue")) {
                show.shot(QStringLiteral("options-general"),
                          QStringLiteral("The options screen, General page."));
                for (const char* page : {"btnJingles", "btnShowSecondScreen", "btnExport"}) {
                    show.click(d, QLatin1String(page));
                    show.shot(QStringLiteral("options-") + QString::fromLatin1(page).mid(3).toLower(),
                              QStringLiteral("The options screen, the page of %1.").arg(QLatin1String(page)));
                }
                show.click(d, QStringLiteral("btnGeneral"));
                show.click(d, QStringLiteral("chkAllowSortingOnQueue"));
                show.retype(d, QStringLiteral("spnAutoPlayDelay"), QStringLiteral("7"));
            }
            d.close();
        });
        show.click(QStringLiteral("btnOptions"));
        for (const QSize size : {QSize(1280, 800), QSize(1920, 1080)}) {
            w.resize(size);
            show.wait(150);
            show.shot(QStringLiteral("scheme-%1-%2").arg(scheme.toLower()).arg(size.width()),
                      QStringLiteral("The main window in the %1 scheme at %2x%3.")
                          .arg(scheme)
                          .arg(size.width())
                          .arg(size.height()));
        }
    }
    w.resize(before);
    show.expect(w.OsenXPListBox1->isSortingEnabled(), QStringLiteral("the queue list sortable at once"));
    show.expect(w.tmrDelay->interval() == 7000,
                QStringLiteral("the Auto Play delay of 7 s at once, not %1 ms").arg(w.tmrDelay->interval()));
    show.expect(settings::readInt(keys::ColorScheme) == 0 && settings::readBool(keys::AllowSortingOnQueue) &&
                    settings::readInt(keys::AutoPlayDelay) == 7,
                QStringLiteral("the scheme, the sorting and the delay in the settings file"));

    // Back as the evening expects it: no sorting on the queue, the delay of 5 s.
    show.answer(QStringLiteral("Options"), [&](QDialog& d) {
        show.click(d, QStringLiteral("chkAllowSortingOnQueue"));
        show.retype(d, QStringLiteral("spnAutoPlayDelay"), QStringLiteral("5"));
        d.close();
    });
    show.click(QStringLiteral("btnOptions"));
    show.expect(!w.OsenXPListBox1->isSortingEnabled() && w.tmrDelay->interval() == 5000,
                QStringLiteral("sorting off and the delay back at 5 s"));
}

} // namespace

KV_SCENE(35, "the host sets the console up", theHostSetsTheConsoleUp)
