// Compressed scores: a zip archive that holds the score's XML file and its
// companions.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "engine/model/problem.h"

namespace rovescio::musicxml {

// Whether the bytes are a zip archive by their first bytes.
bool looksLikeArchive(std::string_view bytes);

struct ArchivedScore {
    std::string rootFile;  // path of the score inside the archive
    std::string bytes;     // its contents, uncompressed
};

// Finds and unpacks the score; at most maxBytes, whatever the archive claims.
// The file name is for messages.
engine::Result<ArchivedScore> unpackScore(std::string_view archive, std::size_t maxBytes,
                                          const std::string& file);
// The archive with the score replaced; every other member stays.
engine::Result<std::string> repackScore(std::string_view archive, const std::string& rootFile,
                                        const std::string& score, const std::string& file);
// A new archive that holds the score alone.
engine::Result<std::string> packScore(const std::string& score, const std::string& file);

// The problem of a score that is larger than allowed.
engine::Problem tooLarge(std::size_t maxBytes, const std::string& file);

}  // namespace rovescio::musicxml
