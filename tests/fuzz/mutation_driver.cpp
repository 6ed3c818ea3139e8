// Stand-in for libFuzzer when the compiler has none: replays every file of the seed corpus, then feeds
// the target random mutations of the seeds (bit flips, byte changes, insertions, deletions, splices)
// until the time is up. A crash or a sanitizer report fails the run, as it would under libFuzzer.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes ReadAll(const std::filesystem::path& p) {
    std::ifstream in(p, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

void Mutate(Bytes& data, const std::vector<Bytes>& seeds, std::mt19937_64& rng) {
    auto pick = [&](std::size_t n) { return n == 0 ? 0 : static_cast<std::size_t>(rng() % n); };
    static const std::uint8_t kInteresting[] = {0,    1,    0x7F, 0x80, 0xFF, '"', '{', '}', ';', '/', '*',
                                                '\r', '\n', '#',  '$',  '%',  '-', '[', ']', ',', ' '};
    int rounds = 1 + static_cast<int>(rng() % 4);
    for (int r = 0; r < rounds; ++r) {
        switch (rng() % 7) {
        case 0:
            if (!data.empty()) data[pick(data.size())] ^= static_cast<std::uint8_t>(1u << (rng() % 8));
            break;
        case 1:
            if (!data.empty()) data[pick(data.size())] = static_cast<std::uint8_t>(rng());
            break;
        case 2:
            data.insert(data.begin() + static_cast<std::ptrdiff_t>(pick(data.size() + 1)),
                        kInteresting[pick(sizeof kInteresting)]);
            break;
        case 3:
            if (!data.empty()) {
                std::size_t at = pick(data.size());
                std::size_t n = 1 + pick(std::min<std::size_t>(16, data.size() - at));
                data.erase(data.begin() + static_cast<std::ptrdiff_t>(at),
                           data.begin() + static_cast<std::ptrdiff_t>(std::min(data.size(), at + n)));
            }
            break;
        case 4:
            if (!seeds.empty()) {
                const Bytes& other = seeds[pick(seeds.size())];
                if (!other.empty()) {
                    std::size_t from = pick(other.size());
                    std::size_t n = 1 + pick(std::min<std::size_t>(64, other.size() - from));
                    data.insert(data.begin() + static_cast<std::ptrdiff_t>(pick(data.size() + 1)),
                                other.begin() + static_cast<std::ptrdiff_t>(from),
                                other.begin() + static_cast<std::ptrdiff_t>(from + n));
                }
            }
            break;
        case 5:
            if (data.size() > 1) data.resize(pick(data.size()));
            break;
        case 6:
            if (!data.empty()) {
                std::size_t at = pick(data.size());
                std::size_t n = 1 + pick(std::min<std::size_t>(8, data.size() - at));
                Bytes copy(data.begin() + static_cast<std::ptrdiff_t>(at),
                           data.begin() + static_cast<std::ptrdiff_t>(at + n));
                data.insert(data.begin() + static_cast<std::ptrdiff_t>(pick(data.size() + 1)), copy.begin(),
                            copy.end());
            }
            break;
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    double seconds = 3;
    std::vector<std::filesystem::path> inputs;
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        if (a == "--seconds" && i + 1 < argc)
            seconds = std::atof(argv[++i]);
        else
            inputs.emplace_back(a);
    }
    std::vector<Bytes> seeds;
    for (const auto& in : inputs) {
        std::error_code ec;
        if (std::filesystem::is_directory(in, ec)) {
            for (const auto& e : std::filesystem::recursive_directory_iterator(in, ec))
                if (e.is_regular_file()) seeds.push_back(ReadAll(e.path()));
        } else if (std::filesystem::exists(in, ec)) {
            seeds.push_back(ReadAll(in));
        }
    }
    if (seeds.empty()) seeds.emplace_back();
    for (const auto& s : seeds) LLVMFuzzerTestOneInput(s.data(), s.size());

    std::mt19937_64 rng(0x5EED);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    unsigned long long runs = seeds.size();
    while (std::chrono::steady_clock::now() < deadline) {
        for (int batch = 0; batch < 64; ++batch) {
            Bytes data = seeds[static_cast<std::size_t>(rng() % seeds.size())];
            Mutate(data, seeds, rng);
            LLVMFuzzerTestOneInput(data.data(), data.size());
            ++runs;
        }
    }
    std::printf("%llu runs over %zu seeds\n", runs, seeds.size());
    return 0;
}
