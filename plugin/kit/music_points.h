// Points and regions of the score: comparison, membership, and the way to the list of all staves.
#pragma once

#include "contract/records.h"

// Duration of a measure on a staff, or by the score's own time signature for staff 0; at least 1, so that it
// can be divided by. Host duration units.
int SafeGetMeasureDuration(int staff, int measure);

// Whether a point lies in a region, both ends included. Positions on a staff whose measures have a length of
// their own are scaled to the score's; staff 0 needs none. The last argument is not read.
bool InRegion(int measure, int position, int staff, EREGION region, int unused);

bool MusicPointsEqual(const EMUSICPOINT& left, const EMUSICPOINT& right);

// Point to the same staff by the list of all staves. False when the host knows no such staff; the point is
// changed even so.
bool TranslateMusicPointToGlobalStaffList(EMUSICPOINT& point);
// The end is left alone when the start could not be translated.
bool TranslateRegionToGlobalStaffList(EREGION& region);
