#pragma once

#include <QColor>
#include <QPalette>
#include <QString>
#include <QStringList>

class QWidget;

// The three looks of the host's screens. A scheme gives colours to the roles
// the controls have: the frames and their headers, the buttons, the text
// fields and the selection band of the lists (the header colour, so that the
// selection matches the frames). The audience window keeps its own colours.
struct ColorSchemeColours {
    QString name;
    QColor window, windowText; // frames
    QColor header, headerText; // frame headers, list headers, the selection band
    QColor button, buttonText;
    QColor field, fieldText; // text boxes and lists
    QColor border;
};

namespace colorschemes {

// "Blue", "Green", "Silver", in the order of the options screen's list.
QStringList names();
// The colours of scheme `index`; an index outside the list gets the first
// scheme's colours (the controls know no other).
const ColorSchemeColours& colours(int index);
QPalette palette(int index);
QString styleSheet(int index);
// WCAG contrast ratio of two colours, from 1 (none) to 21.
double contrast(const QColor& a, const QColor& b);

} // namespace colorschemes

// Gives scheme `index` to a form and every control on it.
void SetFormColors(QWidget& form, int index);
