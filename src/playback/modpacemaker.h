#pragma once

#include <QString>

class PlayerLink;

// The key changer and the vocal cut, as filters inside the player: a labelled
// pitch shifter (semitones, -12 to 12) and a labelled channel mix that keeps
// only the music side of a multiplex song. Filters set here stay in the
// player's chain for the files it loads next, so a key set at a song's start
// holds for the whole song, a restart included, until it is reset.
class modPacemaker {
public:
    static inline const QString kPitchLabel = QStringLiteral("kvpitch");
    static inline const QString kVocalsLabel = QStringLiteral("kvvocals");
    static inline const QString kShifter = QStringLiteral("rubberband");

    explicit modPacemaker(PlayerLink& player) : m_player(player) {}

    // Finds the pitch shifter in the player: true when the player is connected
    // and offers it. A miss leaves the key change silent, never failing.
    bool FindPaceMaker();
    // PaceMakerWindow != 0.
    bool isFound() const { return m_found; }

    void ResetPitch();
    void SetPitch(int key);
    // -1 (checked) cuts the vocals; 0 brings them back.
    void SetVocals(int flag);

    // The filter text for a key: the pitch scale 2^(key/12).
    static QString pitchFilter(int key);
    static QString vocalCutFilter();

private:
    PlayerLink& m_player;
    bool m_found = false;
};
