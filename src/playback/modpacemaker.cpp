#include "modpacemaker.h"

#include "playback/playerlink.h"

#include <cmath>

bool modPacemaker::FindPaceMaker() {
    m_found = false;
    if (!m_player.isConnected())
        return false;
    m_found = m_player.hasAudioFilter(kShifter);
    return m_found;
}

QString modPacemaker::pitchFilter(int key) {
    return QStringLiteral("%1=pitch-scale=%2").arg(kShifter).arg(std::pow(2.0, key / 12.0), 0, 'f', 6);
}

QString modPacemaker::vocalCutFilter() {
    // Multiplex songs carry the guide vocal on one side: both speakers get the other.
    return QStringLiteral("lavfi=[aformat=channel_layouts=stereo,pan=stereo|c0=c0|c1=c0]");
}

void modPacemaker::ResetPitch() {
    if (m_found)
        m_player.removeAudioFilter(kPitchLabel);
}

void modPacemaker::SetPitch(int key) {
    if (!m_found)
        return;
    // The song's own key needs no shifter in the chain at all.
    if (key == 0)
        m_player.removeAudioFilter(kPitchLabel);
    else
        m_player.setAudioFilter(kPitchLabel, pitchFilter(key));
}

void modPacemaker::SetVocals(int flag) {
    if (!m_found)
        return;
    if (flag != 0)
        m_player.setAudioFilter(kVocalsLabel, vocalCutFilter());
    else
        m_player.removeAudioFilter(kVocalsLabel);
}
