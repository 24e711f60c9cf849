#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// The gateway to the settings file: read a text, read a number, write a text or
// a number, delete, and list sections and keys. Every operation checks its
// arguments in a fixed order and raises a KvError with one of six numbers.
// Lookups ignore case; comments and any line it does not understand are kept in
// their place; every write is on disk, whole, when it returns (written to a
// temporary file in the same folder, flushed and renamed over the old one).
// The file is read once and kept in memory: it is read again only when it has
// changed on disk since (another program or object wrote it).
class CIniFile {
public:
    static constexpr qint32 kInvalidFileName = qint32(0x80044511);
    static constexpr qint32 kFileNotFound = qint32(0x80044512);
    static constexpr qint32 kNotInitialised = qint32(0x80044513);
    static constexpr qint32 kInvalidSection = qint32(0x80044514);
    static constexpr qint32 kInvalidKey = qint32(0x80044515);
    static constexpr qint32 kComponentFailure = qint32(0x80044516);

    // A value read back is never longer than this.
    static constexpr int kMaxValueLength = 254;

    // Sets FileName to the data folder's "settings.ini".
    CIniFile();

    void Init(const QString& fileName);
    void setFileName(const QString& fileName);
    QString FileName() const { return m_fileName; }

    void DeleteKey(const QString& section, const QString& key);
    void DeleteSection(const QString& section);
    // Fills `keys` (erased first) and returns their count.
    qint32 EnumerateAllKeys(const QString& section, QStringList& keys);
    qint32 EnumerateAllSections(QStringList& sections);
    qint32 GetNumericValue(const QString& section, const QString& key, qint32 defaultValue);
    QString GetStringValue(const QString& section, const QString& key, const QString& defaultValue);
    // Takes a 16-bit number as the classic interface does: a larger one wraps.
    void SaveNumericValue(const QString& section, const QString& key, qint16 value);
    void SaveStringValue(const QString& section, const QString& key, const QString& value);

    // The description of each failure number, as raised.
    static QString describe(qint32 number);

    // Empty when the file can be read; otherwise why it cannot (the system's
    // reason, such as "Permission denied"). A missing file is no problem here:
    // the reads report it as "File not found".
    QString ReadProblem() const;

private:
    struct Line {
        QByteArray raw; // the line as it stands in the file, without its end
        enum Kind { Other, Section, Entry } kind = Other;
        QString name;  // section name or key, trimmed
        QString value; // an entry's value, trimmed
    };
    struct Document {
        QList<Line> lines;
        QByteArray eol = "\n";
    };

    [[noreturn]] void raise(qint32 number) const;
    void checkInitialised() const;
    void checkFileExists() const;
    bool FileExists() const;
    // Identifies one version of the file on disk.
    struct Stamp {
        quint64 device = 0, inode = 0;
        qint64 size = -1, modifiedNs = 0;
        bool operator==(const Stamp&) const = default;
    };
    static Stamp stampOf(const QString& path);
    // The file's lines: the copy in memory while the file is unchanged on disk.
    const Document& load() const;
    static Document parseAll(const QByteArray& all);
    void save(const Document& doc) const;
    static Line parse(const QByteArray& raw);
    // Index of the first header of `section` (case-blind), or -1.
    static int findSection(const Document& doc, const QString& section);
    // Index of `key` inside the section whose header is at `sectionIndex`, or -1.
    static int findKey(const Document& doc, int sectionIndex, const QString& key);
    static int sectionEnd(const Document& doc, int sectionIndex);
    void write(const QString& section, const QString& key, const QString& value);

    QString m_fileName;
    mutable Document m_document;
    mutable Stamp m_stamp;         // of the file m_document was read from (size -1: none)
    mutable QString m_readProblem; // why the last read failed
};
