#pragma once

#include <QString>
#include <array>
#include <vector>

// Every key of settings.ini, written once: its section, its name (spelled as
// the file has it, misspellings included), its type and its default. Every
// read and write of a setting goes through one of these (see settings.h).

enum class SettingType { Bool, Int, Text };

struct SettingKey {
    const char* section;
    const char* name;
    SettingType type;
    // The default as the file would hold it ("1", "36", "No Name"); null when
    // the default depends on the machine, and then computedDefault gives it.
    const char* defaultValue;
    QString (*computedDefault)() = nullptr;

    QString key() const { return QString::fromLatin1(name); }
    QString sectionName() const { return QString::fromLatin1(section); }
    // The key as settingChanged() names it: the bare name in "Settings",
    // "Section/name" elsewhere ("Jingles/7").
    QString qualifiedName() const;
    QString defaultText() const;
    bool defaultBool() const { return defaultText().toInt() != 0; }
    int defaultInt() const { return defaultText().toInt(); }
};

namespace settingdefaults {
QString homeFolder(); // the home folder, with a trailing separator (a Windows host's "C:\")
QString playerPath(); // /usr/bin/mpv
} // namespace settingdefaults

namespace keys {

inline constexpr const char* kSettings = "Settings";
inline constexpr const char* kJingles = "Jingles";

using T = SettingType;

// clang-format off
inline constexpr SettingKey AllowDoubleClicks{kSettings, "AllowDoubleClicks", T::Bool, "1"};
inline constexpr SettingKey AllowDragAndDrop{kSettings, "AllowDragAndDrop", T::Bool, "1"};
inline constexpr SettingKey AllowSortingOnQueue{kSettings, "AllowSortingOnQueue", T::Bool, "0"};
inline constexpr SettingKey AudienceScrollerColor{kSettings, "AudienceScrollerColor", T::Text, "0"};
// The audience window reads "0"; the options screen reads 16777215 (white).
inline constexpr SettingKey AudienceScrollerFontColor{kSettings, "AudienceScrollerFontColor", T::Text, "0"};
inline constexpr SettingKey AudioDevice{kSettings, "AudioDevice", T::Int, "0"};
inline constexpr SettingKey AutoPlayDelay{kSettings, "AutoPlayDelay", T::Int, "5"};
inline constexpr SettingKey AutoRemoveFromQueue{kSettings, "AutoRemoveFromQueue", T::Bool, "1"};
inline constexpr SettingKey AutoSelectAllInHistory{kSettings, "AutoSelectAllInHistory", T::Bool, "1"};
inline constexpr SettingKey BGImagePath{kSettings, "BGImagePath", T::Text, nullptr, settingdefaults::homeFolder};
inline constexpr SettingKey ClearSearchCriteria{kSettings, "ClearSearchCriteria", T::Bool, "0"};
inline constexpr SettingKey ColorScheme{kSettings, "ColorScheme", T::Int, "0"};
inline constexpr SettingKey CompactDatabase{kSettings, "CompactDatabase", T::Bool, "1"};
inline constexpr SettingKey DefaultName{kSettings, "DefaultName", T::Text, "No Name"};
inline constexpr SettingKey DefaultPerformerName{kSettings, "DefaultPerformerName", T::Text, "None"};
inline constexpr SettingKey DefaultPlayButtonAction{kSettings, "DefaultPlayButtonAction", T::Int, "0"};
inline constexpr SettingKey DoubleClickAction{kSettings, "DoubleClickAction", T::Int, "1"};
inline constexpr SettingKey EnableNextPerfomer{kSettings, "EnableNextPerfomer", T::Bool, "0"};
inline constexpr SettingKey FileSystemPath{kSettings, "FileSystemPath", T::Text, nullptr, settingdefaults::homeFolder};
inline constexpr SettingKey FirstStart{kSettings, "FirstStart", T::Bool, "1"};
inline constexpr SettingKey Font{kSettings, "Font", T::Text, "LCD"};
inline constexpr SettingKey FontBold{kSettings, "FontBold", T::Bool, "0"};
inline constexpr SettingKey FontSize{kSettings, "FontSize", T::Int, "36"};
inline constexpr SettingKey HistoryColumns{kSettings, "HistoryColumns", T::Text, "0;95;192;196;36"};
inline constexpr SettingKey ImportPath{kSettings, "ImportPath", T::Text, nullptr, settingdefaults::homeFolder};
inline constexpr SettingKey IncludeSongPath{kSettings, "IncludeSongPath", T::Bool, "0"};
inline constexpr SettingKey InteractiveSearch{kSettings, "InteractiveSearch", T::Bool, "0"};
inline constexpr SettingKey JumpBackToQueue{kSettings, "JumpBackToQueue", T::Bool, "0"};
// The main window's place, in twips; absent until the first shutdown.
inline constexpr SettingKey MainHeight{kSettings, "MainHeight", T::Text, ""};
inline constexpr SettingKey MainLeft{kSettings, "MainLeft", T::Text, "0"};
inline constexpr SettingKey MainTop{kSettings, "MainTop", T::Text, "0"};
inline constexpr SettingKey MainWidth{kSettings, "MainWidth", T::Text, ""};
inline constexpr SettingKey MainState{kSettings, "MainState", T::Int, "0"};
inline constexpr SettingKey MainImage{kSettings, "MainImage", T::Text, ""};
inline constexpr SettingKey mus{kSettings, "mus", T::Text, ""};
inline constexpr SettingKey NextPerformerPosition{kSettings, "NextPerformerPosition", T::Bool, "1"};
inline constexpr SettingKey NoFadeOnRestart{kSettings, "NoFadeOnRestart", T::Bool, "1"};
inline constexpr SettingKey PlayFromPosition1{kSettings, "PlayFromPosition1", T::Bool, "1"};
inline constexpr SettingKey PromptForPerfomer{kSettings, "PromptForPerfomer", T::Bool, "1"};
inline constexpr SettingKey QueueColumns{kSettings, "QueueColumns", T::Text, "0;95;200;190;45"};
inline constexpr SettingKey SaveHistory{kSettings, "SaveHistory", T::Bool, "1"};
inline constexpr SettingKey SaveWindowPosition{kSettings, "SaveWindowPosition", T::Bool, "1"};
inline constexpr SettingKey ScrollerPosition{kSettings, "ScrollerPosition", T::Int, "0"};
inline constexpr SettingKey ScrollerSpeed{kSettings, "ScrollerSpeed", T::Int, "30"};
// Three readers, three defaults: start-up "Welcome to our show", the audience
// window "Welcome", the options screen "Welcome to our Show".
inline constexpr SettingKey ScrollerStartupText{kSettings, "ScrollerStartupText", T::Text, "Welcome to our show"};
// The options screen fills its box with its own default (without "singing %t").
inline constexpr SettingKey ScrollerText{kSettings, "ScrollerText", T::Text,
    "Could %p singing %t please make their way to the stage towards the end of this performance"};
// Read with "198;196;84;48;"; written as "0;200;200;100;100" when there is nothing to save.
inline constexpr SettingKey SearchColumns{kSettings, "SearchColumns", T::Text, "198;196;84;48;"};
inline constexpr SettingKey SecHeight{kSettings, "SecHeight", T::Text, "0"};
inline constexpr SettingKey SecLeft{kSettings, "SecLeft", T::Text, "0"};
inline constexpr SettingKey SecTop{kSettings, "SecTop", T::Text, "0"};
inline constexpr SettingKey SecWidth{kSettings, "SecWidth", T::Text, "0"};
inline constexpr SettingKey SecState{kSettings, "SecState", T::Int, "0"};
inline constexpr SettingKey ShowNextPerfomer{kSettings, "ShowNextPerfomer", T::Bool, "1"};
inline constexpr SettingKey ShowSecondScreen{kSettings, "ShowSecondScreen", T::Bool, "0"};
// The one boolean read as text: only a text that reads as the number 0 is false.
inline constexpr SettingKey StopKaraokeTrackOnJinglePlay{kSettings, "StopKaraokeTrackOnJinglePlay", T::Text, "1"};
inline constexpr SettingKey UpdateScrollerImmediately{kSettings, "UpdateScrollerImmediately", T::Bool, "0"};
inline constexpr SettingKey ViewAllSongsAtStartup{kSettings, "ViewAllSongsAtStartup", T::Bool, "0"};
inline constexpr SettingKey WinAmpPath{kSettings, "WinAmpPath", T::Text, nullptr, settingdefaults::playerPath};

// Our own additions, beyond the keys a Windows installation knew.
// The karaoke player's video window full screen on the audience window's monitor.
inline constexpr SettingKey LyricsOnAudienceScreen{kSettings, "LyricsOnAudienceScreen", T::Bool, "0"};
// Whether a search ignores accents ("beyonce" finds "Beyoncé"); off unless the host turns it on.
inline constexpr SettingKey AccentBlindSearch{kSettings, "AccentBlindSearch", T::Bool, "0"};

// Section "Jingles": the file of each fill button, keys "0" to "15".
inline constexpr std::array<SettingKey, 16> Jingle{{
    {kJingles, "0", T::Text, ""},  {kJingles, "1", T::Text, ""},  {kJingles, "2", T::Text, ""},
    {kJingles, "3", T::Text, ""},  {kJingles, "4", T::Text, ""},  {kJingles, "5", T::Text, ""},
    {kJingles, "6", T::Text, ""},  {kJingles, "7", T::Text, ""},  {kJingles, "8", T::Text, ""},
    {kJingles, "9", T::Text, ""},  {kJingles, "10", T::Text, ""}, {kJingles, "11", T::Text, ""},
    {kJingles, "12", T::Text, ""}, {kJingles, "13", T::Text, ""}, {kJingles, "14", T::Text, ""},
    {kJingles, "15", T::Text, ""},
}};
// clang-format on

// Every key above, in the order written here.
const std::vector<const SettingKey*>& all();

// The key of that section and name, found case-blind as the file finds it; null when none.
const SettingKey* find(const QString& section, const QString& name);

} // namespace keys
