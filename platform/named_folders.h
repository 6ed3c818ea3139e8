// Folders that paths may name symbolically as "$name$": the user's own names (values of the registry
// key "\Software\velkor"), "wcso" and "wcp" for the games' installation folders, and "compiler" for the
// executable's folder ("$compiler$\lib" holds the library units).
//
// The table is process-wide, built on first use and kept until the program ends; every function here is
// safe to call from any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velkor {

// One named folder.
struct NamedFolder {
    std::string name;   // the name between the dollar signs
    std::string folder; // the folder, without a trailing separator
};

// The games' installation folders from the machine registry (value "Installed To:" of
// "\Software\Origin Systems\Wing Commander Prophecy" and "...\Wing Commander Secret Ops"), without a
// trailing separator; empty when the key or value is missing.
std::string GameFolderProphecy();
std::string GameFolderSecretOps();

// The table in lookup order. Built from, in this order: every value of "\Software\velkor", "wcso" and
// "wcp" when the game is installed, and "compiler".
std::vector<NamedFolder> NamedFolders();

// Puts the pair in front of every other, so it takes precedence.
void AddNamedFolder(std::string_view name, std::string_view folder);

// Replaces every "$name$" (ignoring case) by its folder, pair by pair in table order, then lower-cases the
// whole result; unknown names stay as written (and lower-cased). The path resolver finds the real folders
// whatever their case.
std::string ExpandPath(std::string_view path);

// Forgets the table (and added pairs) so that the next use builds it again from the registry. For tests.
void ResetNamedFoldersForTesting();

} // namespace velkor
