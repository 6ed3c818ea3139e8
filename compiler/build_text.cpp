#include "compiler/build_text.h"

#include "compiler/compiler.h"
#include "compiler/unit_forms.h"
#include "iff/build_chain.h"
#include "iff/iff_compiler.h"
#include "platform/atomic_file_writer.h"
#include "scanner/scanner.h"

#include <array>
#include <cstdint>
#include <limits>

namespace velkor {

namespace {

// A line without these characters reads the same alone as inside any text; one with them is asked.
constexpr auto kAskedCharacters = [] {
    std::array<bool, 256> asked{};
    for (unsigned char c : std::string_view("\r\n\0\"#/", 6)) asked[c] = true;
    return asked;
}();

class LineCheck {
public:
    bool ReadsAlone(std::string_view line) {
        for (char c : line)
            if (kAskedCharacters[static_cast<unsigned char>(c)]) return ReadLineTokens(line, tokens_);
        return true;
    }

private:
    std::vector<LineToken> tokens_; // room for the tokens of the lines asked
};

bool ListingReadsAlone(const TListing& listing) {
    if (listing.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max() / 2)) return false;
    // Lines of one id read the same: each distinct line is asked once.
    LineCheck check;
    return listing.HoldsForEveryText([&check](std::string_view text) { return check.ReadsAlone(text); });
}

bool TextReadsAlone(std::string_view text) {
    LineCheck check;
    for (std::size_t from = 0; from < text.size();) {
        std::size_t end = text.find("\r\n", from);
        if (end == std::string_view::npos) end = text.size();
        if (!check.ReadsAlone(text.substr(from, end - from))) return false;
        from = end + 2;
    }
    return true;
}

} // namespace

TBuildText LinkForBuild(TCompiler& compiler) {
    TBuildText build;
    if (!ListingReadsAlone(compiler.Data().CodeList)) {
        build.Text = compiler.Link();
        return build;
    }
    std::size_t at = std::string::npos;
    build.Text = compiler.Link(&at);
    // A unit kind without a listing in its text leaves CodeList as Link does.
    if (at == std::string::npos) return build;
    build.Listing = std::move(compiler.Data().CodeList);
    compiler.Data().CodeList.clear();
    if (TextReadsAlone(std::string_view(build.Text).substr(0, at))) {
        build.ListingAt = at;
        return build;
    }
    // The text cannot be cut: the listing goes back into it.
    std::string whole;
    whole.reserve(build.Text.size() + build.Listing.TextSize() + build.Listing.size() * (kListingIndent + 2));
    const std::string_view text = build.Text;
    whole.append(text.substr(0, at));
    const std::string indent(kListingIndent, ' ');
    build.Listing.Drain([&](std::string_view line) {
        whole += indent;
        whole += line;
        whole += "\r\n";
    });
    whole.append(text.substr(at));
    build.Text = std::move(whole);
    return build;
}

void KeepLinkedText(const TBuildText& text) {
    if (text.ListingAt == std::string::npos) {
        KeepLinkedText(text.Text);
        return;
    }
    AtomicFileWriter file(LinkedTextFile());
    const std::string_view whole = text.Text;
    file.Write(whole.substr(0, text.ListingAt));
    const std::string indent(kListingIndent, ' ');
    for (std::string_view line : text.Listing) {
        file.Write(indent);
        file.Write(line);
        file.Write("\r\n");
    }
    file.Write(whole.substr(text.ListingAt));
    file.Commit();
}

std::unique_ptr<TListing::Feed> SetAssemblerInput(TIffCompiler& assembler, TBuildText& text,
                                                  const std::filesystem::path& baseFolder) {
    if (text.ListingAt == std::string::npos) {
        assembler.TakeInputText(std::move(text.Text), baseFolder);
        return nullptr;
    }
    const auto lines = static_cast<std::int32_t>(text.Listing.size());
    auto feed = std::make_unique<TListing::Feed>(text.Listing);
    assembler.TakeInputText(std::move(text.Text), baseFolder, *feed, text.ListingAt, lines);
    return feed;
}

} // namespace velkor
