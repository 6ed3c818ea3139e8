// Two registries seen as one: reads ask the own registry first and fall back to the other; writes and
// deletions go to the own registry only, so a deleted own value may uncover the fallback's.
#pragma once

#include "platform/registry.h"

namespace velkor {

class LayeredRegistry : public Registry {
public:
    LayeredRegistry(Registry& own, const Registry& fallback) : own_(own), fallback_(fallback) {}

    bool KeyExists(std::string_view key) const override;
    bool OpenKey(std::string_view key, bool canCreate) override;
    // The own names in their order, then the fallback's names the own key lacks.
    std::vector<std::string> ValueNames(std::string_view key) const override;
    std::optional<std::string> ReadString(std::string_view key, std::string_view name) const override;
    void WriteString(std::string_view key, std::string_view name, std::string_view value) override;
    bool DeleteValue(std::string_view key, std::string_view name) override;
    bool DeleteKey(std::string_view key) override;

private:
    Registry& own_;            // read first, and the only one written
    const Registry& fallback_; // read when the own registry lacks the key or value
};

} // namespace velkor
