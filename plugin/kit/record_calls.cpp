// Loading and saving of data records, with what the kit puts in front of the host's calls.
#include <cstring>

#include "contract/data_records.h"
#include "kit/bound.h"
#include "kit/host_api.h"
#include "kit/preferences.h"

// A buffer that is too small for this record is a fault of the program, in every kind of build.
#undef NDEBUG
#include <cassert>

namespace {

// Incident of a key of two words.
std::uint16_t incidentOf(const void* key) {
    EDATAKEY copy{};
    std::memcpy(&copy, key, sizeof copy);
    return copy.inci;
}

// Older hosts fill in the record but report no success: what they wrote counts.
short loadFretInstrument(void* key, void* buffer, std::uint32_t* size) {
    assert(*size >= sizeof(EDTFretInstrument25_3));
    if (!buffer) return kit::bound::SX_LoadEData(kFretInstrumentTag, key, buffer, size);
    std::memset(buffer, 0, sizeof(EDTFretInstrument25_3));
    if (const short loaded = kit::bound::SX_LoadEData(kFretInstrumentTag, key, buffer, size)) return loaded;
    const EDTFretInstrument25_3 nothing{};
    return std::memcmp(buffer, &nothing, sizeof nothing) != 0;
}

}  // namespace

short SX_LoadEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    if (!key || !size) return kit::bound::SX_LoadEData(tag, key, buffer, size);
    if (tag == kFretInstrumentTag) return loadFretInstrument(key, buffer, size);
    const std::uint16_t incident = incidentOf(key);
    const auto whole = kit::preferenceSize(tag, incident);
    if (!whole) return kit::bound::SX_LoadEData(tag, key, buffer, size);
    if (*whole == 0) return 0;
    if (buffer && (*size < *whole || !kit::loadPreferences(tag, incident, buffer))) return 0;
    *size = *whole;
    return 1;
}

short SX_SaveEData(std::uint32_t tag, void* key, void* buffer, std::uint32_t* size) {
    if (!key || !size) return kit::bound::SX_SaveEData(tag, key, buffer, size);
    const std::uint16_t incident = incidentOf(key);
    const auto whole = kit::preferenceSize(tag, incident);
    if (!whole) return kit::bound::SX_SaveEData(tag, key, buffer, size);
    if (*whole == 0 || !buffer || *size < *whole || !kit::savePreferences(tag, incident, buffer)) return 0;
    *size = *whole;
    return 1;
}
