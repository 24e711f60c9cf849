#include "headerwidths.h"

#include "core/settings.h"

#include <QStringList>
#include <QTableView>

namespace headerwidths {

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

void saveWidths(const SettingKey& key, const std::function<QString()>& measure, const QString& fallback) {
    try {
        const QString text = measure();
        if (text.isEmpty())
            throw std::runtime_error("no columns");
        settings::writeText(key, text);
    } catch (...) {
        try {
            settings::writeText(key, fallback);
        } catch (...) {
        }
    }
}

} // namespace headerwidths
