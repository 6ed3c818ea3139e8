#include "codegen/optimizer.h"

#include "codegen/listing_line.h"
#include "platform/strings.h"

#include <optional>

namespace velkor {

namespace {

std::string Word(const std::vector<std::string>& words, std::size_t i) {
    return i < words.size() ? words[i] : std::string();
}

std::string Mnemonic(const std::vector<std::string>& words) {
    return UpperCase(Word(words, 0));
}

std::string Operand(const std::vector<std::string>& words, std::size_t i) {
    return WithoutSemicolon(Word(words, i));
}

// A constant or register text that the word splitting unquoted goes back into quotes when it holds a blank.
std::string Requote(const std::string& text) {
    return text.find(' ') == std::string::npos ? text : "\"" + text + "\"";
}

} // namespace

void TOptimizer::Load(const StringList& lines) {
    lines_ = lines;
}

void TOptimizer::Message(int level, const std::string& text) const {
    if (Wants(level)) OnOutput("[" + std::to_string(counter_) + "] " + text);
}

void TOptimizer::Combining(const std::string& previous, const std::string& current) const {
    if (Wants(3))
        Message(3, "combining \"" + std::string(Trim(previous)) + "\" and \"" + std::string(Trim(current)) +
                       "\"");
}

void TOptimizer::Run() {
    const std::size_t before = lines_.size();
    PassO3();
    PassO8();
    PassO5();
    PassO7();
    Message(1, "optimizer reduced lines from " + std::to_string(before) + " to " +
                   std::to_string(lines_.size()) + " lines.");
}

// A constant loaded into a register and moved on at once goes straight to its final register; the first
// register is deliberately not written any more.
void TOptimizer::PassO3() {
    Message(2, "optimizing o3...");
    StringList out;
    out.reserve(lines_.size());
    std::optional<std::string> target; // destination of the movc just before, if the line before was one
    std::string constant;              // its constant
    for (auto& line : lines_) {
        ++counter_;
        const auto words = ListingWords(line);
        const std::string mnemonic = Mnemonic(words);
        if (mnemonic == "MOVC") {
            target = Operand(words, 1);
            constant = Operand(words, 2);
            out.push_back(std::move(line));
        } else if (mnemonic == "MOVV" && target && Operand(words, 2) == *target) {
            Combining(out.back(), line);
            out.back() = "//o3: " + std::string(Trim(out.back()));
            out.push_back("//o3: " + std::string(Trim(line)));
            out.push_back(std::string(ListingIndent(line)) + "movc " + Word(words, 1) + " " +
                          Requote(constant) + ";");
            target.reset();
        } else {
            target.reset();
            out.push_back(std::move(line));
        }
    }
    lines_ = std::move(out);
}

void TOptimizer::PassO8() {
    Message(2, "optimizing o8...");
    for (auto& line : lines_) {
        ++counter_;
        const auto words = ListingWords(line);
        if (Mnemonic(words) != "MOVV" || Operand(words, 1) != Operand(words, 2)) continue;
        line = std::string(ListingIndent(line)) + "//o8: " + std::string(Trim(line));
        if (Wants(3)) Message(3, "removing \"" + std::string(Trim(line)) + "\"");
    }
}

// A move into a register that is moved on at once becomes one move from the first source; a move back
// into the first source (a swap-back) is left alone.
void TOptimizer::PassO5() {
    Message(2, "optimizing o5...");
    StringList out;
    out.reserve(lines_.size());
    std::optional<std::string> dest; // destination of the movv just before; none after any other line
    std::string source;              // source of the last movv
    for (auto& line : lines_) {
        ++counter_;
        const auto words = ListingWords(line);
        if (Mnemonic(words) != "MOVV") {
            dest.reset();
            out.push_back(std::move(line));
            continue;
        }
        const std::string to = Word(words, 1);
        const std::string from = Operand(words, 2);
        if (dest && from == *dest && source != to) {
            Combining(out.back(), line);
            out.back() = "//o5: " + std::string(Trim(out.back()));
            out.push_back("//o5: " + std::string(Trim(line)));
            line = std::string(ListingIndent(line)) + "movv " + to + " " + Requote(source) + ";";
            // The combined line starts no new chain.
            dest.reset();
        } else {
            dest = to;
        }
        source = from;
        out.push_back(std::move(line));
    }
    lines_ = std::move(out);
}

void TOptimizer::PassO7() {
    Message(2, "optimizing o7...");
    StringList out;
    out.reserve(lines_.size());
    for (auto& line : lines_) {
        ++counter_;
        const auto words = ListingWords(line);
        if (!words.empty() && words[0].starts_with("//")) continue;
        out.push_back(std::move(line));
    }
    lines_ = std::move(out);
}

} // namespace velkor
