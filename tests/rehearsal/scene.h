#pragma once

#include <vector>

class Show;

// One scene of the evening: a few minutes of a show as the host lives them,
// written in the steps of Show. Scenes run in the order of their number, each
// on the state the earlier ones left; a feature adds its scene in a file of
// its own with KV_SCENE, numbered where it belongs in the evening.
struct Scene {
    int order;
    const char* name;
    void (*play)(Show&);
};

std::vector<Scene>& scenes();

struct SceneRegistrar {
    SceneRegistrar(int order, const char* name, void (*play)(Show&));
};

#define KV_SCENE_JOIN2(a, b) a##b
#define KV_SCENE_JOIN(a, b) KV_SCENE_JOIN2(a, b)
#define KV_SCENE(order, name, play)                                                                          \
    static SceneRegistrar KV_SCENE_JOIN(kv_scene_, __LINE__)(order, name, play);
