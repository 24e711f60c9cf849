#pragma once

#include "show.h"
#include "showlibrary.h"

// The singers of the evening, each with the song and key they ask for: the
// queue and history rows the host should see.
namespace cast {

inline SingerRow anna(int key = -2) {
    const LibrarySong& s = ShowLibrary::neonHarbour();
    return {QStringLiteral("Anna"), s.artist, s.title, key};
}
inline SingerRow ben() {
    const LibrarySong& s = ShowLibrary::paperLanterns();
    return {QStringLiteral("Ben"), s.artist, s.title, 0};
}
inline SingerRow cleo() {
    const LibrarySong& s = ShowLibrary::copperRain();
    return {QStringLiteral("Cleo"), s.artist, s.title, 3};
}
// Dev takes a kamikaze pick: which song is drawn when the evening is played.
inline const QString kKamikaze = QStringLiteral("kamikaze");

} // namespace cast
