#include "iff/iff_items.h"

namespace velkor {

TForm::~TForm() {
    std::vector<std::unique_ptr<TForm>> pending = std::move(Forms);
    while (!pending.empty()) {
        std::unique_ptr<TForm> form = std::move(pending.back());
        pending.pop_back();
        for (auto& child : form->Forms) pending.push_back(std::move(child));
        form->Forms.clear(); // so its own destructor finds nothing left to walk
    }
}

std::vector<const TIffItem*> TForm::Children() const {
    std::vector<const TIffItem*> items;
    items.reserve(Forms.size() + Chunks.size());
    auto form = Forms.begin();
    auto chunk = Chunks.begin();
    while (form != Forms.end() || chunk != Chunks.end()) {
        if (chunk == Chunks.end() || (form != Forms.end() && (*form)->Offset < (*chunk)->Offset))
            items.push_back((form++)->get());
        else
            items.push_back((chunk++)->get());
    }
    return items;
}

} // namespace velkor
