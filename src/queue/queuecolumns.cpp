#include "queuecolumns.h"

#include <QStringList>
#include <QTableView>

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

void applyWidths(QTableView* view, const QList<int>& widths) {
    if (!view || !view->model())
        return;
    const int columns = view->model()->columnCount();
    for (int i = 0; i < widths.size() && i < columns; ++i) {
        const int w = widths.at(i);
        if (w < 0)
            continue;
        // A zero width hides the column; any other width shows it again.
        view->setColumnHidden(i, w == 0);
        if (w > 0)
            view->setColumnWidth(i, w);
    }
}

QString widthsText(const QTableView* view) {
    QStringList parts;
    const int columns = view && view->model() ? view->model()->columnCount() : 0;
    for (int i = 0; i < columns; ++i)
        parts << QString::number(view->isColumnHidden(i) ? 0 : view->columnWidth(i));
    return parts.join(QLatin1Char(';'));
}

} // namespace queuecolumns
