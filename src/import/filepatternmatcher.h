#pragma once

#include <QList>
#include <QString>
#include <QStringView>

// Matches file names against a list of wildcard patterns separated by ";"
// (blanks around each pattern are ignored, so "*.zip; *.mp3" is the usual
// form). "*" stands for any run of characters, "?" for one character, and
// letters compare case-blind. "*.*" matches every name, with or without a dot.
// The list is taken apart once, so that matching a name allocates nothing.
class FilePatternMatcher {
public:
    FilePatternMatcher() = default;
    explicit FilePatternMatcher(const QString& patternList);

    bool matches(QStringView name) const;
    const QString& patternList() const { return m_patternList; }

private:
    struct Pattern {
        QString text;
        // Set when the pattern is "*" followed by a plain text: an ending to compare.
        bool suffixOnly = false;
        bool matchesAll = false;
    };
    static bool wildcardMatch(QStringView pattern, QStringView name);

    QString m_patternList;
    QList<Pattern> m_patterns;
};

// True when `name` matches one of the patterns of `patternList`.
bool MatchesFilePattern(QStringView name, const QString& patternList);
