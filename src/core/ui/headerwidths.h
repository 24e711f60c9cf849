#pragma once

#include <QList>
#include <QString>
#include <functional>

struct SettingKey;

class QTableView;

// The column widths of a list on screen, as the settings keep them.
namespace headerwidths {

// Sets the widths of the view's columns from `widths`: 0 hides a column, a
// positive width shows it at that width, -1 leaves it as it is.
void applyWidths(QTableView* view, const QList<int>& widths);
// The widths of the view's columns (0 for a hidden one), joined by ";".
QString widthsText(const QTableView* view);

// Saves a list's widths under `key`: the text `measure` gives, or `fallback`
// when the list cannot be measured (it raises) or gives nothing. Never raises
// itself, as it runs at shutdown, when there is no one left to tell.
void saveWidths(const SettingKey& key, const std::function<QString()>& measure, const QString& fallback);

} // namespace headerwidths
