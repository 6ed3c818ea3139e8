// velkorc decode: binary IFF files into textual IFF, several files at once on all cores.
#include "cli/cli.h"
#include "codegen/decoder_names.h"
#include "iff/iff_decoder.h"
#include "platform/path_resolver.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace velkor::cli {

namespace {

// Every decode takes one of the reader's 32 slots while it scans; stay well below that.
constexpr unsigned kMaxWorkers = 16;

std::filesystem::path OutputFor(const Options& options, const std::string& input) {
    if (!options.output.empty()) return ResolvePath(options.output);
    const std::optional<std::filesystem::path> found = FindExisting(input);
    std::filesystem::path out = found ? *found : ToNativePath(input);
    out += ".pas";
    return out;
}

struct Outcome {
    std::string failure;            // why the file was not decoded, empty when it was
    std::vector<std::string> notes; // why the text it was decoded into is not exact
};

Outcome DecodeOne(const Options& options, const std::string& input) {
    try {
        DecodeOptions decodeOptions;
        decodeOptions.exactFloats = options.exactFloats;
        decodeOptions.disassemble = !options.noDisassemble;
        if (decodeOptions.disassemble) decodeOptions.names = SystemDecoderNames();
        return {{}, Decode(input, OutputFor(options, input), options.maxDecodeSize, decodeOptions)};
    } catch (const std::exception& e) {
        return {e.what(), {}};
    }
}

} // namespace

int RunDecode(const Options& options) {
    const std::size_t count = options.files.size();
    // A file named twice is decoded once: two decodes writing the same output at once would collide.
    std::vector<std::size_t> first(count);
    std::map<std::filesystem::path, std::size_t> seen;
    for (std::size_t i = 0; i < count; ++i) {
        std::error_code ec;
        const std::filesystem::path out = OutputFor(options, options.files[i]);
        const std::filesystem::path key = std::filesystem::weakly_canonical(out, ec);
        first[i] = seen.emplace(ec ? out : key, i).first->second;
    }
    std::vector<Outcome> outcomes(count);
    std::atomic<std::size_t> next{0};
    auto work = [&] {
        for (std::size_t i = next++; i < count; i = next++)
            if (first[i] == i) outcomes[i] = DecodeOne(options, options.files[i]);
    };
    const unsigned cores = std::max(1u, std::thread::hardware_concurrency());
    const auto workers = static_cast<unsigned>(std::min<std::size_t>({count, cores, kMaxWorkers}));
    {
        std::vector<std::jthread> pool;
        for (unsigned w = 1; w < workers; ++w) pool.emplace_back(work);
        work();
    }
    int status = kExitOk;
    for (std::size_t i = 0; i < count; ++i) {
        if (first[i] != i) outcomes[i] = outcomes[first[i]];
        for (const std::string& note : outcomes[i].notes)
            PrintMessage("velkorc: " + options.files[i] + ": " + note);
        if (outcomes[i].failure.empty()) continue;
        PrintMessage("velkorc: " + options.files[i] + ": " + outcomes[i].failure);
        status = kExitUsage;
    }
    return status;
}

} // namespace velkor::cli
