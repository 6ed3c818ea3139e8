// Where the files that a unit or a textual-IFF text names may be written. Such names come from the input
// ("IFF "../../x.iff"", #SETOUTPUTPATH, a drive path into the Wine prefix), and an input may come from
// anyone: by default a binary or side file is written only inside the output folder, below the unit's (or
// text's) own folder, or inside a named folder ($compiler$, the game folders, the user's own names).
// Paths that the user names on the command line or in a dialog are the user's choice and are not checked.
//
// Whatever is allowed, no output may be one of the run's own input files (the same file by device and
// inode, whatever name leads to it).
#pragma once

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace velkor {

class OutputPolicy {
public:
    // Output may go inside `folder` or anywhere below it. The folder need not exist yet.
    void AllowFolder(const std::filesystem::path& folder);
    // Every named folder of the table (NamedFolders()) as AllowFolder.
    void AllowNamedFolders();
    // Lifts the confinement; inputs stay protected.
    void AllowAnywhere(bool anywhere) { anywhere_ = anywhere; }
    bool AllowsAnywhere() const { return anywhere_; }
    // How the user lifts the confinement, said in the refusal ("use --allow-output-anywhere").
    void SetHowToAllow(std::string text) { howToAllow_ = std::move(text); }

    // The file is read by this run and must not be replaced by its output. A file that does not exist is
    // ignored.
    void ProtectInput(const std::filesystem::path& file);

    // Throws EInOutError when `path` may not be written: it is an input, or it lies (after following
    // links) outside every allowed folder.
    void Check(const std::filesystem::path& path) const;
    // As Check, the input rule only.
    void CheckNotInput(const std::filesystem::path& path) const;

private:
    std::vector<std::filesystem::path> folders_; // allowed, absolute, links resolved
    std::vector<std::filesystem::path> inputs_;  // the run's inputs, compared by device and inode
    bool anywhere_ = false;
    std::string howToAllow_ = "use --allow-output-anywhere to allow it";
};

// The absolute path a write to `path` replaces: links followed, including a last component that is a link
// to a file that does not exist yet.
std::filesystem::path WriteTargetOf(const std::filesystem::path& path);

// Whether the two paths name one existing file (same device and inode).
bool IsSameFile(const std::filesystem::path& a, const std::filesystem::path& b);

} // namespace velkor
