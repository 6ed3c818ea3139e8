// Both scanners over the same generated unit of 100,000 lines: the rewriting TScanner should stay within
// about twice the time of TFastScanner.
#include "scanner/scanner.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

std::string GeneratedUnit(int lines) {
    std::string text = "mission Generated;\r\n";
    for (int i = 1; text.size() < 64 || i < lines; ++i) {
        switch (i % 5) {
        case 0: text += "// a comment line\r\n"; break;
        case 1: text += "function F" + std::to_string(i) + "(a, b);\r\n"; break;
        case 2: text += "begin x := a + $1F * (b - %101); /* note */\r\n"; break;
        case 3: text += "  if (x > 10) then Msg(\"ship lost\", x) else inc(x);\r\n"; break;
        case 4: text += "end;\r\n"; break;
        }
    }
    return text;
}

template <typename Scanner>
void ScanAll(benchmark::State& state) {
    const std::string text = GeneratedUnit(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        Scanner scanner;
        scanner.LineMarkers = true;
        scanner.SetText(text);
        long tokens = 0;
        while (true) {
            scanner.NextToken();
            if (scanner.TokenKind() == velkor::tkEndOfText) break;
            ++tokens;
        }
        benchmark::DoNotOptimize(tokens);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(text.size()));
}

BENCHMARK_TEMPLATE(ScanAll, velkor::TScanner)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(ScanAll, velkor::TFastScanner)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
