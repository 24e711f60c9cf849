#include "importtransaction.h"

#include "catalogue/database.h"

#include <sqlite3.h>

namespace {

// Savepoints open inside the outer transaction. Reset whenever the connection
// is found outside any transaction (it may have been closed and opened again).
int g_savepoints = 0;

QString savepointName(int level) {
    return QStringLiteral("kvImport%1").arg(level);
}

} // namespace

bool InTransaction() {
    sqlite3* s = NativeHandle(dbConnection());
    return s && sqlite3_get_autocommit(s) == 0;
}

void BeginTrans() {
    if (!InTransaction()) {
        g_savepoints = 0;
        ExecuteSql(QStringLiteral("BEGIN"));
        return;
    }
    ExecuteSql(QStringLiteral("SAVEPOINT ") + savepointName(g_savepoints + 1));
    ++g_savepoints;
}

void CommitTrans() {
    if (g_savepoints > 0 && InTransaction()) {
        ExecuteSql(QStringLiteral("RELEASE ") + savepointName(g_savepoints));
        --g_savepoints;
        return;
    }
    g_savepoints = 0;
    ExecuteSql(QStringLiteral("COMMIT"));
}

void RollbackTrans() {
    if (g_savepoints > 0 && InTransaction()) {
        const QString name = savepointName(g_savepoints);
        ExecuteSql(QStringLiteral("ROLLBACK TO ") + name);
        ExecuteSql(QStringLiteral("RELEASE ") + name);
        --g_savepoints;
        return;
    }
    g_savepoints = 0;
    ExecuteSql(QStringLiteral("ROLLBACK"));
}
