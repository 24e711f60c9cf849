#include "consoleprompts.h"

#include <QTextStream>

int ConsolePrompts::msgBox(const QString& text, int style, const QString& title) {
    QTextStream(stderr) << title << ": " << text << "\n";
    return firstButton(style);
}
