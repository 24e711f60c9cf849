#pragma once

#include <QString>
#include <exception>
#include <functional>

// The error log: KVError.log in the working folder, one record appended per
// call (the file is made when absent), then the "Korvane Error" box. Every
// write is checked: a record that cannot be written goes to standard error
// instead, and the box then tells the error itself rather than asking for a
// log that does not hold it.
// The common form: description, source, line.
void LogError(const QString& description, const QString& source, qint32 line);
// The long form: description, number, source, line.
void LogErrorEx(const QString& source, qint32 number, const QString& description, qint32 line);
// The common form's record without the box, for failures the host is not to
// be interrupted by (a search that fails while the host types).
void LogErrorQuietly(const QString& description, const QString& source, qint32 line);
// The long form's record without the box, for a failure that can repeat for
// every file of an import run.
void LogErrorExQuietly(const QString& source, qint32 number, const QString& description, qint32 line);

// The path of the log and the text of the box that follows each record.
QString errorLogPath();
QString errorBoxText();

// The older pattern, which writes no log: an "Application Error" box with the
// description, the place and the line, and under them `detail` when given.
void ShowApplicationError(const QString& description, const QString& place, qint32 line, int style = 16,
                          const QString& detail = {});

// The description of whatever a guarded step threw.
QString describeException(std::exception_ptr e);

// One step of a guarded procedure: runs `step`; a failure is logged under
// `source` with `line`, the host is told, and the caller goes on with its next
// step. Returns false when the step failed.
bool Guarded(const QString& source, qint32 line, const std::function<void()>& step);
