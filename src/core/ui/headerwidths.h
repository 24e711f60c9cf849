#pragma once

#include <QList>
#include <QString>

class QTableView;

// The column widths of a list on screen, as the settings keep them.
namespace headerwidths {

// Sets the widths of the view's columns from `widths`: 0 hides a column, a
// positive width shows it at that width, -1 leaves it as it is.
void applyWidths(QTableView* view, const QList<int>& widths);
// The widths of the view's columns (0 for a hidden one), joined by ";".
QString widthsText(const QTableView* view);

} // namespace headerwidths
