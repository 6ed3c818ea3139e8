// velkorc tokens: watch a scanner from the shell.
#include "cli/cli.h"
#include "platform/text_file.h"
#include "scanner/scanner.h"

#include <iostream>

namespace velkor::cli {

namespace {
std::string Escape(const std::string& text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
        case '\r': out += "\\r"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\0': out += "\\0"; break;
        case '\\': out += "\\\\"; break;
        default: out += c;
        }
    }
    return out;
}
} // namespace

int RunTokens(const Options& options) {
    std::string text = LoadTextFile(options.files.front());
    std::unique_ptr<TScanner> scanner;
    if (options.fastScanner)
        scanner = std::make_unique<TFastScanner>();
    else
        scanner = std::make_unique<TScanner>();
    scanner->LineMarkers = !options.noLineMarkers;
    scanner->SetText(std::move(text));

    std::string out;
    for (;;) {
        const std::int32_t before = scanner->Position();
        std::string token = scanner->NextToken();
        out += std::to_string(scanner->Line());
        out += '\t';
        out += std::to_string(scanner->TokenKind());
        out += '\t';
        out += Escape(token);
        out += '\n';
        if (scanner->TokenKind() == tkEndOfText) break;
        // A scanner that cannot move on (an empty token of other characters) would repeat it forever.
        if (scanner->Position() == before) break;
        if (out.size() > (1u << 16)) {
            std::cout << out;
            out.clear();
        }
    }
    std::cout << out;
    return kExitOk;
}

} // namespace velkor::cli
