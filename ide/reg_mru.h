// The list of recently used files, kept in the machine registry under one key and shown as a submenu.
// Entries are compared without regard to case; the newest entry comes first.
#pragma once

#include <QObject>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class QMenu;

namespace velkor {

class Registry;

struct TMruEntry {
    std::string Path;     // the file
    std::int32_t Tag = 0; // written behind the path as "|<tag>" when not 0
};

class TRegMru : public QObject {
    Q_OBJECT

public:
    explicit TRegMru(QObject* parent = nullptr);
    ~TRegMru() override;

    std::string RootKey = "HKEY_LOCAL_MACHINE";      // the registry root; only the machine root exists here
    std::string KeyPath = "\\Software\\velkor\\mru"; // the key holding the list
    int MaxItems = 10;                               // the list never holds more entries
    bool LazyWrite = false;                          // write only on Write() or destruction, not per change
    bool SerializeList = true;                       // keep the list in the registry at all
    Registry* ActiveRegistry = nullptr;              // where the key lives; null means MachineRegistry()
    std::function<void(const std::string& path)> OnItemClick; // a menu entry was chosen

    // Reads the key's entries behind those already in the list (a missing key adds none).
    void Load();
    // Puts the path first (moving it when present) and drops the oldest entries beyond MaxItems.
    void Add(const std::string& path, std::int32_t tag = 0);
    // Empties the list and deletes every value of the key except "DEFAULT".
    void Clear();
    // Writes the whole list now (creating the key); the stored entries are read first if they never were.
    void Write();

    const std::vector<TMruEntry>& Items() const { return items_; }

    // The submenu the entries are shown in; rebuilt at every change.
    void AttachMenu(QMenu* menu);

private:
    Registry& Store() const;
    void Changed();
    void RebuildMenu();
    void DeleteValuesExceptDefault();
    void ReadStored();

    std::vector<TMruEntry> items_; // newest first
    QMenu* menu_ = nullptr;        // the submenu showing the entries, not owned
    bool dirty_ = false;           // a lazy change not yet written
    bool storedRead_ = false;      // the key's entries have been read into the list (or cleared)
};

} // namespace velkor
