#pragma once

#include <cstddef>

// Matches `text` against `pattern`, where some pattern elements stand for any
// run of elements (`isRun`) and `same(patternElement, textElement)` says
// whether one element matches one (a one-element wildcard, or equal letters).
// Each run takes as little as it can and one more element whenever the rest
// fails: a step back to the last run only, never recursive, however many
// runs the pattern holds. Both sequences need size() and operator[].
template <typename Pattern, typename Text, typename IsRun, typename Same>
bool WildcardMatch(const Pattern& pattern, const Text& text, IsRun isRun, Same same) {
    const std::size_t pSize = std::size_t(pattern.size());
    const std::size_t tSize = std::size_t(text.size());
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t runAt = std::size_t(-1);
    std::size_t resumeAt = 0;
    while (t < tSize) {
        if (p < pSize && isRun(pattern[p])) {
            runAt = p++;
            resumeAt = t;
        } else if (p < pSize && same(pattern[p], text[t])) {
            ++p;
            ++t;
        } else if (runAt != std::size_t(-1)) {
            p = runAt + 1;
            t = ++resumeAt;
        } else {
            return false;
        }
    }
    while (p < pSize && isRun(pattern[p]))
        ++p;
    return p == pSize;
}
