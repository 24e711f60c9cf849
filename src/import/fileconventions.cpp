#include "fileconventions.h"

const QList<FileConvention>& FileConventions() {
    static const QList<FileConvention> list = {
        {QStringLiteral("Disk-Track - Artist - Title"), 2},
        {QStringLiteral("Disk-Track - Title - Artist"), 3},
        {QStringLiteral("Title - Artist"), 0},
        {QStringLiteral("Artist - Title"), 1},
        {QStringLiteral("Title -Artist - Disk - Track"), 5},
        {QStringLiteral("Artist -Title - Disk - Track"), 6},
        {QStringLiteral("All In One"), 4},
        {QStringLiteral("Disk-No - Track - Title - Artist"), 7},
        {QStringLiteral("Disk-No-Track - Artist - Title"), 8},
        {QStringLiteral("No - Artist - Title"), 9},
        {QStringLiteral("No - Title - Artist"), 10},
        {QStringLiteral("DiscId - Disk-Track - Artist - Title"), 11},
        {QStringLiteral("DiscId - Disk-Track - Title - Artist"), 12},
    };
    return list;
}

bool IsFileConventionNumber(int number) {
    return number >= 0 && number <= 12;
}
