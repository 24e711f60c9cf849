#include "eventlook.h"

#include <QElapsedTimer>

bool EventLookDue() {
    static QElapsedTimer lastLook;
    constexpr qint64 kLookEveryNs = 10'000'000;
    if (lastLook.isValid() && lastLook.nsecsElapsed() < kLookEveryNs)
        return false;
    lastLook.start();
    return true;
}
