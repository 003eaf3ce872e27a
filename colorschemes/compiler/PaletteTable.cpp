#include "colorschemes/compiler/PaletteTable.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <sstream>

#include "colorschemes/text/ColorTable.hpp"

namespace nimbuscope {
namespace {

using platform::Result;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t maximalSections = 4;
constexpr std::uint32_t maximalId = 255;
constexpr std::size_t maximalEntries = 512;  // of a table, all sections together

void appendNumber(Bytes& bytes, std::uint64_t number) {
    for (unsigned shift = 0; shift < 64; shift += 8) {
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
    }
}

bool readNumber(const std::string& word, std::uint32_t& number) {
    const char* end = word.data() + word.size();
    const auto [stopped, fault] = std::from_chars(word.data(), end, number);
    return fault == std::errc{} && stopped == end;
}

std::vector<std::string> words(const std::string& line) {
    std::istringstream stream(line.substr(0, line.find(';')));
    std::vector<std::string> found;
    for (std::string word; stream >> word;) {
        found.push_back(word);
    }
    return found;
}

class Compiler {
  public:
    Compiler(std::string tableName, const PaletteSourceReader& read)
        : tableName_(std::move(tableName)), read_(read) {}

    Result<Bytes, PaletteTableError> compile() {
        const auto text = read_(tableName_);
        if (!text) {
            return std::unexpected(text.error());
        }
        std::istringstream stream(*text);
        std::size_t number = 0;
        for (std::string line; std::getline(stream, line);) {
            if (const auto done = addPalette(words(line), ++number); !done) {
                return std::unexpected(done.error());
            }
        }
        Bytes bytes = std::move(stopLists_);
        bytes.resize((bytes.size() + 7) / 8 * 8);
        bytes.insert(bytes.end(), records_.begin(), records_.end());
        return bytes;
    }

  private:
    using Done = Result<void, PaletteTableError>;

    Done addPalette(const std::vector<std::string>& line, std::size_t number) {
        const auto fault = [&](std::string reason) {
            return std::unexpected(PaletteTableError{tableName_, number, std::move(reason)});
        };
        if (line.empty()) {
            return {};
        }
        std::uint32_t id = 0;
        std::uint32_t count = 0;
        if (line.size() < 3 || !readNumber(line[0], id) || !readNumber(line[1], count)) {
            return fault("expected an id, a count and the names of stop lists");
        }
        const std::size_t sections = line.size() - 2;
        if (count == 0 || sections > maximalSections || std::uint64_t{count} * sections > maximalEntries) {
            return fault("expected at most 4 sections with 512 colours together");
        }
        if (id > maximalId) {
            return fault("expected an id up to " + std::to_string(maximalId));
        }
        if (std::ranges::count(ids_, id) != 0) {
            return fault("the id " + line[0] + " comes twice");
        }
        ids_.push_back(id);
        appendNumber(records_, id);
        for (std::size_t section = 0; section < maximalSections; ++section) {
            if (section >= sections) {
                records_.resize(records_.size() + 16);
                continue;
            }
            const auto offset = offsetOf(line[2 + section], number);
            if (!offset) {
                return std::unexpected(offset.error());
            }
            appendNumber(records_, *offset);
            appendNumber(records_, count);
        }
        return {};
    }

    /// Where a stop list begins; it is compiled when it is named for the first time.
    Result<std::uint64_t, PaletteTableError> offsetOf(const std::string& list, std::size_t line) {
        if (const auto known = offsets_.find(list); known != offsets_.end()) {
            return known->second;
        }
        const std::string file = list + ".pal";
        const auto text = read_(file);
        if (!text) {
            return std::unexpected(PaletteTableError{tableName_, line, text.error().message()});
        }
        const auto table = parseColorTable(*text);
        const auto stops = table ? stopListOf(*table) : std::unexpected(table.error());
        if (!stops) {
            return std::unexpected(PaletteTableError{file, stops.error().line, stops.error().reason});
        }
        const std::uint64_t offset = stopLists_.size();
        stopLists_.insert(stopLists_.end(), stops->begin(), stops->end());
        offsets_.emplace(list, offset);
        return offset;
    }

    std::string tableName_;
    const PaletteSourceReader& read_;
    Bytes stopLists_;
    Bytes records_;
    std::vector<std::uint32_t> ids_;
    std::map<std::string, std::uint64_t> offsets_;
};

}  // namespace

std::string PaletteTableError::message() const {
    return file + (line == 0 ? "" : ":" + std::to_string(line)) + ": " + reason;
}

Result<Bytes, PaletteTableError> compilePalettes(const std::string& tableName,
                                                 const PaletteSourceReader& read) {
    return Compiler(tableName, read).compile();
}

std::string paletteSourceCode(const Bytes& bytes) {
    std::string code =
        "// Made from the files of colorschemes/palettes; not to be edited.\n"
        "#include \"colorschemes/colorschemes.h\"\n\n"
        "const size_t nb_palettes_size = " +
        std::to_string(bytes.size()) + ";\nconst uint8_t NB_PALETTES[] = {";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        code += (i % 20 == 0 ? "\n    " : " ") + std::to_string(bytes[i]) + ',';
    }
    return code + "\n};\n";
}

}  // namespace nimbuscope
