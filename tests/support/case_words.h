// The lines of the data-driven case files under tests/cases: words split at blanks, quoted words with
// escapes, so that any bytes fit on one line.
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

namespace velkor::test {

// Splits a line into words; a word in double quotes keeps its blanks and takes \r \n \t \\ \" and \xNN.
inline std::vector<std::string> SplitWords(const std::string& line) {
    std::vector<std::string> words;
    std::size_t i = 0;
    while (i < line.size()) {
        if (line[i] == ' ') {
            ++i;
            continue;
        }
        std::string w;
        if (line[i] != '"') {
            while (i < line.size() && line[i] != ' ') w += line[i++];
        } else {
            for (++i; i < line.size() && line[i] != '"'; ++i) {
                if (line[i] != '\\' || i + 1 == line.size()) {
                    w += line[i];
                    continue;
                }
                const char c = line[++i];
                if (c == 'x') {
                    w += static_cast<char>(std::stoi(line.substr(i + 1, 2), nullptr, 16));
                    i += 2;
                } else {
                    w += c == 'r' ? '\r' : c == 'n' ? '\n' : c == 't' ? '\t' : c;
                }
            }
            ++i;
        }
        words.push_back(w);
    }
    return words;
}

// The names of the folder's case files of that extension, without it, sorted.
inline std::vector<std::string> CaseNames(const std::filesystem::path& folder, const std::string& extension) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == extension) names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

// A case's name as a test name: letters and digits, the rest "_".
inline std::string TestNameOf(std::string name) {
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return name;
}

} // namespace velkor::test
