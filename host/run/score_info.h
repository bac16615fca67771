// What a score holds, at a glance.
#pragma once

#include <string>
#include <vector>

#include "engine/model/document.h"
#include "engine/model/key_signature.h"

namespace rovescio::run {

struct KeySpan {
    engine::KeySignature key;
    short measure = 1;  // in which it begins
};

struct StaffInfo {
    short number = 0;
    std::string name;  // of its part; may be empty
    bool unpitched = false;
    std::vector<short> layers;  // those with entries, from 0
    std::vector<KeySpan> keys;
};

std::vector<StaffInfo> staffInfos(const engine::Document& document);

}  // namespace rovescio::run
