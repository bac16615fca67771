// Containers, encodings, reader and writer put together.
#include "musicxml/score_file.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "musicxml/file/archive.h"
#include "musicxml/file/large_pages.h"
#include "musicxml/reading/proofreading.h"

namespace rovescio::musicxml {

engine::Result<ScoreFile> ScoreFile::read(std::string bytes, std::string name, engine::Document& document,
                                          const ReadOptions& options) {
    // Places in the text have 32 bits, and those of new text come after them.
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
    file.encoding_ = std::move(decoded->encoding);
    if (decoded->text.size() > maxBytes) return tooLarge(maxBytes, file.name_);

    engine::Result<std::unique_ptr<const ScoreText>> score = parseScore(std::move(decoded->text), file.name_);
    if (!score) return score.problem();
    file.score_ = std::move(*score);
    engine::Result<ScoreReading> reading = readScore(file.score_->tree, file.name_, document);
    if (!reading) return reading.problem();
    file.reading_ = std::move(*reading);
    return file;
}

engine::Result<WrittenFile> ScoreFile::write(const engine::Document& document, Container container) const {
    engine::Result<ScoreEdits> written = editScore(score_->tree, reading_.sources, document, name_);
    if (!written) return written.problem();
    const bool isChanged = !written->edits.empty();
    if (!isChanged && container == Container::compressed && !archive_.empty()) {
        return WrittenFile(archive_, score_->text, std::move(written->notices), false);
    }
    std::string text;
    reserveInLargePages(text, score_->text.size() + score_->text.size() / 8);
    written->edits.print([&](std::string_view piece) {
        text += piece;
        return true;
    });
    if (container == Container::plain && encoding_.isUtf8()) {
        return WrittenFile(std::move(text), {}, std::move(written->notices), isChanged);
    }
    engine::Result<std::string> bytes = encodeText(text, encoding_, name_);
    if (bytes && container == Container::compressed) {
        bytes = archive_.empty() ? packScore(*bytes, name_) : repackScore(archive_, rootFile_, *bytes, name_);
    }
    if (!bytes) return bytes.problem();
    return WrittenFile(std::move(*bytes), std::move(text), std::move(written->notices), isChanged);
}

std::optional<engine::Problem> ScoreFile::proofread(const engine::Document& document,
                                                    const WrittenFile& written) const {
    if (!written.isChanged()) return std::nullopt;
    const std::optional<std::string> fault = musicxml::proofread(written.text(), reading_.sources, document);
    if (!fault) return std::nullopt;
    return engine::Problem{.message = "the result is not sound, and nothing was written: " + *fault,
                           .file = name_,
                           .measure = {},
                           .remedy = "This is a fault in Rovescio; please report it with the score"};
}

}  // namespace rovescio::musicxml
