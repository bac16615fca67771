// Reading of whole files that anyone may have put into a bundle.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace rovescio::platform {

/// No property list or table of a real bundle comes near this size in bytes.
constexpr std::size_t kLargestFile = std::size_t{64} << 20;

/// The content of an ordinary file of at most kLargestFile bytes; nothing for anything else.
std::optional<std::string> readFile(const std::filesystem::path& path);

}  // namespace rovescio::platform
