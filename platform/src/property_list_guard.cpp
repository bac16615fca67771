// Bounds on nesting and growth, measured before any tree is built.
#include "property_list_guard.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "file_bytes.h"

namespace rovescio::platform {

namespace {

// Every container could be inside the one before, so their count bounds the depth.
constexpr std::size_t kMostContainers = 10000;
constexpr std::uint64_t kLargestTree = 4 * std::uint64_t{kLargestFile};
constexpr std::uint64_t kNodeCost = 64;

constexpr std::size_t kHeaderSize = 8;
constexpr std::size_t kTrailerSize = 32;

std::size_t countOf(std::string_view part, std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

/// A big-endian number of up to eight bytes; nothing when it would reach past the end.
std::optional<std::uint64_t> numberAt(std::string_view bytes, std::uint64_t offset, std::size_t width) {
    if (width > 8 || offset > bytes.size() || bytes.size() - offset < width) {
        return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const char byte : bytes.substr(offset, width)) {
        value = value << 8 | static_cast<unsigned char>(byte);
    }
    return value;
}

/// One object of a binary list as far as the guard needs to know it.
struct Extent {
    std::uint64_t leafSize = 0;        ///< bytes of text or data; 0 for a container
    std::uint64_t firstReference = 0;  ///< offset in the file
    std::uint64_t references = 0;
    bool isContainer = false;
};

class BinaryGuard {
  public:
    explicit BinaryGuard(std::string_view bytes) : bytes_(bytes) {}

    bool run() { return readTrailer() && readExtents() && isBoundedTree(); }

  private:
    bool readTrailer() {
        if (bytes_.size() < kHeaderSize + kTrailerSize) {
            return false;
        }
        const std::size_t trailer = bytes_.size() - kTrailerSize;
        objects_ = bytes_.substr(0, trailer);
        offsetWidth_ = static_cast<unsigned char>(bytes_[trailer + 6]);
        referenceWidth_ = static_cast<unsigned char>(bytes_[trailer + 7]);
        count_ = *numberAt(bytes_, trailer + 8, 8);
        root_ = *numberAt(bytes_, trailer + 16, 8);
        table_ = *numberAt(bytes_, trailer + 24, 8);
        const bool hasWidths =
            offsetWidth_ >= 1 && offsetWidth_ <= 8 && referenceWidth_ >= 1 && referenceWidth_ <= 8;
        return hasWidths && table_ <= objects_.size() &&
               count_ <= (objects_.size() - table_) / offsetWidth_ && root_ < count_;
    }

    bool readExtents() {
        extents_.reserve(count_);
        std::size_t containers = 0;
        for (std::uint64_t i = 0; i < count_; ++i) {
            const auto offset = numberAt(objects_, table_ + i * offsetWidth_, offsetWidth_);
            const auto extent = offset ? extentAt(*offset) : std::nullopt;
            if (!extent) {
                return false;
            }
            containers += extent->isContainer ? 1 : 0;
            extents_.push_back(*extent);
        }
        return containers <= kMostContainers;
    }

    /// Reads the head of an object and checks that its body lies inside the file.
    [[nodiscard]] std::optional<Extent> extentAt(std::uint64_t offset) const {
        const auto marker = numberAt(objects_, offset, 1);
        if (!marker) {
            return std::nullopt;
        }
        const std::uint64_t kind = *marker >> 4;
        std::uint64_t count = *marker & 0x0F;
        std::uint64_t body = offset + 1;
        // Null and booleans, integers, reals, dates and references to objects have a small fixed size.
        if (kind < 0x4 || kind == 0x8) {
            return Extent{.leafSize = 16};
        }
        if (count == 0x0F) {
            const auto head = numberAt(objects_, body, 1);
            if (!head || *head >> 4 != 0x1) {
                return std::nullopt;
            }
            const std::size_t width = std::size_t{1} << (*head & 0x0F);
            const auto longCount = numberAt(objects_, body + 1, width);
            if (!longCount) {
                return std::nullopt;
            }
            count = *longCount;
            body += 1 + width;
        }
        return extentOf(kind, count, body);
    }

    [[nodiscard]] std::optional<Extent> extentOf(std::uint64_t kind, std::uint64_t count,
                                                 std::uint64_t body) const {
        const std::uint64_t room = objects_.size() - body;
        Extent extent;
        std::uint64_t unit = 1;
        switch (kind) {
            case 0x4:  // data
            case 0x5:  // ASCII text
                break;
            case 0x6:  // UTF-16 text
                unit = 2;
                break;
            case 0xA:  // list
            case 0xC:  // set
                extent.isContainer = true;
                unit = referenceWidth_;
                break;
            case 0xD:  // dictionary: a key and a value for each count
                extent.isContainer = true;
                unit = std::uint64_t{2} * referenceWidth_;
                break;
            default:
                return std::nullopt;
        }
        if (count > room / unit) {
            return std::nullopt;
        }
        if (extent.isContainer) {
            extent.firstReference = body;
            extent.references = count * unit / referenceWidth_;
        } else {
            extent.leafSize = count * unit;
        }
        return extent;
    }

    /// With one owner each, containers reachable from the root form a tree; shared leaves are counted as
    /// often as they would be copied.
    [[nodiscard]] bool isBoundedTree() const {
        std::vector<bool> hasOwner(extents_.size(), false);
        hasOwner[root_] = true;
        std::uint64_t cost = 0;
        for (const Extent& extent : extents_) {
            for (std::uint64_t i = 0; i < extent.references; ++i) {
                const auto target =
                    numberAt(objects_, extent.firstReference + i * referenceWidth_, referenceWidth_);
                if (!target || *target >= extents_.size()) {
                    return false;
                }
                const Extent& child = extents_[*target];
                if (child.isContainer && hasOwner[*target]) {
                    return false;
                }
                hasOwner[*target] = true;
                cost += kNodeCost + child.leafSize;
                if (cost > kLargestTree) {
                    return false;
                }
            }
        }
        return true;
    }

    std::string_view bytes_;
    std::string_view objects_;  // everything before the trailer
    std::size_t offsetWidth_ = 0;
    std::size_t referenceWidth_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t root_ = 0;
    std::uint64_t table_ = 0;
    std::vector<Extent> extents_;
};

}  // namespace

bool isHarmlessXml(std::string_view xml) {
    return countOf("<dict", xml) + countOf("<array", xml) <= kMostContainers;
}

bool isHarmlessBinary(std::string_view bytes) {
    return BinaryGuard(bytes).run();
}

}  // namespace rovescio::platform
