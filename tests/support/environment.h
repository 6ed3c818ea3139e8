// Setting and clearing environment variables the same way on every system the tests run on.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace velkor::test {

// Sets `name` to `value`, or removes it for nothing.
inline void SetEnvironment(const char* name, const std::optional<std::string>& value) {
#ifdef _WIN32
    // An empty value removes the variable, which is what the other branch does for nothing.
    _putenv_s(name, value ? value->c_str() : "");
#else
    if (value)
        setenv(name, value->c_str(), 1);
    else
        unsetenv(name);
#endif
}

} // namespace velkor::test
