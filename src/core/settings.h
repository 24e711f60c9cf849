#pragma once

#include "settingkeys.h"

#include <QObject>

// Reads and writes of settings.ini through oSettings, one key of the table at
// a time. A read without a default takes the table's; the few places that
// read a key with a default of their own pass it. Every write is on disk when
// it returns and is then announced by SettingsNotifier::settingChanged, so a
// screen that shows a setting follows it without being told by hand.
namespace settings {

bool readBool(const SettingKey& key);
bool readBool(const SettingKey& key, bool defaultValue);
int readInt(const SettingKey& key);
int readInt(const SettingKey& key, int defaultValue);
QString readText(const SettingKey& key);
QString readText(const SettingKey& key, const QString& defaultValue);

// Booleans as 1 or 0; numbers as 16-bit values, as the file store takes them.
void writeBool(const SettingKey& key, bool value);
void writeInt(const SettingKey& key, int value);
void writeText(const SettingKey& key, const QString& value);

} // namespace settings

class SettingsNotifier : public QObject {
    Q_OBJECT
public:
    static SettingsNotifier& instance();

signals:
    // A key was written; `key` is SettingKey::qualifiedName() ("ScrollerSpeed", "Jingles/7").
    void settingChanged(const QString& key);
};
