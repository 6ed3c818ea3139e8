// Scans arbitrary bytes, then walks the whole tree and reads every chunk every way a caller can.
#include "iff/iff_reader.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

void ReadChunk(velkor::TIffReader& reader, const velkor::TChunk& chunk) {
    try {
        (void)reader.ChunkData(chunk);
    } catch (const velkor::EIffReader&) {
    }
    reader.OpenChunk(chunk);
    try {
        while (reader.Position() < reader.Size() + 8) (void)reader.ReadString();
    } catch (const velkor::EIffReader&) {
    }
    reader.OpenChunk(chunk);
    try {
        std::uint8_t buf[7];
        for (;;) reader.Read(buf);
    } catch (const velkor::EIffReader&) {
    }
    try {
        reader.OpenChunk(chunk.ID); // the first of its id in the form
        (void)reader.ReadLong();
    } catch (const velkor::EIffReader&) {
    }
    reader.CloseChunk();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        velkor::TIffReader reader(std::span(data, size));
        std::vector<const velkor::TForm*> pending{&reader.Root()};
        while (!pending.empty()) {
            const velkor::TForm* form = pending.back();
            pending.pop_back();
            for (const velkor::TIffItem* item : form->Children()) {
                if (item->IsForm())
                    pending.push_back(static_cast<const velkor::TForm*>(item));
                else
                    ReadChunk(reader, *static_cast<const velkor::TChunk*>(item));
            }
        }
        // Back to the root, then in and out of forms by name.
        if (reader.CurrentChunk()) reader.CloseChunk();
        try {
            for (;;) reader.CloseForm();
        } catch (const velkor::EIffReader&) {
        }
        for (const auto& form : reader.Root().Forms) {
            reader.OpenForm(form->ID);
            (void)reader.Size();
            reader.CloseForm();
        }
        while (!reader.CurrentForm().Forms.empty()) reader.OpenForm(reader.CurrentForm().Forms[0]->ID);
    } catch (const velkor::EIffReader&) {
    }
    return 0;
}
