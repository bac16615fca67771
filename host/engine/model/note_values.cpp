// Division of lengths into note values.
#include "engine/model/note_values.h"

#include <algorithm>
#include <bit>

namespace rovescio::engine {

namespace {

constexpr std::int32_t kLongest = 1 << 15;  // eight whole notes

std::int32_t plainBelow(std::int32_t length) {
    return static_cast<std::int32_t>(std::bit_floor(static_cast<std::uint32_t>(length)));
}

bool fits(std::int32_t position, std::int32_t value, std::int32_t beat) {
    if (value < beat) {
        const std::int32_t inBeat = position % beat;
        const bool dotted = plainBelow(value) != value;
        return inBeat + value <= beat && (dotted ? inBeat == 0 : inBeat % value == 0);
    }
    if (position % beat != 0 || value % beat != 0) return false;
    const std::int32_t beats = value / beat;
    return position / beat % std::max(plainBelow(beats), 1) == 0;
}

}  // namespace

std::int32_t feltBeat(const Metre& metre) {
    if (metre.beat <= 0) return 1;
    const bool compound =
        metre.length % (3 * metre.beat) == 0 && metre.length > 3 * metre.beat && metre.beat <= 512;
    return compound ? 3 * metre.beat : metre.beat;
}

NoteValue noteValueOf(std::int32_t length, int maxDots) {
    if (length <= 0) return {};
    NoteValue value{plainBelow(length), 0};
    std::int32_t rest = length - value.plain;
    for (std::int32_t dot = value.plain / 2; rest > 0; dot /= 2) {
        if (dot == 0 || rest < dot || ++value.dots > maxDots) return {};
        rest -= dot;
    }
    return value;
}

std::vector<std::int32_t> splitByMetre(std::int32_t position, std::int32_t length, const Metre& metre) {
    std::vector<std::int32_t> values;
    const std::int32_t beat = feltBeat(metre);
    while (length > 0) {
        std::int32_t value = std::min(plainBelow(length), kLongest);
        if (const std::int32_t dotted = value + value / 2; dotted <= length && value > 1) value = dotted;
        // Down through dotted and plain values in turn.
        while (value > 1 && !fits(position, value, beat)) {
            const std::int32_t plain = plainBelow(value);
            value = plain == value ? std::max(plain / 4 * 3, plain / 2) : plain;
        }
        values.push_back(value);
        position += value;
        length -= value;
    }
    return values;
}

std::vector<std::int32_t> splitPlainly(std::int32_t length) {
    std::vector<std::int32_t> values;
    while (length > 0) {
        const std::int32_t plain = std::min(plainBelow(length), kLongest);
        const std::int32_t value = plain > 1 && plain + plain / 2 <= length ? plain + plain / 2 : plain;
        values.push_back(value);
        length -= value;
    }
    return values;
}

}  // namespace rovescio::engine
