#pragma once

#include <QtGlobal>

// What the import keeps for the whole run of the program, across every import
// and every opening of the import screen.
struct ImportSession {
    // Set when the host answered No to the naming question: no more questions
    // until the program is started again.
    bool NotificationsOff = false;
    // Rows inserted by every import of this program run; nothing zeroes it.
    qint32 NewTrackCount = 0;
};

ImportSession& importSession();
