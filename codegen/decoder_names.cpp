#include "codegen/decoder_names.h"

#include "codegen/object_tables.h"
#include "platform/named_folders.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace velkor {

namespace {

std::shared_ptr<const KnownNames> Gather() {
    auto names = std::make_shared<KnownNames>();
    for (const ObjectProperty& p : ObjectProperties())
        if (!p.Comment.empty())
            names->AddId(static_cast<std::uint32_t>(StrToIntDef("$" + std::string(p.ChunkId), 0)), p.Comment);
    names->AddId(static_cast<std::uint32_t>(StrToIntDef("$" + std::string(kTypePropertyId), 0)),
                 kTypePropertyComment);
    // In name order, so that which of two names of one hash is shown does not depend on the file system.
    std::vector<std::filesystem::path> units;
    std::error_code ec;
    if (const auto lib = FindExisting(ExpandPath("$compiler$\\lib"))) {
        for (const auto& entry : std::filesystem::directory_iterator(*lib, ec))
            if (SameText(entry.path().extension().string(), ".pas") && entry.is_regular_file(ec))
                units.push_back(entry.path());
    }
    std::sort(units.begin(), units.end());
    for (const auto& unit : units) {
        try {
            names->AddWordsOf(LoadTextFile(unit));
        } catch (const std::exception&) {
            // A unit that cannot be read only costs its names.
        }
    }
    return names;
}

} // namespace

std::shared_ptr<const KnownNames> SystemDecoderNames() {
    static const std::shared_ptr<const KnownNames> names = Gather();
    return names;
}

} // namespace velkor
