#pragma once

#include <QFont>
#include <QString>

// The strip's font by the name the settings hold ("LCD" unless the host chose
// another). A machine without a font of that name gets a digital-looking
// monospaced font when one is installed, else the system's fixed-pitch font,
// so the strip never draws with nothing.
namespace audiencefont {

// The installed family to use for `name`.
QString resolveFamily(const QString& name);
QFont font(const QString& name, int pointSize, bool bold);

} // namespace audiencefont
