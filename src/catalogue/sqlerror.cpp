#include "sqlerror.h"

#include "core/kverror.h"

#include <QSqlError>

void RaiseSqlError(const QSqlError& error, const QString& source) {
    QString text = error.databaseText();
    if (text.isEmpty())
        text = error.text();
    throw KvError(error.nativeErrorCode().toInt(), text, source);
}
