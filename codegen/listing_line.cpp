#include "codegen/listing_line.h"

#include "platform/strings.h"

namespace velkor {

std::string_view ListingIndent(std::string_view line) {
    return line.substr(0, line.size() - Trim(line).size());
}

std::vector<std::string> ListingWords(std::string_view line) {
    const std::string_view text = Trim(line);
    std::vector<std::string> words;
    if (text.empty()) return words;
    std::size_t pos = 0;
    for (;;) {
        std::size_t end = text.find(' ', pos);
        if (text[pos] == '"') {
            const std::size_t close = text.find('"', pos + 1);
            const std::size_t stop = close == std::string_view::npos ? text.size() : close;
            words.emplace_back(text.substr(pos + 1, stop - pos - 1));
            end = close == std::string_view::npos ? std::string_view::npos : text.find(' ', close);
        } else {
            words.emplace_back(
                text.substr(pos, end == std::string_view::npos ? std::string_view::npos : end - pos));
        }
        if (end == std::string_view::npos) break;
        pos = end + 1;
        if (pos >= text.size()) {
            words.emplace_back();
            break;
        }
    }
    return words;
}

std::string WithoutSemicolon(std::string_view word) {
    std::string result(word);
    const std::size_t semicolon = result.find(';');
    if (semicolon != std::string::npos) result.erase(semicolon, 1);
    return result;
}

} // namespace velkor
