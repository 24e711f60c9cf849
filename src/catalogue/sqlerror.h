#pragma once

#include <QString>

class QSqlError;

// Raises a failed statement's error as a KvError: the database's own error
// code as its number, the database's text as its description (the driver's
// when the database gave none), and `source` as the place that ran it.
[[noreturn]] void RaiseSqlError(const QSqlError& error, const QString& source = {});
