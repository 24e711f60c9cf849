#include "searchfolding.h"

#include "catalogue/songindexkeeper.h"
#include "catalogue/unicodelike.h"
#include "core/globals.h"
#include "core/settings.h"

namespace {

void applySetting() {
    if (!oSettings)
        return;
    const bool blind = settings::readBool(keys::AccentBlindSearch);
    if (blind == AccentBlindLike())
        return;
    SetAccentBlindLike(blind);
    // The index of the other folding is read at once, before the next search.
    SongIndexKeeper::instance().current(blind);
}

} // namespace

void FollowAccentBlindSetting() {
    static const bool connected = [] {
        QObject::connect(&SettingsNotifier::instance(), &SettingsNotifier::settingChanged,
                         &SettingsNotifier::instance(), [](const QString& key) {
                             if (key == keys::AccentBlindSearch.key())
                                 applySetting();
                         });
        return true;
    }();
    (void)connected;
    applySetting();
}
