#include "ide/reg_mru.h"

#include "ide/ide_ini.h"
#include "platform/numbers.h"
#include "platform/registry.h"
#include "platform/strings.h"

#include <QAction>
#include <QMenu>

#include <algorithm>

namespace velkor {

TRegMru::TRegMru(QObject* parent) : QObject(parent) {}

TRegMru::~TRegMru() {
    if (dirty_) {
        try {
            Write();
        } catch (const std::exception&) {
            // A registry that cannot be written at exit loses the last changes, nothing else.
        }
    }
}

Registry& TRegMru::Store() const {
    return ActiveRegistry ? *ActiveRegistry : MachineRegistry();
}

void TRegMru::Load() {
    ReadStored();
    RebuildMenu();
}

void TRegMru::ReadStored() {
    // Entries already in the list (files opened before the list was loaded) stay in front; the stored
    // ones follow unless they are there already.
    storedRead_ = true;
    Registry& registry = Store();
    if (!registry.OpenKey(KeyPath, false)) return;
    const std::vector<std::string> names = registry.ValueNames(KeyPath);
    const auto number = [&](const std::string& name) {
        return StrToIntDef(Trim(registry.ReadString(KeyPath, name).value_or("")), 0);
    };
    int count = 0;
    bool haveCount = false;
    bool haveMax = false;
    for (const std::string& name : names) {
        if (!haveCount && SameText(name, "COUNT")) {
            count = number(name);
            haveCount = true;
        } else if (!haveMax && SameText(name, "MAXFILES")) {
            const int maxFiles = number(name);
            // A maximum below one would make the list useless; such a value is ignored.
            if (maxFiles >= 1) MaxItems = maxFiles;
            haveMax = true;
        }
        if (haveCount && haveMax) break;
    }
    if (count < 1) return;
    for (const std::string& name : names) {
        if (SameText(name, "DEFAULT") || SameText(name, "COUNT") || SameText(name, "MAXFILES")) continue;
        if (static_cast<int>(items_.size()) >= MaxItems) break;
        const std::string value = registry.ReadString(KeyPath, name).value_or("");
        TMruEntry entry;
        const size_t bar = value.rfind('|');
        if (bar == std::string::npos) {
            entry.Path = value;
        } else {
            entry.Path = value.substr(0, bar);
            entry.Tag = StrToIntDef(std::string_view(value).substr(bar + 1), 0);
        }
        const bool known = std::any_of(items_.begin(), items_.end(),
                                       [&](const TMruEntry& e) { return SameText(e.Path, entry.Path); });
        if (!known && !entry.Path.empty()) items_.push_back(std::move(entry));
    }
    if (static_cast<int>(items_.size()) > MaxItems) items_.resize(static_cast<size_t>(MaxItems));
}

void TRegMru::Add(const std::string& path, std::int32_t tag) {
    if (path.empty()) return;
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const TMruEntry& e) { return SameText(e.Path, path); });
    if (found != items_.end()) items_.erase(found);
    items_.insert(items_.begin(), TMruEntry{path, tag});
    if (MaxItems < 1) MaxItems = 1;
    if (static_cast<int>(items_.size()) > MaxItems) items_.resize(static_cast<size_t>(MaxItems));
    Changed();
}

void TRegMru::Clear() {
    items_.clear();
    dirty_ = false;
    storedRead_ = true;
    if (SerializeList && Store().OpenKey(KeyPath, false)) DeleteValuesExceptDefault();
    RebuildMenu();
}

void TRegMru::DeleteValuesExceptDefault() {
    Registry& registry = Store();
    for (const std::string& name : registry.ValueNames(KeyPath)) {
        if (!SameText(name, "DEFAULT")) registry.DeleteValue(KeyPath, name);
    }
}

void TRegMru::Write() {
    dirty_ = false;
    if (!SerializeList) return;
    // A list written before it was ever read would replace the stored entries by the few added since.
    if (!storedRead_) ReadStored();
    Registry& registry = Store();
    registry.OpenKey(KeyPath, true);
    // Entries from an older, longer list would otherwise be read back as entries.
    DeleteValuesExceptDefault();
    registry.WriteString(KeyPath, "Count", std::to_string(items_.size()));
    registry.WriteString(KeyPath, "MaxFiles", std::to_string(MaxItems));
    for (size_t i = 0; i < items_.size(); ++i) {
        std::string value = items_[i].Path;
        if (items_[i].Tag != 0) value += "|" + std::to_string(items_[i].Tag);
        registry.WriteString(KeyPath, "H" + std::to_string(i), value);
    }
}

void TRegMru::Changed() {
    if (LazyWrite) {
        dirty_ = true;
    } else {
        Write();
    }
    RebuildMenu();
}

void TRegMru::AttachMenu(QMenu* menu) {
    menu_ = menu;
    RebuildMenu();
}

void TRegMru::RebuildMenu() {
    if (!menu_) return;
    menu_->clear();
    for (size_t i = 0; i < items_.size(); ++i) {
        QString caption = ToQ(items_[i].Path);
        caption.replace(u'&', QStringLiteral("&&"));
        if (i < 9) caption = QStringLiteral("&%1 ").arg(i + 1) + caption;
        QAction* action = menu_->addAction(caption);
        const std::string path = items_[i].Path;
        connect(action, &QAction::triggered, this, [this, path] {
            if (OnItemClick) OnItemClick(path);
        });
    }
    menu_->setEnabled(!items_.empty());
}

} // namespace velkor
