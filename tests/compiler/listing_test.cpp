// The instruction listing hands its lines over in order while it lets go of their memory: lines inserted in
// front of earlier ones, long lines of blocks of their own and empty lines must all come out as they went in.
#include "compiler/listing.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velkor::test {
namespace {

TEST(Listing, DrainHandsOverEveryLineInOrderAndEmptiesTheListing) {
    struct Case {
        const char* what;
        std::size_t lines;    // lines pushed, spread over several blocks of a megabyte
        std::size_t lineSize; // characters of each
        std::size_t
            insertEvery; // a group of lines inserted in front of earlier ones every so many (0: never)
    };
    const Case cases[] = {
        {"in block order", 300'000, 11, 0},
        {"with lines inserted before earlier ones", 300'000, 11, 997},
        {"with lines longer than a block", 5, (std::size_t{1} << 20) + 3, 2},
        {"empty lines", 1000, 0, 7},
        {"lines that fill their blocks", 20, (std::size_t{1} << 19) - 2, 3},
        {"lines of exactly the long length", 4, (std::size_t{1} << 20) - 3, 0},
        {"nothing", 0, 5, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        TListing listing;
        std::vector<std::string> want;
        for (std::size_t i = 0; i < c.lines; ++i) {
            std::string line = std::to_string(i);
            line.resize(c.lineSize, static_cast<char>('a' + i % 26));
            if (c.insertEvery && i % c.insertEvery == 0 && !want.empty()) {
                const std::size_t at = want.size() / 2;
                const std::vector<std::string> group = {line, line + "+"};
                listing.insert(at, group);
                want.insert(want.begin() + static_cast<std::ptrdiff_t>(at), group.begin(), group.end());
            } else {
                listing.push_back("  ", line);
                want.push_back("  " + line);
            }
        }
        // A feed hands over the same lines, given back as it goes.
        TListing copy = listing;
        EXPECT_TRUE(copy == listing);
        std::vector<std::string> fed;
        {
            TListing::Feed feed(copy);
            for (auto run = feed.NextLines(); !run.empty(); run = feed.NextLines()) {
                for (const SplicedLine& line : run) fed.emplace_back(line.text);
                feed.Release();
            }
            EXPECT_EQ(feed.CharsLeft(), 0u);
        }
        EXPECT_TRUE(fed == want);
        EXPECT_TRUE(copy.empty());
        std::vector<std::string> got;
        listing.Drain([&](std::string_view line) { got.emplace_back(line); });
        EXPECT_TRUE(got == want);
        EXPECT_EQ(got.size(), want.size());
        EXPECT_TRUE(listing.empty());
        EXPECT_EQ(listing.TextSize(), 0u);
    }
}

} // namespace
} // namespace velkor::test
