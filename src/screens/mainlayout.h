#pragma once

#include <QHash>
#include <QRect>
#include <QString>

// Where the main window's pieces stand, in twips, and how they follow the
// window's size. Kept apart from the widgets so that the rules can be checked
// without a screen.
namespace mainlayout {

// Window size limits and the floor applied when a saved place is restored.
constexpr int kMinTrackWidth = 12960;
constexpr int kMinTrackHeight = 9135;
constexpr int kRestoreMinWidth = 12945;
constexpr int kRestoreMinHeight = 9210;

using Geometry = QHash<QString, QRect>;

// The design places of the frames and of the controls that resizing moves
// (controls relative to their frame).
Geometry designGeometry();

// Applies the resize rules for a window of the given size (twips) with the
// extra margin `margin`. A rule that would give a negative width or height
// leaves its control as it was; the later rules still run.
void applyResize(Geometry& g, int windowWidth, int windowHeight, int margin);

} // namespace mainlayout
