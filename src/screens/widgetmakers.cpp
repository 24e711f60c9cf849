#include "widgetmakers.h"

#include "core/twips.h"

#include <QFontMetrics>
#include <QFrame>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableView>
#include <QTimer>

namespace widgetmakers {

void placeTw(QWidget* w, int left, int top, int width, int height) {
    w->setGeometry(twips::toPixels(left, top, width, height));
}

QFrame* makeFrame(QWidget* parent, const char* name) {
    auto* f = named(new QFrame(parent), name);
    f->setFrameShape(QFrame::StyledPanel);
    f->setFrameShadow(QFrame::Raised);
    return f;
}

QPushButton* makeButton(QWidget* parent, const char* name, const QString& caption, const QString& tip,
                        int left, int top, int width, int height) {
    auto* b = named(new QPushButton(caption, parent), name);
    if (!tip.isEmpty())
        b->setToolTip(tip);
    b->setFocusPolicy(Qt::TabFocus);
    placeTw(b, left, top, width, height);
    return b;
}

QLabel* makeLabel(QWidget* parent, const char* name, const QString& caption, int left, int top, int width,
                  int height, bool bold) {
    auto* l = named(new QLabel(caption, parent), name);
    placeTw(l, left, top, width, height);
    if (bold) {
        QFont f(QStringLiteral("Tahoma"));
        f.setPointSize(8);
        f.setBold(true);
        while (!caption.isEmpty() && f.pointSize() > 6 &&
               QFontMetrics(f).horizontalAdvance(caption) > l->width())
            f.setPointSize(f.pointSize() - 1);
        l->setFont(f);
    }
    return l;
}

QTimer* makeTimer(QObject* parent, const char* name, int interval) {
    auto* t = named(new QTimer(parent), name);
    t->setInterval(interval);
    return t;
}

QTableView* makeList(QWidget* parent, const char* name) {
    auto* v = named(new QTableView(parent), name);
    v->setSelectionBehavior(QAbstractItemView::SelectRows);
    v->setSelectionMode(QAbstractItemView::SingleSelection);
    v->setEditTriggers(QAbstractItemView::NoEditTriggers);
    v->verticalHeader()->hide();
    v->verticalHeader()->setDefaultSectionSize(20);
    v->setAlternatingRowColors(true);
    v->horizontalHeader()->setHighlightSections(false);
    return v;
}

} // namespace widgetmakers
