// What --info shows of a score.
#pragma once

#include <string>
#include <vector>

#include "engine/model/document.h"

namespace rovescio::cli {

// Several lines: measures, then each staff with its name, layers used and keys.
std::vector<std::string> scoreInfo(const std::string& name, const engine::Document& document);

// "G major", "C# minor"; what a key off the standard scales is called instead.
std::string keyName(const engine::KeySignature& key);

}  // namespace rovescio::cli
