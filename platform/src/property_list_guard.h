// Refuses property lists made to exhaust the memory or the stack of whoever builds a tree from them.
#pragma once

#include <string_view>

namespace rovescio::platform {

/// True when the text cannot nest deeper than a tree can safely be walked by recursion.
bool isHarmlessXml(std::string_view xml);

/// True when all objects lie inside the file, every container has one owner at most, and the tree is not
/// unreasonably larger than the file.
bool isHarmlessBinary(std::string_view bytes);

}  // namespace rovescio::platform
