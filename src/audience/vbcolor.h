#pragma once

#include <QColor>
#include <QPalette>
#include <QString>

// Colours as the settings file and the scroller's design hold them: a 32-bit
// number with red in the low byte, green in the next and blue in the third.
// A number with the high bit set names a system colour by its index in the
// low byte (0x8000000F the face of a button), which the palette resolves.
namespace vbcolor {

inline constexpr quint32 kSystemFlag = 0x80000000u;
inline constexpr quint32 kButtonFace = 0x8000000Fu;
inline constexpr quint32 kWindowText = 0x80000008u;

QColor toQColor(quint32 value, const QPalette& palette = QPalette());
// Always a plain RGB number (no system flag).
quint32 fromQColor(const QColor& colour);
// A number as the settings file writes it ("255", "16777215", or the signed
// form of a system colour, "-2147483633"); anything else gives `fallback`.
quint32 parse(const QString& text, quint32 fallback = 0);
QString toText(quint32 value);

} // namespace vbcolor
