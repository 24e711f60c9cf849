#include "consoleprompts.h"

#include <QTextStream>

int ConsolePrompts::msgBox(const QString& text, int style, const QString& title) {
    QTextStream(stderr) << title << ": " << text << "\n";
    switch (style & 0x0F) {
    case YesNo:
    case YesNoCancel: return Yes;
    case AbortRetryIgnore: return Abort;
    case RetryCancel: return Retry;
    default: return Ok;
    }
}
