#pragma once

#include <QObject>
#include <functional>
#include <vector>

// Every test class of a test executable registers itself with KV_TEST_CLASS;
// the shared main() runs them all, in a private home folder.
namespace kvtest {

using Factory = std::function<QObject*()>;
std::vector<Factory>& registry();

struct Registrar {
    explicit Registrar(Factory f) { registry().push_back(std::move(f)); }
};

} // namespace kvtest

#define KV_TEST_CLASS(Class)                                                                                 \
    static kvtest::Registrar kv_registrar_##Class([]() -> QObject* { return new Class; });
