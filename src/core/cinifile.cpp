#include "cinifile.h"

#include "capplicationpaths.h"
#include "globals.h"
#include "kverror.h"
#include "pathhelpers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const QString kSource = kAppName + QStringLiteral(".CIniFile");

// Folds a value onto one line: a line break inside a value would split the file.
QString oneLine(QString v) {
    v.replace(QLatin1Char('\r'), QLatin1Char(' '));
    v.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return v;
}

// Makes the rename of a file in `folder` durable.
void syncFolder(const QString& folder) {
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

} // namespace

CIniFile::CIniFile() {
    QString folder = oApplicationPaths ? oApplicationPaths->ApplicationDataPath() : QString();
    m_fileName = AddBackslash(folder) + QStringLiteral("settings.ini");
}

QString CIniFile::describe(qint32 number) {
    switch (number) {
    case kInvalidFileName:
        return QStringLiteral("Invalid file name");
    case kFileNotFound:
        return QStringLiteral("File not found");
    case kNotInitialised:
        return QStringLiteral("Object not properly initialized");
    case kInvalidSection:
        return QStringLiteral("Invalid section");
    case kInvalidKey:
        return QStringLiteral("Invalid key");
    default:
        return QStringLiteral("CIniFile component failure");
    }
}

void CIniFile::raise(qint32 number) const {
    throw KvError(number, describe(number), kSource);
}

void CIniFile::Init(const QString& fileName) {
    setFileName(fileName);
}

void CIniFile::setFileName(const QString& fileName) {
    if (fileName.isEmpty())
        raise(kInvalidFileName);
    m_fileName = fileName;
}

void CIniFile::checkInitialised() const {
    if (m_fileName.isEmpty())
        raise(kNotInitialised);
}

bool CIniFile::FileExists() const {
    QFileInfo fi(m_fileName);
    return fi.exists() && fi.isFile();
}

void CIniFile::checkFileExists() const {
    if (!FileExists())
        raise(kFileNotFound);
}

CIniFile::Line CIniFile::parse(const QByteArray& raw) {
    Line line;
    line.raw = raw;
    const QString text = QString::fromUtf8(raw).trimmed();
    if (text.isEmpty() || text.startsWith(QLatin1Char(';')))
        return line;
    if (text.startsWith(QLatin1Char('['))) {
        const int close = text.indexOf(QLatin1Char(']'));
        if (close > 0) {
            line.kind = Line::Section;
            line.name = text.mid(1, close - 1).trimmed();
        }
        return line;
    }
    const int eq = text.indexOf(QLatin1Char('='));
    if (eq <= 0)
        return line; // a line without "=" (or without a key) is kept but means nothing
    line.kind = Line::Entry;
    line.name = text.left(eq).trimmed();
    QString value = text.mid(eq + 1).trimmed();
    // A value wrapped in a pair of matching quotes reads without them.
    if (value.size() >= 2 && (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\'')) &&
        value.back() == value.front())
        value = value.mid(1, value.size() - 2);
    line.value = value;
    return line;
}

CIniFile::Stamp CIniFile::stampOf(const QString& path) {
    struct stat st;
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return {};
    return {quint64(st.st_dev), quint64(st.st_ino), qint64(st.st_size),
            qint64(st.st_mtim.tv_sec) * 1'000'000'000 + st.st_mtim.tv_nsec};
}

QString CIniFile::ReadProblem() const {
    try {
        load();
        return {};
    } catch (const KvError&) {
        return m_readProblem;
    }
}

const CIniFile::Document& CIniFile::load() const {
    const Stamp now = stampOf(m_fileName);
    if (now.size >= 0 && now == m_stamp)
        return m_document;
    m_document = Document();
    m_stamp = Stamp();
    QFile f(m_fileName);
    if (now.size < 0)
        return m_document; // no file: nothing in it
    if (!f.open(QIODevice::ReadOnly)) {
        m_readProblem = f.errorString();
        raise(kComponentFailure);
    }
    const QByteArray all = f.readAll();
    if (f.error() != QFileDevice::NoError) {
        m_readProblem = f.errorString();
        raise(kComponentFailure);
    }
    m_document = parseAll(all);
    m_stamp = now;
    return m_document;
}

CIniFile::Document CIniFile::parseAll(const QByteArray& all) {
    Document doc;
    if (all.isEmpty())
        return doc;
    if (all.contains("\r\n"))
        doc.eol = "\r\n";
    QList<QByteArray> rows = all.split('\n');
    if (all.endsWith('\n'))
        rows.removeLast();
    doc.lines.reserve(rows.size());
    for (QByteArray& row : rows) {
        if (row.endsWith('\r'))
            row.chop(1);
        doc.lines.append(parse(row));
    }
    return doc;
}

void CIniFile::save(const Document& doc) const {
    QFileInfo fi(m_fileName);
    if (fi.exists() && !fi.isWritable())
        raise(kComponentFailure);
    QByteArray out;
    for (int i = 0; i < doc.lines.size(); ++i) {
        out += doc.lines[i].raw;
        out += doc.eol;
    }
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly))
        raise(kComponentFailure);
    if (file.write(out) != out.size())
        raise(kComponentFailure); // the temporary file is dropped; the old file stays
    if (!file.commit())           // flushes, syncs and renames over the old file
        raise(kComponentFailure);
    syncFolder(fi.absolutePath());
    m_document = doc;
    m_stamp = stampOf(m_fileName);
}

