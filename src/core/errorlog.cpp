#include "errorlog.h"

#include "capplicationpaths.h"
#include "globals.h"
#include "kverror.h"
#include "pathhelpers.h"
#include "prompts.h"
#include "version.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTextStream>

namespace {

const QByteArray kRule(62, '-');
const QString kSupportAddress = QStringLiteral("support@korvane.app");

QString logFolder() {
    if (!WorkingFolder.isEmpty())
        return WorkingFolder;
    return AddBackslash(cApplicationPaths::workingFolderBelow(cApplicationPaths::commonDataFolder()));
}

// Appends one record; an empty text when it is on disk, else why it is not.
// A log that cannot be written is said on standard error, with the record, so
// that the error is not lost with it.
QString appendRecord(const QStringList& details) {
    QByteArray rec;
    rec += kRule + '\n';
    rec += kv::versionText().toUtf8() + '\n';
    rec += QLocale::system().toString(QDateTime::currentDateTime(), QLocale::ShortFormat).toUtf8() + '\n';
    for (const QString& d : details)
        rec += d.toUtf8() + '\n';
    rec += kRule + '\n';
    rec += '\n';
    const QString path = errorLogPath();
    QFile f(path);
    QString problem;
    // Only a plain file is appended to: a pipe in its place would hold the program.
    if (QFileInfo::exists(path) && !IsRegularFile(path))
        problem = QStringLiteral("it is not a regular file");
    else if (!f.open(QIODevice::WriteOnly | QIODevice::Append) || f.write(rec) != rec.size() || !f.flush())
        problem = f.errorString(); // a full disk shows here, when the record meets the disk
    f.close();
    if (!problem.isEmpty())
        QTextStream(stderr) << "Korvane: the error log " << path << " cannot be written (" << problem
                            << "). The error was:\n"
                            << rec;
    return problem;
}

void showErrorBox(const QString& description, const QString& logProblem) {
    const QString text =
        logProblem.isEmpty()
            ? errorBoxText()
            : QStringLiteral("An Error has occured: %1\n\nIt could not be written to %2 (%3).")
                  .arg(description, errorLogPath(), logProblem);
    prompts().msgBox(text, Prompts::Critical, QStringLiteral("Korvane Error"));
}

} // namespace

QString errorLogPath() {
    return logFolder() + QStringLiteral("KVError.log");
}

QString errorBoxText() {
    return QStringLiteral("An Error has occured, please send the KVError.log from the ") + WorkingFolder +
           QStringLiteral(" folder to ") + kSupportAddress;
}

void LogError(const QString& description, const QString& source, qint32 line) {
    showErrorBox(description, appendRecord({description, source, QString::number(line)}));
}

void LogErrorQuietly(const QString& description, const QString& source, qint32 line) {
    appendRecord({description, source, QString::number(line)});
}

void LogErrorExQuietly(const QString& source, qint32 number, const QString& description, qint32 line) {
    appendRecord({description, QString::number(number), source, QString::number(line)});
}

void LogErrorEx(const QString& source, qint32 number, const QString& description, qint32 line) {
    showErrorBox(description,
                 appendRecord({description, QString::number(number), source, QString::number(line)}));
}

void ShowApplicationError(const QString& description, const QString& place, qint32 line, int style,
                          const QString& detail) {
    QString text =
        description + QLatin1Char('\n') + place + QStringLiteral("at line ") + QString::number(line);
    if (!detail.isEmpty())
        text += QLatin1Char('\n') + detail;
    prompts().msgBox(text, style, QStringLiteral("Application Error"));
}

QString describeException(std::exception_ptr e) {
    try {
        std::rethrow_exception(e);
    } catch (const KvError& k) {
        return k.description();
    } catch (const std::exception& s) {
        return QString::fromUtf8(s.what());
    } catch (...) {
        return QStringLiteral("Unknown error");
    }
}

bool Guarded(const QString& source, qint32 line, const std::function<void()>& step) {
    try {
        step();
        return true;
    } catch (...) {
        LogError(describeException(std::current_exception()), source, line);
        return false;
    }
}
