// The engines that are held to the contract: an engine joins by its line here.
#pragma once

#include "platform/ado/engine.h"
#include "platform/ado/jet/fileengine.h"

#include <functional>
#include <vector>

struct EngineKind {
    const char *name;
    const char *provider;
    void (*add)();
    std::function<std::unique_ptr<Engine>()> make;
};

inline void PrintTo(const EngineKind &kind, std::ostream *out) { *out << kind.name; }

inline const std::vector<EngineKind> &engineKinds() {
    static const std::vector<EngineKind> kinds{
        {"File", ado::jetProvider, ado::addJetEngine, [] { return std::make_unique<FileEngine>(); }},
    };
    return kinds;
}
