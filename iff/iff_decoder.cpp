#include "iff/iff_decoder.h"

#include "iff/iff_compiler.h"
#include "iff/iff_reader.h"
#include "iff/iff_text_writer.h"
#include "iff/name_comments.h"
#include "iff/record_decoder.h"
#include "iff/value_lines.h"
#include "iff/wcp_disassembler.h"
#include "platform/byte_order.h"
#include "platform/numbers.h"
#include "platform/output_policy.h"
#include "platform/path_resolver.h"
#include "platform/strings.h"
#include "platform/text_file.h"

#include <memory>
#include <optional>

namespace velkor {

namespace {

// Indentation stops growing here, so that deeply nested input cannot make the text grow with the square
// of its depth.
constexpr std::size_t kMaxIndentLevels = 32;
// A sink receives the text in pieces of about this size.
constexpr std::size_t kFlushSize = std::size_t{1} << 20;

std::string_view Chars(std::span<const std::uint8_t> b, std::size_t at, std::size_t count) {
    return {reinterpret_cast<const char*>(b.data()) + at, count};
}

// A form type that cannot be quoted, made quotable for the one form that has no parent to hold it raw.
std::string QuotableId(std::string_view id) {
    std::string out(id);
    for (char& c : out) {
        const auto u = static_cast<unsigned char>(c);
        if (u < 0x20 || u > 0x7E || c == '"' || c == '/') c = '_';
    }
    return out;
}

// The reader indexed every chunk it found; one that runs past the data is reported with its message.
void CheckChunksInside(const TIffReader& reader) {
    std::vector<const TForm*> pending{&reader.Root()};
    while (!pending.empty()) {
        const TForm* form = pending.back();
        pending.pop_back();
        for (const auto& chunk : form->Chunks) reader.ChunkData(*chunk);
        for (const auto& child : form->Forms) pending.push_back(child.get());
    }
}

// The text gives the outermost form only the bytes up to its end. An item the reader found reaching past that
// end would be cut short in the assembled file, which the reader then refuses: such a file is refused here.
void CheckInsideRoot(const TForm& root, std::int64_t rootEnd) {
    auto fail = [&](std::string_view kind, const TIffItem& item) {
        throw EIffDecoder("TIffDecoder: " + std::string(kind) + " (" + VisibleBytes(item.ID) +
                          ") at offset " + IntToHex(static_cast<std::uint32_t>(item.Offset), 8) +
                          " runs past the end of form " + VisibleBytes(root.ID) + "!");
    };
    std::vector<const TForm*> pending{&root};
    while (!pending.empty()) {
        const TForm* form = pending.back();
        pending.pop_back();
        for (const auto& chunk : form->Chunks)
            if (chunk->Offset + 8 + chunk->Size > rootEnd) fail("Chunk", *chunk);
        for (const auto& child : form->Forms) {
            if (child->Offset + 12 > rootEnd) fail("Form", *child);
            pending.push_back(child.get());
        }
    }
}

class Walk {
public:
    Walk(const TIffReader& reader, std::string_view fileName, std::int64_t limit,
         const DecodeOptions& options, const TextSink& sink)
        : sink_(sink), reader_(reader), bytes_(reader.Bytes()), sourceName_(reader.SourceName()),
          name_(SafeFileName(FileNamePart(fileName))), limit_(limit), options_(options),
          text_(result_.text, kMaxIndentLevels) {}

