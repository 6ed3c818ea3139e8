// Points every settings location at a fresh temporary folder for the duration of a test, so that no
// test reads or touches the user's real ini file, registry store or Wine prefix.
#pragma once

#include "platform/executable_path.h"
#include "platform/named_folders.h"
#include "tests/support/environment.h"
#include "tests/support/run_tool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <string>

namespace velkor::test {

// Sets (or, for nothing, unsets) an environment variable and restores the old state on destruction.
class ScopedEnv {
public:
    ScopedEnv(const char* name, std::optional<std::string> value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        Set(value);
    }
    ~ScopedEnv() { Set(old_); }
    ScopedEnv(const ScopedEnv&) = delete;
    ScopedEnv& operator=(const ScopedEnv&) = delete;

    void Set(const std::optional<std::string>& value) { SetEnvironment(name_, value); }

private:
    const char* name_;               // the variable
    std::optional<std::string> old_; // its value before the test, if it had one
};

class IsolatedSettings : public ::testing::Test {
protected:
    IsolatedSettings() { ResetNamedFoldersForTesting(); }
    ~IsolatedSettings() override {
        SetExecutableFolderForTesting({});
        ResetNamedFoldersForTesting();
    }

    TempDir dir;                                                                   // holds every file
    ScopedEnv ini{"VELKOR_INI", (dir.path() / "velkor.ini").string()};             // the settings file
    ScopedEnv registry{"VELKOR_REGISTRY", (dir.path() / "registry.ini").string()}; // the registry store
    ScopedEnv wine{"WINEPREFIX", (dir.path() / "wine").string()};                  // an empty prefix
    ScopedEnv config{"XDG_CONFIG_HOME", (dir.path() / "config").string()};         // the config folder
};

} // namespace velkor::test
