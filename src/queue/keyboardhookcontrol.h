#pragma once

// The application-wide keyboard filter that drives the search box, as the
// queue sees it: released while a dialog that takes text is up, created again
// afterwards. The main window implements it over the real filter.
class KeyboardHookControl {
public:
    virtual ~KeyboardHookControl() = default;
    virtual void releaseKeyboardHook() = 0;
    virtual void createKeyboardHook() = 0;
};
