#include "importtransaction.h"

#include "catalogue/database.h"

#include <QSqlDriver>
#include <QVariant>

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
    QSqlDatabase db = dbConnection();
    if (!db.isOpen())
        return false;
    const QVariant handle = db.driver()->handle();
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0)
        return false;
    sqlite3* s = *static_cast<sqlite3* const*>(handle.constData());
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
