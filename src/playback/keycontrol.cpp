#include "keycontrol.h"

#include "playback/modpacemaker.h"
#include "playback/playbackseams.h"
#include "playback/playerlink.h"

int KeyControl::currentKey() const {
    return m_view.keyCaption().trimmed().toInt();
}

void KeyControl::step(int delta) {
    // The shifter may have come up after the program did: look again.
    if (!m_pacemaker.isFound())
        m_pacemaker.FindPaceMaker();
    const int key = currentKey() + delta;
    if (key > kMaxKey || key < -kMaxKey)
        return;
    m_view.setKeyCaption(QString::number(key));
    m_pacemaker.SetPitch(key);
}

void KeyControl::btnKeyUp_Click() {
    step(1);
}
void KeyControl::btnKeyDown_Click() {
    step(-1);
}

void KeyControl::btnKeyReset_Click() {
    if (!m_pacemaker.isFound())
        m_pacemaker.FindPaceMaker();
    m_pacemaker.ResetPitch();
    m_view.setKeyCaption(QStringLiteral("0"));
}

void KeyControl::OseChkVocals_Click(bool checked) {
    m_pacemaker.SetVocals(checked ? -1 : 0);
}

void KeyControl::btnBalance_Click(int index) {
    static constexpr int kPans[] = {-127, 0, 127};
    if (index >= 0 && index < 3)
        m_player.SetPanning(kPans[index]);
}
