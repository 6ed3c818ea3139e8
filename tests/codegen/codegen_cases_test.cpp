// The code generator and the optimiser over the case files in tests/cases/codegen.
#include "codegen/optimizer.h"
#include "tests/compiler/unit_cases.h"

#include <gtest/gtest.h>

namespace velkor::test {
namespace {

TEST(CodegenCases, Units) {
    RunCaseFolder(std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/codegen", CompileCase);
}

// A listing in, the optimiser's lines and messages out; `@ verbosity=N` may come first.
TEST(CodegenCases, Optimizer) {
    RunCaseFolder(std::filesystem::path(VELKOR_SOURCE_DIR) / "tests/cases/codegen/optimizer",
                  [](const Case& c) {
                      std::vector<std::string> listing = c.input, out;
                      TOptimizer optimizer;
                      optimizer.Verbosity = 3;
                      if (listing.at(0).starts_with("@ verbosity=")) {
                          optimizer.Verbosity = static_cast<std::uint8_t>(std::stoi(listing[0].substr(12)));
                          listing.erase(listing.begin());
                      }
                      std::vector<std::string> messages;
                      optimizer.OnOutput = [&](const std::string& m) { messages.push_back("message " + m); };
                      optimizer.Load(listing);
                      optimizer.Run();
                      out = optimizer.Result();
                      out.insert(out.end(), messages.begin(), messages.end());
                      return out;
                  });
}

} // namespace
} // namespace velkor::test
