// Directives (#DEFINE ... #ENDIF) and unit-header commands (#ADDTOSEARCHPATH ... #ERROR).
#include "codegen/codegen.h"
#include "compiler/compiler.h"
#include "platform/named_folders.h"
#include "platform/numbers.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "scanner/scanner.h"

#include <algorithm>

namespace velkor {

bool TCompiler::NextIsDirective(std::string_view word1, std::string_view word2) {
    if (PeekToken() != "#") return false;
    const std::string word = UpperCase(PeekAhead(1));
    return word == word1 || (!word2.empty() && word == word2);
}

// Skips tokens up to a "#" followed by one of the words, reporting each at level 2; consumes the "#" and
// the word and returns the word, or "" at the end of the text.
std::string TCompiler::SkipConditional(std::string_view trace, std::string_view word1,
                                       std::string_view word2) {
    while (!AtEnd()) {
        if (NextIsDirective(word1, word2)) {
            NextToken();
            return UpperCase(NextToken());
        }
        Output(2, std::string(trace) + " skipped: \"" + VisibleBytes(NextToken()) + "\"");
    }
    return {};
}

bool TCompiler::HandleDirective() {
    if (PeekToken() != "#") return false;
    const std::string word = UpperCase(PeekAhead(1));
    if (word == "DEFINE") {
        NextToken();
        NextToken();
        Defines->Add(NextToken());
    } else if (word == "UNDEF") {
        NextToken();
        NextToken();
        Defines->Remove(NextToken());
    } else if (word == "IFDEF" || word == "IFNDEF") {
        NextToken();
        NextToken();
        const std::string name = NextToken();
        if (ConditionalState != -1) ErrorNoSkip("Nested #IfDefs aren't allowed");
        InElse = false;
        const bool defined = Defines->Contains(name);
        ConditionalState = defined ? 1 : 0;
        if (defined != (word == "IFDEF")) {
            if (SkipConditional("Ifdef", "ENDIF", "ELSE") == "ENDIF") {
                ConditionalState = -1;
                InElse = false;
            }
        }
    } else if (word == "ELSE") {
        NextToken();
        NextToken();
        if (ConditionalState == -1) {
            ErrorNoSkip("#Else without #Ifdef");
            ErrorNoSkip("#Endif without #IfDef/#IfNDef");
        }
        InElse = true;
        SkipConditional("Ifdef_else", "ENDIF", {});
        ConditionalState = -1;
        InElse = false;
    } else if (word == "ENDIF") {
        NextToken();
        NextToken();
        if (ConditionalState == -1 && !InElse) ErrorNoSkip("#Endif without #Ifdef");
        ConditionalState = -1;
    } else {
        return false;
    }
    return true;
}

// The folder argument of ADDTOSEARCHPATH and SETOUTPUTPATH: "(" one raw token ")". The ";" is checked
// after the folder has taken effect, as with every other command.
bool TCompiler::ReadFolderArgument(std::string& folder) {
    if (!Expect("(")) return false;
    folder = NextToken();
    return Expect(")");
}

void TCompiler::HandleCommand() {
    NextToken(); // "#"
    const std::string word = UpperCase(PeekToken());
    if (word == "NAME") {
        codegen_->CompileNameCommand();
        return;
    }
    if (word == "INCLUDE") {
        NextToken();
        IncludeSourceFiles();
        return;
    }
    NextToken();
    std::string text;
    if (word == "ADDTOSEARCHPATH") {
        if (!ReadFolderArgument(text)) return;
        AddToSearchPath(text);
        Expect(";");
    } else if (word == "SETOUTPUTPATH") {
        if (!ReadFolderArgument(text)) return;
        SetOutputPath(text);
        Expect(";");
    } else if (word == "SECTOR") {
        if (!Expect(":")) return;
        SectorFile = ReadValue(2);
        Expect(";");
    } else if (word == "BACKGROUND") {
        if (!Expect(":")) return;
        if (auto v = StrToInt(ReadValue(0))) Background = *v;
        Expect(";");
    } else if (word == "STRINGS") {
        IncludeStringFiles();
    } else if (word == "FILE") {
        CompileFiles();
    } else if (word == "ADDPATHCONSTANT") {
        if (!Expect("(")) return;
        const std::string name = NextToken();
        if (!Expect(",")) return;
        const std::string path = NextToken();
        if (!Expect(")")) return;
        if (!FindExisting(ExpandPath(path))) Error("Path to add does not exists (" + path + ")");
        AddNamedFolder(name, path);
        Expect(";");
    } else if (word == "SETKILLBOARD" || word == "SETROOMS") {
        if (!Expect("(")) return;
        const bool rooms = word == "SETROOMS";
        StringList& list = rooms ? *Rooms : *KillBoard;
        list.clear();
        std::string separator;
        if (PeekToken() == ")") separator = NextToken();
        while (separator != ")") {
            list.push_back(ReadValue(rooms ? 2 : 0));
            separator = NextToken();
            if (TokenKind() != tkComma) break;
        }
        if (separator != ")") {
            Expected(")", separator);
            return;
        }
        Expect(";");
    } else if (word == "GFPROC" || word == "MAINPROC") {
        if (!Expect(":")) return;
        text = ReadValue(2);
        (word == "GFPROC" ? data_->GfProc : data_->MainProc) = text;
        Hint(text);
        Expect(";");
    } else if (word == "HINT" || word == "ERROR") {
        if (!Expect("(")) return;
        text = ReadValue(2);
        if (!Expect(")")) return;
        if (word == "HINT")
            Hint(text);
        else
            Error(text);
        Expect(";");
    } else {
        Hint(word + " is not a valid command");
        while (!AtEnd()) {
            NextToken();
            if (TokenKind() == tkSemicolon) break;
        }
    }
}

} // namespace velkor
