#pragma once

// Whether the screen is due its chance to work: true at most once every
// 10 ms. Asking the event loop costs a system call even when nothing waits,
// and before each look the import puts in the rows it holds and turns the
// catalogue's triggers back on, which makes its row statement again; so
// within 10 ms of the last look the chance is passed over. The screen still
// answers within a frame, and a hundred thousand rows do not pay for a
// hundred thousand looks. One clock serves every caller.
bool EventLookDue();
