// The tree a TIffReader builds from one scan of binary IFF: forms holding chunks and further forms.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace velkor {

class TForm;

class TIffItem {
public:
    TIffItem(std::string id, std::int64_t offset, std::int64_t size, TForm* parent)
        : ID(std::move(id)), Offset(offset), Size(size), Parent(parent) {}
    virtual ~TIffItem() = default;
    TIffItem(const TIffItem&) = delete;
    TIffItem& operator=(const TIffItem&) = delete;

    virtual bool IsForm() const = 0;

    std::string ID;      // chunk id, or the form's type (never "FORM"); 4 bytes
    std::int64_t Offset; // position of the item's header in the data
    std::int64_t Size;   // the header's 32-bit size field, rounded up to even
    TForm* Parent;       // the owning form; null for the root
};

class TChunk final : public TIffItem {
public:
    using TIffItem::TIffItem;
    bool IsForm() const override { return false; }
};

class TForm final : public TIffItem {
public:
    using TIffItem::TIffItem;
    // Frees the subtree without recursion, however deep the input nested its forms.
    ~TForm() override;

    bool IsForm() const override { return true; }

    // True when an item starting at `offset` lies inside this form: strictly between the form's offset
    // and offset + Size. The 8-byte FORM header is not allowed for, so an item in the last 8 bytes of
    // the span belongs to the form above; files in the wild depend on that attribution.
    bool Contains(std::int64_t offset) const { return Offset < offset && offset < Offset + Size; }

    // Child forms and chunks merged into file order.
    std::vector<const TIffItem*> Children() const;

    std::vector<std::unique_ptr<TChunk>> Chunks; // owned chunks in file order
    std::vector<std::unique_ptr<TForm>> Forms;   // owned child forms in file order
    int LastFound = -1;                          // index in Chunks of the chunk last found by id, or -1
};

} // namespace velkor
