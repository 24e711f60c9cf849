#include "queuecolumns.h"

#include <QStringList>

namespace queuecolumns {

QList<int> widthsOfHeaderFormat(const QString& format) {
    QList<int> widths;
    for (const QString& entry : format.split(QLatin1Char('|'))) {
        bool ok = false;
        const int w = entry.section(QLatin1Char(';'), 1, 1).toInt(&ok);
        widths.append(ok && w >= 0 ? w : -1);
    }
    return widths;
}

QList<int> parseWidths(const QString& text) {
    QList<int> widths;
    const QStringList parts = text.split(QLatin1Char(';'));
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i == 0) {
            widths.append(0);
            continue;
        }
        bool ok = false;
        const int w = parts.at(i).trimmed().toInt(&ok);
        widths.append(ok && w >= 0 ? w : -1);
    }
    // A trailing ";" leaves an empty last element, which says nothing.
    if (widths.size() > 1 && parts.last().trimmed().isEmpty())
        widths.removeLast();
    return widths;
}

} // namespace queuecolumns
