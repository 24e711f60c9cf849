#pragma once

// Keeps the catalogue's LIKE, and with it the song index, folding as the
// host's accent-blind setting says: read once now, and again whenever the
// setting is written.
void FollowAccentBlindSetting();
