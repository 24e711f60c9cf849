#include "colorschemes.h"

#include <QWidget>
#include <array>
#include <cmath>

namespace colorschemes {

namespace {

const std::array<ColorSchemeColours, 3> kSchemes{{
    {QStringLiteral("Blue"), QColor(0x1f, 0x3a, 0x5f), QColor(0xea, 0xf2, 0xfb), QColor(0x2a, 0x62, 0xa8),
     Qt::white, QColor(0x2d, 0x53, 0x85), Qt::white, QColor(0x14, 0x28, 0x40), QColor(0xea, 0xf2, 0xfb),
     QColor(0x5b, 0x8f, 0xd0)},
    {QStringLiteral("Green"), QColor(0x1e, 0x40, 0x29), QColor(0xea, 0xf6, 0xec), QColor(0x2b, 0x6e, 0x3f),
     Qt::white, QColor(0x2c, 0x5e, 0x3b), Qt::white, QColor(0x13, 0x2b, 0x1b), QColor(0xea, 0xf6, 0xec),
     QColor(0x5f, 0xa8, 0x72)},
    {QStringLiteral("Silver"), QColor(0xd9, 0xdc, 0xe0), QColor(0x1b, 0x1f, 0x24), QColor(0x56, 0x60, 0x6b),
     Qt::white, QColor(0xc4, 0xc9, 0xcf), QColor(0x15, 0x18, 0x1c), QColor(0xf4, 0xf5, 0xf7),
     QColor(0x15, 0x18, 0x1c), QColor(0x8c, 0x95, 0x9f)},
}};

double channel(double c) {
    c /= 255.0;
    return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& c) {
    return 0.2126 * channel(c.red()) + 0.7152 * channel(c.green()) + 0.0722 * channel(c.blue());
}

} // namespace

QStringList names() {
    QStringList out;
    for (const auto& s : kSchemes)
        out << s.name;
    return out;
}

const ColorSchemeColours& colours(int index) {
    return kSchemes[index >= 0 && index < int(kSchemes.size()) ? size_t(index) : 0];
}

QPalette palette(int index) {
    const ColorSchemeColours& c = colours(index);
    QPalette p;
    p.setColor(QPalette::Window, c.window);
    p.setColor(QPalette::WindowText, c.windowText);
    p.setColor(QPalette::Base, c.field);
    p.setColor(QPalette::AlternateBase,
               c.field.lightness() > 128 ? c.field.darker(105) : c.field.lighter(115));
    p.setColor(QPalette::Text, c.fieldText);
    p.setColor(QPalette::Button, c.button);
    p.setColor(QPalette::ButtonText, c.buttonText);
    p.setColor(QPalette::Highlight, c.header);
    p.setColor(QPalette::HighlightedText, c.headerText);
    p.setColor(QPalette::ToolTipBase, c.header);
    p.setColor(QPalette::ToolTipText, c.headerText);
    p.setColor(QPalette::PlaceholderText,
               c.fieldText.lightness() > 128 ? c.fieldText.darker(140) : c.fieldText.lighter(260));
    return p;
}

QString styleSheet(int index) {
    const ColorSchemeColours& c = colours(index);
    const QColor alternate = c.field.lightness() > 128 ? c.field.darker(105) : c.field.lighter(115);
    const QColor disabled = c.buttonText.lightness() > 128 ? c.button.lighter(150) : c.button.darker(150);
    // Every colour is in the sheet as well as in the palette: a form under a
    // sheet takes the sheet's colours whatever palette it kept from before.
    return QStringLiteral(
               "QMainWindow, QDialog, QWidget#mainClient { background-color: %9; }"
               "QLabel, QCheckBox, QRadioButton, QGroupBox { color: %10; }"
               "QPushButton { background: %1; color: %2; border: 1px solid %3; border-radius: 3px; "
               "padding: 2px 6px; }"
               "QPushButton:hover { border-color: %4; }"
               // The fill buttons are narrow: their captions start at the left edge.
               "QPushButton#cmdJingle { padding: 0px 1px; text-align: left; }"
               "QPushButton:checked { background: %6; color: %4; }"
               "QPushButton:disabled { color: %5; }"
               "QLineEdit, QComboBox, QSpinBox { background: %7; color: %8; border: 1px solid %3; "
               "border-radius: 2px; }"
               "QTableView, QListView, QTreeView { background-color: %7; alternate-background-color: %11; "
               "color: %8; selection-background-color: %6; selection-color: %4; }"
               "QHeaderView { background-color: %6; }"
               "QHeaderView::section { background: %6; color: %4; border: 0; padding: 2px 4px; }")
        .arg(c.button.name(), c.buttonText.name(), c.border.name(), c.headerText.name(), disabled.name(),
             c.header.name(), c.field.name(), c.fieldText.name(), c.window.name())
        .arg(c.windowText.name(), alternate.name());
}

double contrast(const QColor& a, const QColor& b) {
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace colorschemes

void SetFormColors(QWidget& form, int index) {
    // A form that has a style sheet keeps the palette it had when the sheet
    // was set: the sheet goes first, so that a change of scheme repaints.
    form.setStyleSheet(QString());
    form.setPalette(colorschemes::palette(index));
    form.setStyleSheet(colorschemes::styleSheet(index));
}
