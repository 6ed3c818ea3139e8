// Where in our own code a diagnostic was raised, for the "raised in" lines. std::source_location where the
// standard library offers it; otherwise (clang 14 on libstdc++) the compiler builtins it is made of.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#if __has_include(<source_location>)
#include <source_location>
#endif

namespace velkor {

#if defined(__cpp_lib_source_location)
using SourceLocation = std::source_location;
#else
class SourceLocation {
public:
    static constexpr SourceLocation current(const char* function = __builtin_FUNCTION(),
                                            std::uint_least32_t line = __builtin_LINE()) noexcept {
        SourceLocation where;
        where.function_ = function;
        where.line_ = line;
        return where;
    }
    constexpr const char* function_name() const noexcept { return function_; }
    constexpr std::uint_least32_t line() const noexcept { return line_; }

private:
    const char* function_ = "";    // the routine's name
    std::uint_least32_t line_ = 0; // the line in its source file
};
#endif

// "void velkor::TCodeGen::CompileFactor(int)" -> "TCodeGen.CompileFactor", the way the exception texts
// ("TIffWriter.CloseForm: ...") name routines. Where the compiler gives the bare name ("CompileFactor"),
// that is what is shown.
inline std::string RoutineName(const SourceLocation& where) {
    std::string_view f = where.function_name();
    if (size_t paren = f.find('('); paren != std::string_view::npos) f = f.substr(0, paren);
    if (size_t space = f.rfind(' '); space != std::string_view::npos) f = f.substr(space + 1);
    constexpr std::string_view kNamespace = "velkor::";
    if (f.starts_with(kNamespace)) f.remove_prefix(kNamespace.size());
    std::string name(f);
    for (size_t i = 0; (i = name.find("::", i)) != std::string::npos;) name.replace(i, 2, ".");
    return name;
}

} // namespace velkor
