// The code generator: single-pass, text-based. While the compiler parses, these routines append lines of
// the instruction listing to the unit's CodeList (functions, statements, expressions) and object and
// objective lines to their lists. No tree is built and no constant is folded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velkor {

class IffTextWriter;
class TCompiler;
struct TSymbol;

class TCodeGen {
public:
    explicit TCodeGen(TCompiler& compiler);

    // --- entry points of the declaration loop (the keyword not yet read)
    void CompileFunctionDeclaration(); // "function"
    void CompileObject();              // "object"
    void CompileObjective();           // "objective"
    void CompileNameCommand();         // the NAME command: "name" ":" value (after "#"; the ";" is left)

    // --- the listing writer
    // Appends a line with the current indentation, which grows by two blanks after "{" and shrinks by two
    // before "}".
    void EmitLine(std::string_view line);
    // Appends the line the parts make together, joined in a buffer kept for it.
    void EmitJoined(std::initializer_list<std::string_view> parts);
    // Inserts a line at a CodeList index, without indentation.
    void InsertLine(std::size_t index, const std::string& line);
    // Inserts several lines at once, in the given order, without indentation.
    void InsertLines(std::size_t index, const std::vector<std::string>& lines);

    // --- functions and calls (a call's name already read)
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
    // The binary operators, as the expression levels read them.
    enum class BinaryOperator {
        None,
        Add,
        Subtract,
        Or,
        Multiply,
        Divide,
        And,
        Mod,
        Equal,
        Less,
        Greater,
        NotEqual
    };

    // Saves v8 in the slot __ST<depth> and returns the slot's register.
    int PushAccumulator();
    void PopAccumulator();

    // Deepest nesting of expressions and statements before "Expression too complex": the parser recurses,
    // and hostile input must end in an error, not in a stack overflow.
    static constexpr int kMaxNesting = 500;

    std::string CurrentFunction;         // name of the function being compiled, for messages and statics
    int StackDepth = 0;                  // expression-stack depth; reset at each function declaration
    std::vector<std::string> BreakStack; // end labels of the enclosing loops, innermost last

private:
    friend class NestingGuard;

    // statements.cpp
    void CompileOutermostStatement();
    void CompileAssignment();
    void CompileIf();
    void CompileWhile();
    void CompileUntil();
    void CompileFor();
    void CompileBreak();
    void CompileIncDec(bool increment);
    std::string LoopLabel(char letter) const; // "\"<line, at least 3 digits><letter>\""

    // expressions.cpp
    void CompileBinaryOperator(BinaryOperator op);
    void LoadSymbol(const TSymbol& symbol);
    std::string ConstantOperand(const std::string& value); // a constant's value as the listing takes it

    // functions.cpp
    void DeclareFunctionSymbol(const std::string& name, std::int32_t kind, int parameters, bool implemented);
    std::string ByNameOperand(const std::string& name, bool quoted); // a game call's "@name" operand

    // objects.cpp: one property of an object form, written inside its property list
    void CompileProperty(const std::string& keyword, IffTextWriter& form);

    bool ErrorSince(int errorCount) const; // an error was reported since the count was taken
    // The register of the slot __ST<depth> as the table last gave it, while the table holds the same.
    std::optional<std::int32_t> KnownSlotRegister(int depth) const;
    void KnowSlotRegister(int depth, std::int32_t r);

    TCompiler& compiler_;           // the unit being compiled
    std::string indent_;            // the listing writer's current indentation
    std::vector<char> joined_;      // EmitJoined's line buffer, never shrunk
    int nesting_ = 0;               // current nesting of expressions and statements
    int compounds_ = 0;             // compound statements open; the first is a function body's
    int functionSymbols_ = 0;       // table position of the current function's first parameter or local
    std::int32_t functionLine_ = 0; // line of the current function's name
    // Every binary operator looks up two expression-stack slots by name; their registers are kept here
    // while the symbol table's generation stays what it was when they were looked up.
    std::vector<std::optional<std::int32_t>> slotRegisters_;
    std::uint64_t slotGeneration_ = 0;
};

} // namespace velkor
