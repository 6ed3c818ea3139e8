// The extension libraries of the loader tests, one source built three ways. By default init_ext records the
// module handle it was given in VELKOR_TEST_EXTENSION_HOST; with VELKOR_ORDER_NAME it appends that name to
// VELKOR_TEST_INIT_ORDER (","-separated), recording its turn; with VELKOR_NO_ENTRY it has no init_ext.
#include <cstdio>
#include <cstdlib>
#include <string>

#ifdef VELKOR_NO_ENTRY
extern "C" __attribute__((visibility("default"))) int not_an_entry() {
    return 1;
}
#else
extern "C" __attribute__((visibility("default"))) void init_ext(void* hostModule) {
#ifdef VELKOR_ORDER_NAME
    const char* before = std::getenv("VELKOR_TEST_INIT_ORDER");
    const std::string order = before ? std::string(before) + "," VELKOR_ORDER_NAME : VELKOR_ORDER_NAME;
    setenv("VELKOR_TEST_INIT_ORDER", order.c_str(), 1);
#else
    char text[32];
    std::snprintf(text, sizeof text, "%p", hostModule);
    setenv("VELKOR_TEST_EXTENSION_HOST", text, 1);
#endif
}
#endif
