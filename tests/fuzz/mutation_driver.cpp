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
    const auto pick = [&](std::size_t n) {
        return n == 0 ? std::size_t{0} : static_cast<std::size_t>(rng() % n);
    };
    const auto at = [](const Bytes& b, std::size_t i) { return b.begin() + static_cast<std::ptrdiff_t>(i); };
    static const std::uint8_t kInteresting[] = {0,    1,    0x7F, 0x80, 0xFF, '"', '{', '}', ';', '/', '*',
                                                '\r', '\n', '#',  '$',  '%',  '-', '[', ']', ',', ' '};
    for (int round = 0, rounds = 1 + static_cast<int>(rng() % 4); round < rounds; ++round) {
        const std::uint64_t kind = rng() % 7;
        if (data.empty() && kind != 2 && kind != 4) continue;
        const std::size_t from = pick(data.size()), to = pick(data.size() + 1);
        const Bytes& other = seeds[pick(seeds.size())];
        const std::size_t otherFrom = pick(other.size());
        switch (kind) {
        case 0: data[from] ^= static_cast<std::uint8_t>(1u << (rng() % 8)); break;
        case 1: data[from] = static_cast<std::uint8_t>(rng()); break;
        case 2: data.insert(at(data, to), kInteresting[pick(sizeof kInteresting)]); break;
        case 3:
            data.erase(at(data, from),
                       at(data, from + 1 + pick(std::min<std::size_t>(16, data.size() - from))));
            break;
        case 4: // a piece of another seed
            if (!other.empty())
                data.insert(
                    at(data, to), at(other, otherFrom),
                    at(other, otherFrom + 1 + pick(std::min<std::size_t>(64, other.size() - otherFrom))));
            break;
        case 5: data.resize(pick(data.size())); break;
        default: { // a piece of the input itself, repeated elsewhere
            const Bytes copy(at(data, from),
                             at(data, from + 1 + pick(std::min<std::size_t>(8, data.size() - from))));
            data.insert(at(data, to), copy.begin(), copy.end());
        }
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