int CIniFile::findSection(const Document& doc, const QString& section) {
    for (int i = 0; i < doc.lines.size(); ++i)
        if (doc.lines[i].kind == Line::Section &&
            doc.lines[i].name.compare(section, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

int CIniFile::sectionEnd(const Document& doc, int sectionIndex) {
    int i = sectionIndex + 1;
    while (i < doc.lines.size() && doc.lines[i].kind != Line::Section)
        ++i;
    return i;
}

int CIniFile::findKey(const Document& doc, int sectionIndex, const QString& key) {
    const int end = sectionEnd(doc, sectionIndex);
    for (int i = sectionIndex + 1; i < end; ++i)
        if (doc.lines[i].kind == Line::Entry && doc.lines[i].name.compare(key, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

QString CIniFile::GetStringValue(const QString& section, const QString& key, const QString& defaultValue) {
    checkInitialised();
    checkFileExists();
    try {
        const Document& doc = load();
        const int s = findSection(doc, section);
        const int k = s < 0 ? -1 : findKey(doc, s, key);
        if (k < 0 || doc.lines[k].value.isEmpty())
            return defaultValue;
        return doc.lines[k].value.left(kMaxValueLength);
    } catch (const KvError&) {
        throw;
    } catch (...) {
        raise(kComponentFailure);
    }
}

qint32 CIniFile::GetNumericValue(const QString& section, const QString& key, qint32 defaultValue) {
    checkInitialised();
    checkFileExists();
    const Document& doc = load();
    const int s = findSection(doc, section);
    const int k = s < 0 ? -1 : findKey(doc, s, key);
    if (k < 0 || doc.lines[k].value.isEmpty())
        return defaultValue;
    // The leading number of the value: a sign and decimal digits; anything else reads 0.
    const QString v = doc.lines[k].value;
    int i = 0;
    bool negative = false;
    if (i < v.size() && (v[i] == QLatin1Char('-') || v[i] == QLatin1Char('+')))
        negative = v[i++] == QLatin1Char('-');
    quint32 n = 0;
    while (i < v.size() && v[i].isDigit() && v[i].unicode() < 128)
        n = n * 10 + quint32(v[i++].unicode() - '0');
    return negative ? qint32(0u - n) : qint32(n);
}

void CIniFile::write(const QString& section, const QString& key, const QString& value) {
    try {
        Document doc = load();
        const QByteArray entry = (key + QLatin1Char('=') + oneLine(value)).toUtf8();
        int s = findSection(doc, section);
        if (s < 0) {
            doc.lines.append(parse(QByteArray("[") + section.toUtf8() + "]"));
            doc.lines.append(parse(entry));
        } else if (const int k = findKey(doc, s, key); k >= 0) {
            // Keep the key's own spelling in the file.
            const QByteArray kept = doc.lines[k].name.toUtf8() + '=' + oneLine(value).toUtf8();
            doc.lines[k] = parse(kept);
        } else {
            // After the last non-blank line of the section.
            int at = sectionEnd(doc, s);
            while (at - 1 > s && doc.lines[at - 1].raw.trimmed().isEmpty())
                --at;
            doc.lines.insert(at, parse(entry));
        }
        save(doc);
    } catch (const KvError&) {
        throw;
    } catch (...) {
        raise(kComponentFailure);
    }
}

void CIniFile::SaveStringValue(const QString& section, const QString& key, const QString& value) {
    checkInitialised();
    if (section.isEmpty())
        raise(kInvalidSection);
    if (key.isEmpty())
        raise(kInvalidKey);
    write(section, key, value);
}

void CIniFile::SaveNumericValue(const QString& section, const QString& key, qint16 value) {
    checkInitialised();
    if (section.isEmpty())
        raise(kInvalidSection);
    if (key.isEmpty())
        raise(kInvalidKey);
    write(section, key, QString::number(value));
}

void CIniFile::DeleteKey(const QString& section, const QString& key) {
    checkInitialised();
    checkFileExists();
    if (section.isEmpty())
        raise(kInvalidSection);
    if (key.isEmpty())
        raise(kInvalidKey);
    Document doc = load();
    const int s = findSection(doc, section);
    const int k = s < 0 ? -1 : findKey(doc, s, key);
    if (k < 0)
        return;
    doc.lines.removeAt(k);
    save(doc);
}

void CIniFile::DeleteSection(const QString& section) {
    checkInitialised();
    checkFileExists();
    if (section.isEmpty())
        raise(kInvalidSection);
    Document doc = load();
    const int s = findSection(doc, section);
    if (s < 0)
        return;
    doc.lines.remove(s, sectionEnd(doc, s) - s);
    save(doc);
}

qint32 CIniFile::EnumerateAllKeys(const QString& section, QStringList& keys) {
    keys.clear();
    checkInitialised();
    checkFileExists();
    if (section.isEmpty())
        raise(kInvalidSection);
    const Document& doc = load();
    const int s = findSection(doc, section);
    if (s < 0)
        return 0;
    const int end = sectionEnd(doc, s);
    for (int i = s + 1; i < end; ++i)
        if (doc.lines[i].kind == Line::Entry)
            keys.append(doc.lines[i].name);
    return qint32(keys.size());
}

qint32 CIniFile::EnumerateAllSections(QStringList& sections) {
    sections.clear();
    checkInitialised();
    checkFileExists();
    const Document& doc = load();
    // The names come back through a buffer of 8192 characters, each ended by a NUL:
    // a file with more names than that is cut there.
    constexpr int kBuffer = 8192;
    int used = 0;
    for (const Line& l : doc.lines) {
        if (l.kind != Line::Section || l.name.isEmpty())
            continue;
        if (used + l.name.size() + 1 > kBuffer - 1) {
            const int room = kBuffer - 2 - used;
            if (room > 0)
                sections.append(l.name.left(room));
            break;
        }
        sections.append(l.name);
        used += l.name.size() + 1;
    }
    return qint32(sections.size());
}
