#pragma once

class modPacemaker;
class NowPlayingView;
class PlayerLink;

// The buttons of the key and balance frames and the vocal cut: btnKeyUp,
// btnKeyDown and btnKeyReset move the key between -12 and 12 and show it as the
// caption of btnKeyReset; OseChkVocals cuts the guide vocal; btnBalance(0..2)
// pans left, centre, right.
class KeyControl {
public:
    static constexpr int kMaxKey = 12;

    KeyControl(modPacemaker& pacemaker, PlayerLink& player, NowPlayingView& view)
        : m_pacemaker(pacemaker), m_player(player), m_view(view) {}

    // The key now in force: the caption of btnKeyReset, as a number.
    int currentKey() const;

    void btnKeyUp_Click();
    void btnKeyDown_Click();
    void btnKeyReset_Click();
    void OseChkVocals_Click(bool checked);
    void btnBalance_Click(int index);

private:
    void step(int delta);

    modPacemaker& m_pacemaker;
    PlayerLink& m_player;
    NowPlayingView& m_view;
};
