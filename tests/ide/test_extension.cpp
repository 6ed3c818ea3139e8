// A minimal extension library for the loader test: init_ext records the module handle it was given.
#include <cstdio>
#include <cstdlib>

extern "C" __attribute__((visibility("default"))) void init_ext(void* hostModule) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", hostModule);
    setenv("VELKOR_TEST_EXTENSION_HOST", text, 1);
}
