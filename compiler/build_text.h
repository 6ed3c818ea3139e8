// The linked text as a build assembles it: without the instruction listing, whose lines the assembler reads
// in their place straight from the compiler, so that the bulk of a unit is neither joined into one text nor
// scanned again from it.
#pragma once

#include "compiler/listing.h"

#include <filesystem>
#include <memory>
#include <string>

namespace velkor {

class TCompiler;
class TIffCompiler;

struct TBuildText {
    std::string Text;                          // the linked text, less the listing when ListingAt is set
    std::size_t ListingAt = std::string::npos; // where the listing's lines were left out
    TListing Listing;                          // the lines left out
};

// Link for a build. The listing is left out only when each of its lines, and each line of the text before
// it, reads the same on its own as inside the text; otherwise Text is the whole linked text.
TBuildText LinkForBuild(TCompiler& compiler);

// Writes the whole linked text to "_velkor.txt", as KeepLinkedText does, from its parts. Throws EInOutError.
void KeepLinkedText(const TBuildText& text);

// Gives the assembler the text, with the listing to be read in its place. The returned feed hands the
// lines over and must outlive the assembly; null when the text is whole.
std::unique_ptr<TListing::Feed> SetAssemblerInput(TIffCompiler& assembler, TBuildText& text,
                                                  const std::filesystem::path& baseFolder);

} // namespace velkor
