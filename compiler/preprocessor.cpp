// Directives (#DEFINE ... #ENDIF) and unit-header commands (#ADDTOSEARCHPATH ... #ERROR).
// Placeholder until the preprocessor lands: no directive is recognised, every command is unknown.
#include "compiler/compiler.h"
#include "compiler/scanner.h"
#include "platform/strings.h"

namespace velkor {

bool TCompiler::HandleDirective() { return false; }

void TCompiler::HandleCommand() {
    NextToken(); // "#"
    std::string word = NextToken();
    Hint(UpperCase(word) + " is not a valid command");
    while (!AtEnd()) {
        NextToken();
        if (TokenKind() == tkSemicolon) break;
    }
}

} // namespace velkor
