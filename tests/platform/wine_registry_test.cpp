#include "platform/wine_registry.h"

#include <gtest/gtest.h>

namespace velkor {
namespace {

// A megabyte of one unfinished key and one unfinished value name parse to nothing.
TEST(WineRegistryText, GarbageParsesToNothing) {
    std::string huge = "[" + std::string(1 << 20, '\\') + "\n\"" + std::string(1 << 20, 'x') + "\n";
    EXPECT_EQ(WineKeyValues(huge, "Software"), std::nullopt);
    EXPECT_FALSE(WineKeyExists(huge, "Software"));
}

} // namespace
} // namespace velkor
