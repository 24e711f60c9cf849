#include "mainlayout.h"

namespace mainlayout {

Geometry designGeometry() {
    return {
        {QStringLiteral("fraTrackDetails"), QRect(120, 120, 3975, 2055)},
        {QStringLiteral("fraPlayControl"), QRect(120, 2280, 3975, 615)},
        {QStringLiteral("fraKeyChange"), QRect(120, 3000, 1575, 615)},
        {QStringLiteral("fraBalance"), QRect(120, 3000, 1575, 615)},
        {QStringLiteral("fraKami"), QRect(1800, 3000, 615, 615)},
        {QStringLiteral("fraMpx"), QRect(2520, 3000, 1575, 615)},
        {QStringLiteral("fraJingles"), QRect(120, 3720, 3975, 1095)},
        {QStringLiteral("fraSearch"), QRect(4200, 120, 8535, 4695)},
        {QStringLiteral("fraQueue"), QRect(120, 4920, 7455, 3615)},
        {QStringLiteral("fraQueueButtons"), QRect(7680, 4920, 615, 3615)},
        {QStringLiteral("fraOptions"), QRect(8400, 4920, 4335, 615)},
        {QStringLiteral("fraLyrics"), QRect(8400, 5640, 4335, 2895)},
        {QStringLiteral("txtSearch"), QRect(120, 120, 5415, 375)},
        {QStringLiteral("btnSearch"), QRect(5640, 120, 855, 375)},
        {QStringLiteral("btnClearSearch"), QRect(6600, 120, 855, 375)},
        {QStringLiteral("cmdFF"), QRect(7560, 120, 855, 375)},
        {QStringLiteral("olvSearchResults"), QRect(120, 600, 8295, 3975)},
        {QStringLiteral("OsenXPListBox1"), QRect(120, 120, 7215, 3375)},
        {QStringLiteral("btnClearQueue"), QRect(120, 3120, 375, 375)},
    };
}

namespace {

// Setters that refuse what the toolkit would refuse: a negative size.
void setWidth(QRect& r, int w) {
    if (w >= 0)
        r.setWidth(w);
}
void setHeight(QRect& r, int h) {
    if (h >= 0)
        r.setHeight(h);
}
void setLeft(QRect& r, int x) {
    r.moveLeft(x);
}
void setTop(QRect& r, int y) {
    r.moveTop(y);
}

} // namespace

void applyResize(Geometry& g, int windowWidth, int windowHeight, int margin) {
    QRect& fraSearch = g[QStringLiteral("fraSearch")];
    QRect& olv = g[QStringLiteral("olvSearchResults")];
    QRect& txt = g[QStringLiteral("txtSearch")];
    QRect& btnSearch = g[QStringLiteral("btnSearch")];
    QRect& btnClear = g[QStringLiteral("btnClearSearch")];
    QRect& cmdFF = g[QStringLiteral("cmdFF")];
    QRect& fraQueue = g[QStringLiteral("fraQueue")];
    QRect& list = g[QStringLiteral("OsenXPListBox1")];
    QRect& fraButtons = g[QStringLiteral("fraQueueButtons")];
    QRect& btnClearQueue = g[QStringLiteral("btnClearQueue")];
    QRect& fraLyrics = g[QStringLiteral("fraLyrics")];
    QRect& fraOptions = g[QStringLiteral("fraOptions")];

    setWidth(fraSearch, windowWidth - 4400 - margin);
    setWidth(olv, fraSearch.width() - 250);
    setWidth(txt, olv.width() - 2980);
    setLeft(btnSearch, txt.width() + olv.left() + 150);
    setLeft(btnClear, btnSearch.left() + 960);
    setLeft(cmdFF, btnClear.left() + 960);
    setHeight(fraQueue, windowHeight - 5500 - margin);
    setHeight(list, fraQueue.height() - 200);
    setWidth(fraQueue, windowWidth - 5425 - margin);
    setLeft(fraButtons, fraQueue.width() + fraQueue.left() + 80);
    setHeight(fraButtons, fraQueue.height());
    setTop(btnClearQueue, windowHeight - 6090);
    setTop(fraLyrics, windowHeight - 3570);
    setHeight(fraOptions, windowHeight - 8595);
    setWidth(list, fraQueue.width() - 200);
    setLeft(fraLyrics, fraButtons.left() + 700);
    setLeft(fraOptions, fraButtons.left() + 700);
}

} // namespace mainlayout
