#pragma once

#include <QString>

// The audience picture as the host changes it from the main window's preview.
// Both the audience window and the preview follow the setting MainImage, so
// writing it is all a change needs.
namespace backgroundimage {

inline const QString kTitle = QStringLiteral("Choose an image to display");
// The JPEG and PNG files, in the file dialog's form.
inline const QString kFilter = QStringLiteral("Image Files (*.jpg *.png)");

// Asks for a picture, opening in BGImagePath. A file chosen is tried first: one
// that does not read as a picture gets "Error loading picture <file>" and
// changes nothing. Otherwise its folder goes to BGImagePath and its path to
// MainImage. True when the picture changed.
bool SelectImage();
// No picture: MainImage empty.
void ClearImage();

} // namespace backgroundimage