    DecodedIff Run() {
        // The reader has read a whole FORM header, or a chunk header when the data starts with a chunk,
        // which the reader takes but the text cannot hold.
        if (Chars(bytes_, 0, 4) != "FORM")
            throw EIffReader("TIffReader: " + sourceName_ + "not a valid .iff file!");
        const std::string_view type = Chars(bytes_, 8, 4);
        const std::int64_t end = 8 + EvenFormSize(0);
        // A file cut short keeps the items it still holds, as the reader indexed them.
        const bool truncated = end > DataEnd();
        if (truncated) CheckCutRoot();
        // The text can only give the form the size of its items.
        const std::int64_t rootEnd = std::max<std::int64_t>(std::min(end, DataEnd()), 12);
        if (end < 12) result_.lossless = false;
        CheckInsideRoot(reader_.Root(), rootEnd);
        if (!IsWritableId(type)) {
            result_.lossless = false;
            result_.notes.push_back("the form type cannot be written as it is and becomes \"" +
                                    QuotableId(type) + "\": the decode is not exact");
        }

        text_.Open("IFF \"" + name_ + "\"");
        OpenForm(IsWritableId(type) ? std::string(type) : QuotableId(type), rootEnd, truncated);
        NoteOddSize(0);
        if (truncated) NoteTruncated(0, end);
        pos_ = 12;
        Items();
        TopLevelForms(rootEnd);
        text_.Close();
        Flush(true);
        return std::move(result_);
    }

private:
    // Further top-level forms after the first (a linked unit's editor form follows the game's form). What
    // no form can hold at this level - other bytes behind the last form - is left out of the text.
    void TopLevelForms(std::int64_t at) {
        const auto total = static_cast<std::int64_t>(bytes_.size());
        while (total - at >= 12) {
            const auto here = static_cast<std::size_t>(at);
            const std::int64_t size = EvenFormSize(here);
            const std::string_view type = Chars(bytes_, here + 8, 4);
            if (Chars(bytes_, here, 4) != "FORM" || size < 4 || size > total - at - 8 || !IsWritableId(type))
                break;
            NoteOddSize(here);
            OpenForm(std::string(type), at + 8 + size, false);
            pos_ = at + 12;
            Items();
            at += 8 + size;
        }
        if (at < total) {
            result_.lossless = false;
            result_.notes.push_back(std::to_string(total - at) + " bytes at offset " +
                                    IntToHex(static_cast<std::uint32_t>(at), 8) +
                                    " lie behind the last form and are left out: the decode is not exact");
        }
    }

    struct Frame {
        std::int64_t end; // offset just behind the form's last byte, or the end of the data
        std::string type; // the form type
        bool insideShip;  // this form or one above is a SHIP, CAPS or CMIS
        bool truncated;   // the data ends before the form's size says it does
    };

    std::int64_t DataEnd() const { return static_cast<std::int64_t>(bytes_.size()); }

    // The size field of the FORM at `at`, made even as every size is.
    std::int64_t EvenFormSize(std::size_t at) const {
        const std::uint32_t size = ReadBigEndian32(bytes_, at + 4);
        return std::int64_t{size} + (size & 1);
    }

    // An odd size field is the one thing of a form the text cannot give back: the assembler writes the even
    // size of what the form holds.
    void NoteOddSize(std::size_t at) {
        const std::uint32_t size = ReadBigEndian32(bytes_, at + 4);
        if (!(size & 1)) return;
        result_.lossless = false;
        if (oddForms_++ == 0)
            result_.notes.push_back("form " + VisibleBytes(Chars(bytes_, at + 8, 4)) + " at offset " +
                                    IntToHex(static_cast<std::uint32_t>(at), 8) + " has the odd size " +
                                    std::to_string(size) +
                                    ", which the text cannot keep: the decode is not exact");
    }

    // Cut short, the outermost form ends at the cut once assembled. An empty chunk that ends there then
    // starts in the form's last 8 bytes, which the reader gives to the form above, and there is none: the
    // file the text makes is refused, and so is this one, with the reader's message for that file.
    void CheckCutRoot() const {
        std::vector<const TForm*> pending{&reader_.Root()};
        while (!pending.empty()) {
            const TForm* form = pending.back();
            pending.pop_back();
            for (const auto& chunk : form->Chunks)
                if (chunk->Offset + 8 >= DataEnd())
                    throw EIffReader("TIffReader: " + sourceName_ + ", error at offset " +
                                     IntToHex(static_cast<std::uint32_t>(chunk->Offset), 8) + "!");
            for (const auto& child : form->Forms) pending.push_back(child.get());
        }
    }

    void NoteTruncated(std::int64_t at, std::int64_t end) {
        result_.lossless = false;
        result_.notes.push_back("the file is truncated: form " +
                                VisibleBytes(Chars(bytes_, static_cast<std::size_t>(at) + 8, 4)) +
                                " at offset " + IntToHex(static_cast<std::uint32_t>(at), 8) + " ends at " +
                                IntToHex(static_cast<std::uint32_t>(end), 8) + ", the data at " +
                                IntToHex(static_cast<std::uint32_t>(DataEnd()), 8) +
                                ": the decode is not exact");
    }

    // Hands the text written so far to the sink once there is enough of it, or at the end.
    void Flush(bool end) {
        if (!sink_ || (!end && result_.text.size() < kFlushSize)) return;
        sink_(result_.text);
        result_.text.clear();
    }

    void OpenForm(std::string type, std::int64_t end, bool truncated) {
        text_.Open("FORM \"" + type + "\"");
        const bool ship = IsShipForm(type) || (!frames_.empty() && frames_.back().insideShip);
        frames_.push_back({end, std::move(type), ship, truncated});
    }

