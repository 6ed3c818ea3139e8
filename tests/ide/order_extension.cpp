// An extension library that records its turn: init_ext appends its name (VELKOR_ORDER_NAME, set when it
// is built) to the environment variable VELKOR_TEST_INIT_ORDER, separated by ",".
#include <cstdlib>
#include <string>

extern "C" __attribute__((visibility("default"))) void init_ext(void*) {
    const char* before = std::getenv("VELKOR_TEST_INIT_ORDER");
    std::string order = before ? before : "";
    if (!order.empty()) order += ',';
    order += VELKOR_ORDER_NAME;
    setenv("VELKOR_TEST_INIT_ORDER", order.c_str(), 1);
}
