// Case files: a folder of texts, each holding cases as `>` input lines and the `<` lines expected out.
// A block of `=` lines is a template the cases after it share: a case's input stands in for its `@@`.
// Any other line is a comment. Input and expected lines take the escapes \r \n \t \\ and \xNN. With
// VELKOR_UPDATE_CASES set, a run writes what it got in place of every case's `<` lines instead.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace velkor::test {

inline std::string Unescape(const std::string& s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] != '\\' || i + 1 == s.size()) {
            out += s[i];
            continue;
        }
        const char c = s[++i];
        if (c == 'x' && i + 2 < s.size() + 1) {
            out += static_cast<char>(std::stoi(s.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else
            out += c == 'r' ? '\r' : c == 'n' ? '\n' : c == 't' ? '\t' : c;
    }
    return out;
}

inline std::string Escape(const std::string& s) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : s) {
        if (c == '\\')
            out += "\\\\";
        else if (c < 0x20 || c >= 0x7F)
            out += std::string("\\x") + hex[c >> 4] + hex[c & 15];
        else
            out += static_cast<char>(c);
    }
    return out;
}

// Bytes written as hex pairs and "quoted text"; `{ ... }` stands for its contents behind their size as
// a big-endian 32-bit number, and `*N` repeats the byte before it N times in all.
inline std::string ParseBytes(const std::string& s, std::size_t& i) {
    std::string out;
    while (i < s.size()) {
        const char c = s[i];
        if (c == ' ') {
            ++i;
        } else if (c == '"') {
            const std::size_t end = s.find('"', i + 1);
            out += Unescape(s.substr(i + 1, end - i - 1));
            i = end + 1;
        } else if (c == '{') {
            const std::string body = ParseBytes(s, ++i);
            for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(body.size() >> shift);
            out += body;
        } else if (c == '}') {
            ++i;
            return out;
        } else if (c == '*') {
            std::size_t used = 0;
            const int n = std::stoi(s.substr(i + 1), &used);
            out.append(static_cast<std::size_t>(n - 1), out.back());
            i += 1 + used;
        } else {
            out += static_cast<char>(std::stoi(s.substr(i, 2), nullptr, 16));
            i += 2;
        }
    }
    return out;
}

inline std::vector<std::uint8_t> ParseBytes(const std::string& s) {
    std::size_t i = 0;
    const std::string b = ParseBytes(s, i);
    return {b.begin(), b.end()};
}

inline std::string Hex(const std::vector<std::uint8_t>& bytes) {
    static const char* hex = "0123456789ABCDEF";
    std::string out;
    for (std::uint8_t b : bytes) out += std::string{hex[b >> 4], hex[b & 15]};
    return out;
}

struct Case {
    int line = 0;                   // of its first input line
    std::vector<std::string> input; // unescaped
    std::vector<std::string> raw;   // as written
    std::vector<std::string> frame; // the template in force, unescaped

    // The input put into the template, when there is one.
    std::vector<std::string> Framed(std::size_t skip = 0) const {
        const std::vector<std::string> lines(input.begin() + static_cast<std::ptrdiff_t>(skip), input.end());
        if (frame.empty()) return lines;
        std::vector<std::string> out;
        for (const auto& l : frame) {
            const std::size_t at = l.find("@@");
            if (at == std::string::npos) {
                out.push_back(l);
                continue;
            }
            for (std::size_t k = 0; k < lines.size(); ++k)
                out.push_back((k == 0 ? l.substr(0, at) : "") + lines[k] +
                              (k + 1 == lines.size() ? l.substr(at + 2) : ""));
        }
        return out;
    }
    std::vector<std::string> expect; // as written
};

// Runs every case of every `*.cases` file in `folder` through `run`, which gives the output lines.
inline void RunCaseFolder(const std::filesystem::path& folder,
                          const std::function<std::vector<std::string>(const Case&)>& run) {
    const bool update = std::getenv("VELKOR_UPDATE_CASES") != nullptr;
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ".cases") continue;
        std::ifstream in(entry.path(), std::ios::binary);
        std::vector<std::string> lines;
        for (std::string l; std::getline(in, l);) lines.push_back(l);
        std::vector<std::string> rewritten, frame;
        for (std::size_t i = 0; i < lines.size();) {
            if (lines[i].starts_with('=')) {
                if (i == 0 || !lines[i - 1].starts_with('=')) frame.clear();
                frame.push_back(Unescape(lines[i].substr(std::min<std::size_t>(2, lines[i].size()))));
            }
            if (!lines[i].starts_with('>')) {
                rewritten.push_back(lines[i++]);
                continue;
            }
            Case c;
            c.frame = frame;
            c.line = static_cast<int>(i + 1);
            for (; i < lines.size() && lines[i].starts_with('>'); ++i) {
                rewritten.push_back(lines[i]);
                c.raw.push_back(lines[i].substr(std::min<std::size_t>(2, lines[i].size())));
                c.input.push_back(Unescape(c.raw.back()));
            }
            for (; i < lines.size() && lines[i].starts_with('<'); ++i)
                c.expect.push_back(lines[i].substr(std::min<std::size_t>(2, lines[i].size())));
            std::vector<std::string> got = run(c);
            for (auto& g : got) g = Escape(g);
            for (const auto& g : got) rewritten.push_back(g.empty() ? "<" : "< " + g);
            ++count;
            if (update) continue;
            std::ostringstream diff;
            for (std::size_t k = 0; k < std::max(got.size(), c.expect.size()); ++k)
                if (k >= got.size() || k >= c.expect.size() || got[k] != c.expect[k])
                    diff << "  line " << k + 1 << ": want `" << (k < c.expect.size() ? c.expect[k] : "")
                         << "`\n           got  `" << (k < got.size() ? got[k] : "") << "`\n";
            if (!diff.str().empty())
                ADD_FAILURE_AT(entry.path().string().c_str(), c.line) << "case differs:\n" << diff.str();
        }
        if (update) {
            std::ofstream out(entry.path(), std::ios::binary | std::ios::trunc);
            for (const auto& l : rewritten) out << l << '\n';
        }
    }
    EXPECT_GT(count, 0) << "no cases in " << folder;
}

} // namespace velkor::test
