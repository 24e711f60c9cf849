#include "settings.h"

#include "cinifile.h"
#include "globals.h"
#include "pathhelpers.h"

#include <QDir>

QString SettingKey::qualifiedName() const {
    if (qstrcmp(section, keys::kSettings) == 0)
        return key();
    return sectionName() + QLatin1Char('/') + key();
}

QString SettingKey::defaultText() const {
    if (defaultValue)
        return QString::fromUtf8(defaultValue);
    return computedDefault ? computedDefault() : QString();
}

namespace settingdefaults {
QString homeFolder() {
    return AddBackslash(QDir::homePath());
}
QString playerPath() {
    return QStringLiteral("/usr/bin/mpv");
}
} // namespace settingdefaults

namespace keys {

const std::vector<const SettingKey*>& all() {
    static const std::vector<const SettingKey*> table = [] {
        std::vector<const SettingKey*> t{
            &AllowDoubleClicks,
            &AllowDragAndDrop,
            &AllowSortingOnQueue,
            &AudienceScrollerColor,
            &AudienceScrollerFontColor,
            &AudioDevice,
            &AutoPlayDelay,
            &AutoRemoveFromQueue,
            &AutoSelectAllInHistory,
            &BGImagePath,
            &ClearSearchCriteria,
            &ColorScheme,
            &CompactDatabase,
            &DefaultName,
            &DefaultPerformerName,
            &DefaultPlayButtonAction,
            &DoubleClickAction,
            &EnableNextPerfomer,
            &FileSystemPath,
            &FirstStart,
            &Font,
            &FontBold,
            &FontSize,
            &HistoryColumns,
            &ImportPath,
            &IncludeSongPath,
            &InteractiveSearch,
            &JumpBackToQueue,
            &MainHeight,
            &MainLeft,
            &MainTop,
            &MainWidth,
            &MainState,
            &MainImage,
            &mus,
            &NextPerformerPosition,
            &NoFadeOnRestart,
            &PlayFromPosition1,
            &PromptForPerfomer,
            &QueueColumns,
            &SaveHistory,
            &SaveWindowPosition,
            &ScrollerPosition,
            &ScrollerSpeed,
            &ScrollerStartupText,
            &ScrollerText,
            &SearchColumns,
            &SecHeight,
            &SecLeft,
            &SecTop,
            &SecWidth,
            &SecState,
            &ShowNextPerfomer,
            &ShowSecondScreen,
            &StopKaraokeTrackOnJinglePlay,
            &UpdateScrollerImmediately,
            &ViewAllSongsAtStartup,
            &WinAmpPath,
            &LyricsOnAudienceScreen,
            &AccentBlindSearch,
        };
        for (const SettingKey& k : Jingle)
            t.push_back(&k);
        return t;
    }();
    return table;
}

const SettingKey* find(const QString& section, const QString& name) {
    for (const SettingKey* k : all())
        if (section.compare(k->sectionName(), Qt::CaseInsensitive) == 0 &&
            name.compare(k->key(), Qt::CaseInsensitive) == 0)
            return k;
    return nullptr;
}

} // namespace keys

namespace settings {

bool readBool(const SettingKey& key) {
    return readBool(key, key.defaultBool());
}
bool readBool(const SettingKey& key, bool defaultValue) {
    return oSettings->GetNumericValue(key.sectionName(), key.key(), defaultValue ? 1 : 0) != 0;
}
int readInt(const SettingKey& key) {
    return readInt(key, key.defaultInt());
}
int readInt(const SettingKey& key, int defaultValue) {
    return oSettings->GetNumericValue(key.sectionName(), key.key(), defaultValue);
}
QString readText(const SettingKey& key) {
    return readText(key, key.defaultText());
}
QString readText(const SettingKey& key, const QString& defaultValue) {
    return oSettings->GetStringValue(key.sectionName(), key.key(), defaultValue);
}

void writeBool(const SettingKey& key, bool value) {
    oSettings->SaveNumericValue(key.sectionName(), key.key(), value ? 1 : 0);
    emit SettingsNotifier::instance().settingChanged(key.qualifiedName());
}
void writeInt(const SettingKey& key, int value) {
    oSettings->SaveNumericValue(key.sectionName(), key.key(), qint16(value));
    emit SettingsNotifier::instance().settingChanged(key.qualifiedName());
}
void writeText(const SettingKey& key, const QString& value) {
    oSettings->SaveStringValue(key.sectionName(), key.key(), value);
    emit SettingsNotifier::instance().settingChanged(key.qualifiedName());
}

} // namespace settings

SettingsNotifier& SettingsNotifier::instance() {
    static SettingsNotifier notifier;
    return notifier;
}
