#pragma once

#include <QList>
#include <QString>

// The file-name conventions the host can choose for an import, in the order of
// the screen's list. Only the number drives the cutting of a name; the entry
// texts are shown as they stand.
struct FileConvention {
    QString text;
    int number;
};

const QList<FileConvention>& FileConventions();

// True when `number` is one of the conventions' numbers.
bool IsFileConventionNumber(int number);
