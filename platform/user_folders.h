// Folders that belong to the user rather than to the program: the home folder, the configuration folder
// and the Wine prefix where the games are installed on Linux. Each is looked up afresh at every call, so a
// changed environment (as the tests make) takes effect at once.
#pragma once

#include <filesystem>

namespace velkor {

// $HOME; empty when it is not set.
std::filesystem::path HomeFolder();

// Velkor's own configuration folder: $XDG_CONFIG_HOME/velkor, by default ~/.config/velkor. The folder
// need not exist; writers create it.
std::filesystem::path UserConfigFolder();

// $WINEPREFIX, by default ~/.wine; empty when neither is known.
std::filesystem::path WinePrefix();

} // namespace velkor
