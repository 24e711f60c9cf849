#include "vbcolor.h"

namespace vbcolor {

namespace {
QPalette::ColorRole roleOf(quint32 index) {
    switch (index) {
    case 0x04: // menu
    case 0x0F: // button face
        return index == 0x0F ? QPalette::Button : QPalette::Window;
    case 0x05: // window
        return QPalette::Base;
    case 0x07: // menu text
    case 0x08: // window text
        return QPalette::WindowText;
    case 0x0D:
        return QPalette::Highlight;
    case 0x0E:
        return QPalette::HighlightedText;
    case 0x10: // button shadow
        return QPalette::Dark;
    case 0x11: // grey text
        return QPalette::PlaceholderText;
    case 0x12:
        return QPalette::ButtonText;
    case 0x14: // button highlight
        return QPalette::Light;
    case 0x17:
        return QPalette::ToolTipText;
    case 0x18:
        return QPalette::ToolTipBase;
    default:
        return QPalette::Window;
    }
}
} // namespace

QColor toQColor(quint32 value, const QPalette& palette) {
    if (value & kSystemFlag)
        return palette.color(QPalette::Active, roleOf(value & 0xFFu));
    return QColor(int(value & 0xFFu), int((value >> 8) & 0xFFu), int((value >> 16) & 0xFFu));
}

quint32 fromQColor(const QColor& colour) {
    const QColor c = colour.toRgb();
    return quint32(c.red()) | (quint32(c.green()) << 8) | (quint32(c.blue()) << 16);
}

quint32 parse(const QString& text, quint32 fallback) {
    bool ok = false;
    const qint64 v = text.trimmed().toLongLong(&ok);
    if (!ok || v < -2147483648LL || v > 0xFFFFFFFFLL)
        return fallback;
    return quint32(v);
}

QString toText(quint32 value) {
    return QString::number(value & kSystemFlag ? qint64(qint32(value)) : qint64(value));
}

} // namespace vbcolor
