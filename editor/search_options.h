// Option bits of TSyntaxEdit::Search, as the find and replace dialog sets them.
#pragma once

namespace velkor {

enum TSearchOption : unsigned {
    ssoBackwards = 1,         // search towards the start of the text
    ssoEntireScope = 2,       // start at the scope's start (its end when backwards) instead of the caret
    ssoIgnoreNonSpacing = 4,  // accepted and ignored
    ssoMatchCase = 8,         // letter case must match
    ssoPrompt = 16,           // ask before each replacement
    ssoRegExpr = 32,          // the find text is a regular expression
    ssoReplace = 64,          // replace the match
    ssoReplaceAll = 128,      // with ssoReplace: replace every match in the scope
    ssoSelectedOnly = 0x100,  // the scope is the selection instead of the whole text
    ssoSpaceCompress = 0x200, // accepted and ignored
    ssoWholeWord = 0x400,     // a match may not touch identifier characters on either side
};

// The answer to a replace prompt.
enum class TReplaceAnswer {
    Yes,    // replace this match and go on
    No,     // leave this match and go on
    Cancel, // stop here
    All,    // replace this match and every later one without asking
};

} // namespace velkor
