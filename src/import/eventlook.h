#pragma once

// Whether the screen is due its chance to work. Asking the event loop costs a
// system call even when nothing waits, and every look lets go of what the
// import holds on the catalogue for a moment, so within a few milliseconds of
// the last look the chance is passed over: the screen still answers within a
// frame, and a hundred thousand rows do not pay for a hundred thousand looks.
// One clock serves every caller.
bool EventLookDue();
