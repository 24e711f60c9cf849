#include "scene.h"

#include <algorithm>

std::vector<Scene>& scenes() {
    static std::vector<Scene> all;
    return all;
}

SceneRegistrar::SceneRegistrar(int order, const char* name, void (*play)(Show&)) {
    auto& all = scenes();
    all.push_back({order, name, play});
    std::stable_sort(all.begin(), all.end(),
                     [](const Scene& a, const Scene& b) { return a.order < b.order; });
}