    // Every item in file order, each inside the form whose true size holds it.
    void Items() {
        while (!frames_.empty()) {
            const Frame& form = frames_.back();
            Flush(false);
            if (pos_ >= form.end) {
                text_.Close();
                frames_.pop_back();
                continue;
            }
            const std::int64_t left = form.end - pos_;
            if (left < 8) {
                Raw(pos_, form.end);
                continue;
            }
            const auto at = static_cast<std::size_t>(pos_);
            const std::string_view id = Chars(bytes_, at, 4);
            const std::int64_t size = ReadBigEndian32(bytes_, at + 4);
            if (id == "FORM") {
                const std::int64_t evenSize = EvenFormSize(at);
                // Inside a form the data cuts short, a form running to the cut is cut with it.
                const bool cut =
                    form.truncated && form.end == DataEnd() && left >= 12 && pos_ + 8 + evenSize > DataEnd();
                if (evenSize < 4 || (evenSize > left - 8 && !cut)) {
                    Raw(pos_, form.end); // a size its parent cannot hold: the rest of the parent as it is
                } else if (frames_.size() >= static_cast<std::size_t>(TIffCompiler::kMaxNesting) ||
                           !IsWritableId(Chars(bytes_, at + 8, 4))) {
                    Raw(pos_, cut ? form.end : pos_ + 8 + evenSize);
                } else {
                    NoteOddSize(at);
                    OpenForm(std::string(Chars(bytes_, at + 8, 4)), cut ? form.end : pos_ + 8 + evenSize,
                             cut);
                    pos_ += 12;
                }
                continue;
            }
            const std::int64_t padded = size + (size & 1);
            if (padded > left - 8) {
                Raw(pos_, form.end);
            } else if ((size & 1) && bytes_[at + 8 + static_cast<std::size_t>(size)] != 0) {
                Raw(pos_, pos_ + 8 + padded); // the writer's pad byte is always zero
            } else if (!IsWritableId(id) && IdValue(id) == static_cast<std::uint32_t>(kNoValue)) {
                Raw(pos_, pos_ + 8 + padded);
            } else {
                Chunk(id, size);
                pos_ += 8 + padded;
            }
        }
    }

    void Chunk(std::string_view id, std::int64_t size) {
        if (IsWritableId(id))
            text_.Open("CHUNK \"" + std::string(id) + "\"");
        else
            text_.Open("CHUNK $" + IntToHex(IdValue(id), 8) + IdName(id));
        const auto data = bytes_.subspan(static_cast<std::size_t>(pos_) + 8, static_cast<std::size_t>(size));
        const std::string_view indent = text_.Indent();
        if (options_.disassemble && IsFunctionChunk(id) && StartsWithFunctionRecord(data)) {
            WriteFunctionRecords(result_.text, indent, data, Names(), [this] { Flush(false); });
        } else if (size > limit_) {
            SideFileLines(id, pos_, data);
        } else if (const NamedWordsChunk kind = NamedWordsChunkOf(id, frames_.back().type);
                   options_.disassemble && kind != NamedWordsChunk::None) {
            WriteNamedWords(result_.text, indent, data, kind, Names());
        } else if (const RecordLayout* layout = FindSpecialDecoder(Place(id))) {
            if (!WriteRecords(result_.text, indent, data, *layout, options_.exactFloats))
                result_.lossless = false;
        } else {
            // In slices, so that the sink takes the rows of a large chunk as they come.
            constexpr std::size_t kSlice = std::size_t{1} << 16;
            for (std::size_t at = 0; at < data.size(); at += kSlice) {
                WriteByteRows(result_.text, indent, data.subspan(at, std::min(kSlice, data.size() - at)));
                Flush(false);
            }
        }
        text_.Close();
    }

    // " // <name>" for the id of an object property whose name the system knows, else nothing.
    std::string IdName(std::string_view id) const {
        if (!options_.disassemble || !options_.names || frames_.back().type != "PROP") return {};
        const std::string* name = options_.names->ById(IdValue(id));
        return name ? " // " + *name : std::string();
    }

    // The chunk where mission, series and sector forms keep the records of their script functions.
    bool IsFunctionChunk(std::string_view id) const {
        if (id != "FUNC") return false;
        const std::string_view parent = frames_.back().type;
        return parent == "MISN" || parent == "SERS" || parent == "MED_";
    }

    // The names for the function records, with the names this file records, gathered at the first use.
    WcpNames& Names() {
        if (!names_) {
            AddNamesOfFile(fileNames_, bytes_);
            names_.emplace(options_.names.get(), &fileNames_);
        }
        return *names_;
    }

