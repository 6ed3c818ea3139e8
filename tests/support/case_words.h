// The lines of the data-driven case files under tests/cases: words split at blanks, quoted words with
// escapes, so that any bytes fit on one line.
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
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

// Puts the folders in: ${DIR} as it is, ${dir} in lower case, ${ZDIR} as Wine names it from Windows.
inline std::string ExpandFolder(std::string s, const std::filesystem::path& folder) {
    std::string lower = folder.string(), wine = "Z:" + folder.string();
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    std::replace(wine.begin(), wine.end(), '/', '\\');
    for (const auto& [name, value] :
         {std::pair{"${DIR}", folder.string()}, {"${dir}", lower}, {"${ZDIR}", wine}})
        for (std::size_t at = 0; (at = s.find(name, at)) != std::string::npos; at += value.size())
            s.replace(at, std::string_view(name).size(), value);
    return s;
}

// False for a line that holds only on the other kind of system; a "posix:" or "windows:" line for this
// one loses its mark.
inline bool ForThisSystem(std::string& line) {
#ifdef _WIN32
    const std::string_view mine = "windows:", other = "posix:";
#else
    const std::string_view mine = "posix:", other = "windows:";
#endif
    if (line.starts_with(other)) return false;
    if (line.starts_with(mine)) line.erase(0, mine.size());
    return true;
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
