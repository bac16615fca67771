// Which lengths a single note or rest can be written with, and how the metre divides those that need several.
#pragma once

#include <cstdint>
#include <vector>

namespace rovescio::engine {

// The metre of one measure, in duration units.
struct Metre {
    std::int32_t length = 0;
    std::int32_t beat = 0;  // of the time signature's lower number
};

// A plain value with dots.
struct NoteValue {
    std::int32_t plain = 0;  // a power of two
    int dots = 0;
};

// The value of a length; no plain value when more than `maxDots` dots would be needed.
NoteValue noteValueOf(std::int32_t length, int maxDots);
inline bool isWritable(std::int32_t length, int maxDots) {
    return noteValueOf(length, maxDots).plain != 0;
}

// The length of the beat that is felt: three of the signature's in 6/8, 9/8, 12/8 and their kind.
std::int32_t feltBeat(const Metre& metre);

// The values, in order, that fill a stretch of a measure so that its beats stay visible: a value as long as a
// beat or longer begins where a value of its size can, shorter ones stay inside their beat. In compound time
// the beat is dotted. Only lengths of whole units can be written.
std::vector<std::int32_t> splitByMetre(std::int32_t position, std::int32_t length, const Metre& metre);

// The fewest values that add up to a length, longest first; for tied pieces inside a tuplet.
std::vector<std::int32_t> splitPlainly(std::int32_t length);

}  // namespace rovescio::engine
