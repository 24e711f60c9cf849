#include "importsession.h"

ImportSession& importSession() {
    static ImportSession session;
    return session;
}
