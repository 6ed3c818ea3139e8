// Code folding and block matching of the scripting language and of textual IFF, read from the text and
// the highlighter's styles, so that comments and strings never open or close a block. Folds: a function
// from its header to the end of its body, begin ... end, object ... end, objective ... end and { ... }.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string_view>

namespace velkor {

// What a line passes on to the next: how deep it is nested, and whether a function header waits for the
// begin of its body (the begin then opens no block of its own; forward and external close the header).
struct TFoldState {
    int Depth = 0;
    bool AwaitingBody = false;

    bool operator==(const TFoldState&) const = default;
};

// The fold state packed beside the highlighter's line state (which takes the low four bits).
constexpr int kLexStateMask = 0xF;
int PackFoldState(TFoldState state);
TFoldState UnpackFoldState(int lineState);

// Reads `text` (starting at a line start, styled as StyleSourceText styled it in `styles`) from `state`
// on. Calls `line(index, startDepth, opens)` for every line, the last one too when no break ends it, and
// `lineEnd(index, state)` for every line that a break ends. `opens` is true when the line ends deeper
// than it starts. Returns the state at the end of the text.
TFoldState FoldSourceText(std::string_view text, std::string_view styles, TFoldState state,
                          const std::function<void(long index, int startDepth, bool opens)>& line,
                          const std::function<void(long index, TFoldState state)>& lineEnd);

// A word of the text, as byte offsets.
struct TTextSpan {
    size_t Start = 0;
    size_t Length = 0;

    bool operator==(const TTextSpan&) const = default;
};

struct TBlockMatch {
    TTextSpan Word;    // begin, object, objective or end at the offset
    TTextSpan Partner; // its end, or its begin, object or objective
};

// The block word at or just before `offset` of `text` (starting at a line start in the highlighter's
// `lexState`) and the word it pairs with, looked for forward from an opening word and backward from an
// end within the text. Empty when the offset is at no block word or its partner is not in the text.
std::optional<TBlockMatch> MatchBlockWord(std::string_view text, int lexState, size_t offset);

} // namespace velkor
