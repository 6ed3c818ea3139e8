// The code generator: single-pass, text-based. While the compiler parses, these routines append lines of
// the instruction listing to the unit's CodeList (functions, statements, expressions) and object and
// objective lines to their lists. No tree is built and no constant is folded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace velkor {

class TCompiler;
struct TSymbol;

class TCodeGen {
public:
    explicit TCodeGen(TCompiler& compiler);

    // --- entry points of the declaration loop (the keyword not yet read)
    void CompileFunctionDeclaration(); // "function"
    void CompileObject();              // "object"
    void CompileObjective();           // "objective"
    void CompileNameCommand();         // the NAME command: "name" ":" value (after "#")

    // --- the listing writer
    // Appends a line with the current indentation, which grows by two blanks after "{" and shrinks by two
    // before "}".
    void EmitLine(const std::string& line);
    // Inserts a line at a CodeList index, without indentation.
    void InsertLine(std::size_t index, const std::string& line);

    // --- functions and calls
    void CompileFunctionBody();
    void CompileUserCall(const TSymbol& function);
    void CompileGameCall(const TSymbol& function);

    // --- statements
    void CompileStatement();
    void CompileCompound();
    void CompileBody();

    // --- expressions: each leaves its value in v8
    void CompileExpression();
    void CompileSimpleExpression();
    void CompileSignedTerm();
    void CompileTerm();
    void CompileSignedFactor();
    void CompileFactor();
    void PushAccumulator();
    void PopAccumulator();

    std::string CurrentFunction;         // name of the function being compiled, for messages and statics
    int StackDepth = 0;                  // expression-stack depth; reset at each function declaration
    std::vector<std::string> BreakStack; // end labels of the enclosing loops, innermost last

private:
    TCompiler& compiler_; // the unit being compiled
    std::string indent_;  // the listing writer's current indentation
};

} // namespace velkor
