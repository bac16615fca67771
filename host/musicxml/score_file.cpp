// Containers, encodings, reader and writer put together.
#include "musicxml/score_file.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "musicxml/file/archive.h"

namespace rovescio::musicxml {

engine::Result<ScoreFile> ScoreFile::read(Bytes bytes, std::string name, engine::Document& document,
                                          const ReadOptions& options) {
    // Places in the text have 32 bits, and those of new text come after them.
    const std::size_t maxBytes =
        std::min<std::size_t>(options.maxBytes, std::numeric_limits<std::int32_t>::max());
    ScoreFile file;
    file.name_ = std::move(name);
    file.source_ = bytes;
    if (bytes.size() > maxBytes) return tooLarge(maxBytes, file.name_);
    if (looksLikeArchive(bytes.view())) {
        file.archive_ = std::move(bytes);
        engine::Result<ArchivedScore> score = unpackScore(file.archive_.view(), maxBytes, file.name_);
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
    if (container == Container::plain && encoding_.isUtf8()) return WrittenFile(std::move(*written));
    if (written->edits.empty() && container == Container::compressed && !(archive_.size() == 0))
        return WrittenFile(std::move(*written), std::string(archive_.view()),
                           std::string(score_->bytes.view()));
    std::string text;
    written->edits.print([&](std::string_view piece) {
        text += piece;
        return true;
    });
    engine::Result<std::string> bytes = encodeText(text, encoding_, name_);
    if (bytes && container == Container::compressed) {
        bytes = (archive_.size() == 0) ? packScore(*bytes, name_)
                                       : repackScore(archive_.view(), rootFile_, *bytes, name_);
    }
    if (!bytes) return bytes.problem();
    return WrittenFile(std::move(*written), std::move(*bytes), std::move(text));
}

engine::Problem ScoreFile::unsound(const std::string& fault) const {
    return {.message = "the result is not sound, and nothing was written: " + fault,
            .file = name_,
            .measure = {},
            .remedy = "This is a fault in Rovescio; please report it with the score"};
}

std::optional<engine::Problem> ScoreFile::proofread(const engine::Document& document,
                                                    const WrittenFile& written) const {
    if (!written.isChanged()) return std::nullopt;
    const std::unique_ptr<Proofreader> reader = proofreader(document);
    written.writeTextTo([&](std::string_view piece) {
        reader->read(piece);
        return true;
    });
    const std::optional<std::string> fault = reader->finish();
    return fault ? std::optional(unsound(*fault)) : std::nullopt;
}

// Edits give many small pieces; a sink gets few large ones.
bool WrittenFile::print(const ByteSink& sink) const {
    constexpr std::size_t kPiece = std::size_t{1} << 19;
    std::string collected;
    const bool taken = edits_.edits.print([&](std::string_view piece) {
        if (collected.size() + piece.size() > kPiece) {
            if (!collected.empty() && !sink(collected)) return false;
            collected.clear();
        }
        // Long stretches that did not change are handed on as they stand.
        if (piece.size() > kPiece) return sink(piece);
        if (collected.empty()) collected.reserve(kPiece);
        collected += piece;
        return true;
    });
    return taken && (collected.empty() || sink(collected));
}

std::string WrittenFile::bytes() const {
    std::string all;
    writeTo([&](std::string_view piece) {
        all += piece;
        return true;
    });
    return all;
}

}  // namespace rovescio::musicxml
