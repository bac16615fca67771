// Containers, encodings, reader and writer put together.
#include "musicxml/score_file.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "musicxml/archive.h"

namespace rovescio::musicxml {

engine::Result<ScoreFile> ScoreFile::read(std::string bytes, std::string name, engine::Document& document,
                                          const ReadOptions& options) {
    // Offsets into the text have 32 bits.
    const std::size_t maxBytes =
        std::min<std::size_t>(options.maxBytes, std::numeric_limits<std::int32_t>::max());
    ScoreFile file;
    file.name_ = std::move(name);
    if (bytes.size() > maxBytes) return tooLarge(maxBytes, file.name_);
    if (looksLikeArchive(bytes)) {
        file.archive_ = std::move(bytes);
        engine::Result<ArchivedScore> score = unpackScore(file.archive_, maxBytes, file.name_);
        if (!score) return score.problem();
        file.rootFile_ = std::move(score->rootFile);
        bytes = std::move(score->bytes);
    }
    engine::Result<DecodedText> decoded = decodeText(std::move(bytes), file.name_);
    if (!decoded) return decoded.problem();
    file.text_ = std::move(decoded->text);
    file.encoding_ = std::move(decoded->encoding);
    if (file.text_.size() > maxBytes) return tooLarge(maxBytes, file.name_);

    engine::Result<ScoreReading> reading = readScore(file.text_, file.name_, document);
    if (!reading) return reading.problem();
    file.reading_ = std::move(*reading);
    return file;
}

std::string WrittenFile::bytes() const {
    std::string whole;
    writeTo([&](std::string_view piece) {
        whole += piece;
        return true;
    });
    return whole;
}

engine::Result<WrittenFile> ScoreFile::write(const engine::Document& document, Container container) const {
    engine::Result<ScoreEdits> written = editScore(text_, reading_.sources, document, name_);
    if (!written) return written.problem();
    const bool unchanged = written->edits.empty();
    if (container == Container::plain && encoding_.isUtf8()) return WrittenFile(std::move(*written));
    std::vector<std::string> notices = written->notices;
    if (container == Container::compressed && !archive_.empty() && unchanged) {
        return WrittenFile(archive_, std::move(notices));
    }
    engine::Result<std::string> bytes =
        encodeText(WrittenFile(std::move(*written)).bytes(), encoding_, name_);
    if (bytes && container == Container::compressed) {
        bytes = archive_.empty() ? packScore(*bytes, name_) : repackScore(archive_, rootFile_, *bytes, name_);
    }
    if (!bytes) return bytes.problem();
    return WrittenFile(std::move(*bytes), std::move(notices));
}

}  // namespace rovescio::musicxml
