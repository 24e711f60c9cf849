#pragma once

#include <QString>
#include <exception>

// A numbered error raised by a class of the program, in the manner of a
// component error: a number, a description and the source that raised it.
// Guarded procedures catch it (and any std::exception) and write it to the log.
class KvError : public std::exception {
public:
    KvError(qint32 number, QString description, QString source = {})
        : m_number(number), m_description(std::move(description)), m_source(std::move(source)),
          m_what(m_description.toUtf8()) {}

    qint32 number() const { return m_number; }
    const QString& description() const { return m_description; }
    const QString& source() const { return m_source; }
    const char* what() const noexcept override { return m_what.constData(); }

private:
    qint32 m_number;
    QString m_description;
    QString m_source;
    QByteArray m_what;
};

// The short name of the application, used at the head of every error source.
inline const QString kAppName = QStringLiteral("KvApp");
