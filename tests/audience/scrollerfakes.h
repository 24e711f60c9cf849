#pragma once

#include "audience/scrollermodel.h"

#include <QStringList>

// A measure with round numbers: each character is `charWidth` twips wide
// ("W" three times as wide), a line `lineHeight` high, both at 12 points and
// growing with the font's size.
struct FakeMeasure : ScrollerMeasure {
    double charWidth = 120;
    double lineHeight = 240;
    static double scale(const QFont& f) { return f.pointSizeF() / 12.0; }
    double textWidth(const QFont& f, const QString& s) const override {
        double units = 0;
        for (QChar c : s)
            units += c == QLatin1Char('W') ? 3 : 1;
        return units * charWidth * scale(f);
    }
    double textHeight(const QFont& f, const QString&) const override { return lineHeight * scale(f); }
};

// Writes the scroller's events into a journal.
inline void journalEvents(ScrollerModel& m, QStringList& journal) {
    QObject::connect(&m, &ScrollerModel::OnCompleteScroll, &m, [&journal] { journal << "complete"; });
    QObject::connect(&m, &ScrollerModel::OnStart, &m, [&journal] { journal << "start"; });
    QObject::connect(&m, &ScrollerModel::OnStop, &m, [&journal] { journal << "stop"; });
}

inline QFont twelvePoint() {
    QFont f(QStringLiteral("DejaVu Sans"));
    f.setPointSize(12);
    return f;
}
