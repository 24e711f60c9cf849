#pragma once

#include <QString>

namespace kv {

inline int versionMajor() {
    return KV_VERSION_MAJOR;
}
inline int versionMinor() {
    return KV_VERSION_MINOR;
}
inline int versionRevision() {
    return KV_VERSION_PATCH;
}

// "3.0.1": major, minor and revision joined by points.
inline QString versionText() {
    return QStringLiteral("%1.%2.%3").arg(versionMajor()).arg(versionMinor()).arg(versionRevision());
}

// The main window's title: the product's name, " v3 - " and the version.
inline QString mainWindowTitle() {
    return QStringLiteral("Korvane v3 - ") + versionText();
}

} // namespace kv
