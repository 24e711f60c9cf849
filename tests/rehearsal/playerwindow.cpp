#include "playerwindow.h"

#include <QGuiApplication>
#include <QList>

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace {

template <class T> using XcbReply = std::unique_ptr<T, decltype(&std::free)>;

xcb_connection_t* xcbConnection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

QByteArray stringProperty(xcb_connection_t* c, xcb_window_t w, xcb_atom_t property) {
    XcbReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(c, xcb_get_property(c, 0, w, property, XCB_GET_PROPERTY_TYPE_ANY, 0, 1024),
                               nullptr),
        &std::free);
    if (!reply || reply->format != 8)
        return {};
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
}

QList<xcb_window_t> children(xcb_connection_t* c, xcb_window_t w) {
    XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(c, xcb_query_tree(c, w), nullptr), &std::free);
    if (!tree)
        return {};
    const xcb_window_t* kids = xcb_query_tree_children(tree.get());
    return QList<xcb_window_t>(kids, kids + xcb_query_tree_children_length(tree.get()));
}

bool viewable(xcb_connection_t* c, xcb_window_t w) {
    XcbReply<xcb_get_window_attributes_reply_t> a(
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, w), nullptr), &std::free);
    return a && a->map_state == XCB_MAP_STATE_VIEWABLE;
}

QRect rootRect(xcb_connection_t* c, xcb_window_t root, xcb_window_t w) {
    XcbReply<xcb_get_geometry_reply_t> g(xcb_get_geometry_reply(c, xcb_get_geometry(c, w), nullptr),
                                         &std::free);
    XcbReply<xcb_translate_coordinates_reply_t> t(
        xcb_translate_coordinates_reply(c, xcb_translate_coordinates(c, w, root, 0, 0), nullptr), &std::free);
    if (!g || !t)
        return {};
    return QRect(t->dst_x, t->dst_y, g->width, g->height);
}

} // namespace

void syncWithDisplay() {
    if (xcb_connection_t* c = xcbConnection())
        std::free(xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr));
}

PlayerWindow PlayerWindow::find(const QString& className) {
    PlayerWindow found;
    xcb_connection_t* c = xcbConnection();
    if (!c)
        return found;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    // Top-level windows, and their children in case a window manager framed them.
    QList<xcb_window_t> candidates = children(c, root);
    for (xcb_window_t top : QList<xcb_window_t>(candidates))
        candidates += children(c, top);
    for (xcb_window_t w : std::as_const(candidates)) {
        const QList<QByteArray> cls = stringProperty(c, w, XCB_ATOM_WM_CLASS).split('\0');
        const QString instance = QString::fromUtf8(cls.value(0));
        const QString wmClass = QString::fromUtf8(cls.value(1));
        if (instance != className && wmClass != className)
            continue;
        if (!viewable(c, w))
            continue;
        found.found = true;
        found.rect = rootRect(c, root, w);
        found.title = QString::fromUtf8(stringProperty(c, w, XCB_ATOM_WM_NAME));
        found.instance = instance;
        found.wmClass = wmClass;
        break;
    }
    return found;
}

PictureReading PictureReading::of(const QImage& screen, const QRect& area, const QColor& background) {
    PictureReading r;
    const QRect inner = area.adjusted(8, 8, -8, -8).intersected(screen.rect());
    if (inner.isEmpty())
        return r;
    const QImage img = screen.copy(inner).convertToFormat(QImage::Format_RGB32);
    qint64 black = 0, lit = 0, near = 0, red = 0, green = 0, blue = 0;
    const qint64 total = qint64(img.width()) * img.height();
    for (int y = 0; y < img.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(img.constScanLine(y));
        for (int x = 0; x < img.width(); ++x) {
            const int pr = qRed(line[x]), pg = qGreen(line[x]), pb = qBlue(line[x]);
            red += pr;
            green += pg;
            blue += pb;
            if (pr < 24 && pg < 24 && pb < 24)
                ++black;
            if (pr > 64 || pg > 64 || pb > 64)
                ++lit;
            if (background.isValid() && std::abs(pr - background.red()) < 48 &&
                std::abs(pg - background.green()) < 48 && std::abs(pb - background.blue()) < 48)
                ++near;
        }
    }
    r.black = double(black) / double(total);
    r.lit = double(lit) / double(total);
    r.background = double(near) / double(total);
    r.mean = QColor(int(red / total), int(green / total), int(blue / total));
    return r;
}

QString PictureReading::describe() const {
    return QStringLiteral("%1% black, %2% lit, %3% of the song's colour, mean %4")
        .arg(qRound(black * 100))
        .arg(lit * 100, 0, 'f', 1)
        .arg(qRound(background * 100))
        .arg(mean.name());
}
