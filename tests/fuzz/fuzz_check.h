// What a fuzz target does when a property fails: it says which and on what text, then aborts, so that the
// fuzzer keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace velkor::fuzz {

[[noreturn]] inline void Fail(const char* what, const std::string& text = {}) {
    std::fprintf(stderr, "%s\n%s\n", what, text.c_str());
    std::abort();
}

inline void Check(bool ok, const char* what = "a property of the input does not hold") {
    if (!ok) Fail(what);
}

} // namespace velkor::fuzz
