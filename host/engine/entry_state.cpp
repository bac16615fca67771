// Packing of the host's own entry bytes.
#include "engine/entry_state.h"

#include <cstring>

namespace rovescio::engine {

namespace {

// The last byte: these bits, and the silence between them.
constexpr std::uint8_t kUnpitched = 0x01;
constexpr std::uint8_t kMarked = 0x08;
constexpr std::uint8_t kCut = 0x10;
constexpr unsigned kSilenceShift = 1;
constexpr unsigned kSilenceMask = 3;

}  // namespace

// Ratios are stored less one, so that the zero bytes of a fresh record read as 1:1.
EntryState entryStateIn(const std::uint8_t (&hostPrivate)[6]) {
    EntryState state;
    std::uint16_t actual = 0;
    std::uint16_t normal = 0;
    std::memcpy(&actual, hostPrivate, 2);
    std::memcpy(&normal, hostPrivate + 2, 2);
    // No ratio has 65536 notes; a plug-in that wrote over the bytes must not make it 0.
    state.actual = static_cast<std::uint16_t>(actual == 0xFFFF ? 1 : actual + 1);
    state.normal = static_cast<std::uint16_t>(normal + 1);
    state.grace = static_cast<Grace>(hostPrivate[4]);
    state.unpitched = hostPrivate[5] & kUnpitched;
    state.silence = static_cast<Silence>(hostPrivate[5] >> kSilenceShift & kSilenceMask);
    state.cut = (hostPrivate[5] & kCut) != 0;
    state.marked = (hostPrivate[5] & kMarked) != 0;
    return state;
}

void setEntryStateIn(std::uint8_t (&hostPrivate)[6], const EntryState& state) {
    const auto actual = static_cast<std::uint16_t>(state.actual - 1);
    const auto normal = static_cast<std::uint16_t>(state.normal - 1);
    std::memcpy(hostPrivate, &actual, 2);
    std::memcpy(hostPrivate + 2, &normal, 2);
    hostPrivate[4] = static_cast<std::uint8_t>(state.grace);
    hostPrivate[5] =
        static_cast<std::uint8_t>(state.unpitched | static_cast<unsigned>(state.silence) << kSilenceShift |
                                  (state.marked ? kMarked : 0U) | (state.cut ? kCut : 0U));
}

}  // namespace rovescio::engine
