#include "filepatternmatcher.h"

#include "core/wildcardmatch.h"

namespace {

bool sameLetter(QChar a, QChar b) {
    return a == b || a.toCaseFolded() == b.toCaseFolded();
}

bool hasWildcard(QStringView s) {
    return s.contains(QLatin1Char('*')) || s.contains(QLatin1Char('?'));
}

} // namespace

FilePatternMatcher::FilePatternMatcher(const QString& patternList) : m_patternList(patternList) {
    for (QStringView part : QStringView(patternList).split(QLatin1Char(';'))) {
        part = part.trimmed();
        if (part.isEmpty())
            continue;
        Pattern p;
        p.text = part.toString();
        p.matchesAll = part == QLatin1String("*") || part == QLatin1String("*.*");
        p.suffixOnly = part.startsWith(QLatin1Char('*')) && !hasWildcard(part.sliced(1));
        if (p.suffixOnly)
            p.text = part.sliced(1).toString();
        m_patterns.append(p);
    }
}

bool FilePatternMatcher::matches(QStringView name) const {
    for (const Pattern& p : m_patterns) {
        if (p.matchesAll)
            return true;
        if (p.suffixOnly ? name.endsWith(p.text, Qt::CaseInsensitive) : wildcardMatch(p.text, name))
            return true;
    }
    return false;
}

bool FilePatternMatcher::wildcardMatch(QStringView pattern, QStringView name) {
    return WildcardMatch(
        pattern, name, [](QChar c) { return c == QLatin1Char('*'); },
        [](QChar p, QChar n) { return p == QLatin1Char('?') || sameLetter(p, n); });
}

bool MatchesFilePattern(QStringView name, const QString& patternList) {
    // The walk asks with one list over and over: keep the last one taken apart.
    thread_local FilePatternMatcher last;
    if (last.patternList() != patternList || (last.patternList().isEmpty() && !patternList.isEmpty()))
        last = FilePatternMatcher(patternList);
    return last.matches(name);
}
