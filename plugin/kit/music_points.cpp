// Points and regions of the score: comparison, membership, and the way to the list of all staves.
#include "kit/music_points.h"

#include <algorithm>

#include "kit/host_api.h"

int SafeGetMeasureDuration(int staff, int measure) {
    return std::max(SX_GetMeasureDuration(static_cast<short>(staff), static_cast<short>(measure)), 1);
}

bool InRegion(int measure, int position, int staff, EREGION region, int /*unused*/) {
    const EMUSICPOINT& start = region.start;
    const EMUSICPOINT& end = region.end;
    if (measure > start.measure && measure < end.measure) return true;
    if (measure < start.measure || measure > end.measure) return false;
    std::int64_t scaled = position;
    if (staff != 0) {
        scaled = scaled * SafeGetMeasureDuration(0, measure) / SafeGetMeasureDuration(staff, measure);
    }
    scaled = std::max<std::int64_t>(scaled, 0);
    if (measure == start.measure && scaled < start.position) return false;
    return measure != end.measure || scaled <= end.position;
}

bool MusicPointsEqual(const EMUSICPOINT& left, const EMUSICPOINT& right) {
    return left.staffList == right.staffList && left.measure == right.measure && left.slot == right.slot &&
           left.position == right.position;
}

bool TranslateMusicPointToGlobalStaffList(EMUSICPOINT& point) {
    if (point.staffList == 0) return true;
    point.slot = SX_InstToSlot(SX_SlotToInst(point.slot, point.staffList), 0);
    point.staffList = 0;
    return point.slot > 0;
}

bool TranslateRegionToGlobalStaffList(EREGION& region) {
    return TranslateMusicPointToGlobalStaffList(region.start) &&
           TranslateMusicPointToGlobalStaffList(region.end);
}
