#pragma once

#include <QList>
#include <QString>

// Column widths of the queue list, in pixels, as ";"-joined numbers: one for
// each of the five columns, the first being the hidden "No" column.
namespace queuecolumns {

// The list's header format: caption and width of each column ("|"-separated
// entries; the fields after the width are not used by this list).
inline const QString kHeaderFormat =
    QStringLiteral("No;0;0;0;;-1|Performer;100;0;0;;-1|Artist;100;0;0;;-1|Track;100;0;0;;-1|Key;30;0;0;;-1");
inline const QString kResetWidths = QStringLiteral("0;95;150;150;45");

// The widths of a header format string, by column.
QList<int> widthsOfHeaderFormat(const QString& format);
// The widths of a settings text. An element that is not a whole number of
// zero or more is -1 ("leave this column as it is"); the first is always 0,
// so that "No" stays hidden whatever the text says.
QList<int> parseWidths(const QString& text);

} // namespace queuecolumns