    ChunkPlace Place(std::string_view id) const {
        ChunkPlace place;
        place.id = id;
        place.parent = frames_.back().type;
        if (frames_.size() > 1) place.grandparent = frames_[frames_.size() - 2].type;
        place.insideShip = frames_.back().insideShip;
        return place;
    }

    // Bytes the text cannot hold as items, included into the form as they are.
    void Raw(std::int64_t from, std::int64_t to) {
        const auto data = bytes_.subspan(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
        SideFileLines(Chars(bytes_, static_cast<std::size_t>(from), std::min<std::size_t>(4, data.size())),
                      from, data);
        pos_ = to;
    }

    void SideFileLines(std::string_view id, std::int64_t offset, std::span<const std::uint8_t> data) {
        std::string name =
            name_ + "_" + SafeId(id) + "_" + IntToHex(static_cast<std::uint32_t>(offset), 1) + ".bin";
        text_.Line("// offset: " + IntToHex(static_cast<std::uint32_t>(offset), 1));
        text_.Line("// size: " + IntToHex(static_cast<std::uint32_t>(data.size()), 1));
        text_.Line("file \"" + name + "\"");
        result_.sideFiles.push_back({std::move(name), std::vector<std::uint8_t>(data.begin(), data.end())});
    }

    // The id as it stands, so that a side file is found by its chunk's id (blanks included, as in "TXT ").
    // Only what a file name or a quoted string cannot hold becomes "_", and so does every byte outside
    // ASCII: the id is no real file name, so such bytes need not be valid text on the file system.
    static std::string SafeId(std::string_view id) {
        std::string out = SafeFileName(id);
        for (char& c : out)
            if (static_cast<unsigned char>(c) > 0x7E) c = '_';
        return out;
    }

    const TextSink& sink_;                // takes the text as it is written; may be empty
    const TIffReader& reader_;            // the scanned input
    std::span<const std::uint8_t> bytes_; // the whole input
    std::string sourceName_;              // the input's name in the reader's messages
    std::string name_;                    // the input's file name, made safe to quote and to name files
    std::int64_t limit_;                  // chunks above this size go to side files
    DecodeOptions options_;               // how values are written
    std::vector<Frame> frames_;           // the open forms, outermost first
    std::int64_t pos_ = 0;                // the next item's offset
    std::size_t oddForms_ = 0;            // forms with an odd size field
    DecodedIff result_;                   // what is written
    IffTextWriter text_;                  // writes the lines into result_.text
    KnownNames fileNames_;                // names recorded in the input itself
    std::optional<WcpNames> names_;       // for function records; made at the first one
};

} // namespace

DecodedIff DecodeReader(const TIffReader& reader, std::string_view fileName, std::int64_t limit,
                        const DecodeOptions& options, const TextSink& sink) {
    CheckChunksInside(reader);
    return Walk(reader, fileName, limit, options, sink).Run();
}

DecodedIff DecodeIff(std::span<const std::uint8_t> bytes, std::string_view fileName, std::int64_t limit,
                     const DecodeOptions& options) {
    const TIffReader reader(bytes, std::string(fileName));
    return DecodeReader(reader, fileName, limit, options);
}

std::vector<std::string> Decode(const std::filesystem::path& input, const std::filesystem::path& output,
                                std::int64_t limit, const DecodeOptions& options) {
    OutputPolicy policy;
    policy.ProtectInput(input);
    policy.CheckNotInput(output);
    const TIffReader reader = TIffReader::FromFile(input);
    AtomicFileWriter text(output);
    const DecodedIff decoded = DecodeReader(reader, input.string(), limit, options,
                                            [&](std::string_view piece) { text.Write(piece); });
    // Every file is on the disk before the first replaces its target: a full disk leaves the old ones.
    const std::filesystem::path folder = output.parent_path();
    std::vector<std::unique_ptr<AtomicFileWriter>> sides;
    sides.reserve(decoded.sideFiles.size());
    std::vector<AtomicFileWriter*> all;
    // Closed a few at a time, so that a file of many side files does not hold a handle for each.
    constexpr std::size_t kOpenAtOnce = 16;
    for (const SideFile& side : decoded.sideFiles) {
        const std::filesystem::path path = folder / side.name;
        policy.CheckNotInput(path);
        sides.push_back(std::make_unique<AtomicFileWriter>(path));
        sides.back()->Write(side.data);
        all.push_back(sides.back().get());
        if (all.size() % kOpenAtOnce == 0) AtomicFileWriter::CloseTogether(std::span(all).last(kOpenAtOnce));
    }
    // The text last, as ever: it names the side files.
    all.push_back(&text);
    AtomicFileWriter::CommitTogether(all);
    return decoded.notes;
}

} // namespace velkor
