#include "appsettings.h"

#include "cinifile.h"
#include "globals.h"
#include "pathhelpers.h"

#include <QDir>

AppSettings Cfg;

namespace settingsfile {

QString defaultFolder() {
    return AddBackslash(QDir::homePath());
}
QString defaultPlayerPath() {
    return QStringLiteral("/usr/bin/mpv");
}

bool readBool(const QString& key, bool defaultValue) {
    return oSettings->GetNumericValue(kSection, key, defaultValue ? 1 : 0) != 0;
}
int readInt(const QString& key, int defaultValue) {
    return oSettings->GetNumericValue(kSection, key, defaultValue);
}
QString readText(const QString& key, const QString& defaultValue) {
    return oSettings->GetStringValue(kSection, key, defaultValue);
}
void writeBool(const QString& key, bool value) {
    oSettings->SaveNumericValue(kSection, key, value ? 1 : 0);
}
void writeInt(const QString& key, int value) {
    oSettings->SaveNumericValue(kSection, key, qint16(value));
}
void writeText(const QString& key, const QString& value) {
    oSettings->SaveStringValue(kSection, key, value);
}

} // namespace settingsfile
