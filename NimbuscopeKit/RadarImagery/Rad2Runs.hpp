#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "Platform/Core/Export.hpp"

namespace nimbuscope {

/// Decoding of the run-length coded indices of Rad2 files.
///
/// A run is an index byte and a count byte; count 0 stands for a 16-bit count in the next two bytes, count
/// 255 for a 32-bit count in the next four, most significant byte first.
class NIMBUSCOPE_EXPORT Rad2Runs {
  public:
    /// How a decoding ended.
    enum class Status : std::uint8_t {
        done,
        pastFile,    ///< a run's bytes pass the end of the file
        pastPixels,  ///< a run passes the last pixel
    };

    struct Outcome {
        Status status = Status::done;
        std::uint64_t offset = 0;  ///< of the run at fault, from the start of the file

        bool operator==(const Outcome&) const = default;
    };

    /// The runs that begin in the bytes [begin, end) of `file`. The bytes of the last one may lie behind
    /// `end`, and `end` behind the file.
    struct Source {
        std::span<const std::uint8_t> file;
        std::uint64_t begin = 0;
        std::uint64_t end = 0;
    };

    /// Colours runs into `count` RGBA pixels at `out`, all of which are written: those that no run reaches
    /// with zeros. `colors` are 256 entries of four bytes.
    using Function = Outcome (*)(const Source& source, const std::uint8_t* colors, std::uint8_t* out,
                                 std::size_t count);

    /// One way to do it; all give the same result.
    struct Variant {
        std::string_view name;
        Function function;
        bool isSupported;  ///< by the processor
    };

    /// The variants of this build, the fastest first. The last one works on every processor.
    [[nodiscard]] static std::span<const Variant> variants();

    /// Colours with the fastest variant that the processor supports.
    [[nodiscard]] static Outcome color(const Source& source, const std::uint8_t* colors, std::uint8_t* out,
                                       std::size_t count);

    /// Writes the indices instead of colours, one byte per pixel.
    [[nodiscard]] static Outcome expand(const Source& source, std::span<std::uint8_t> out);
};

}  // namespace nimbuscope
