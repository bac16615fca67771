// A score file, plain or compressed, between its bytes and the document.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/model/document.h"
#include "engine/model/problem.h"
#include "musicxml/file/encoding.h"
#include "musicxml/file/score_text.h"
#include "musicxml/reading/proofreading.h"
#include "musicxml/reading/score_reader.h"
#include "musicxml/writing/score_writer.h"

namespace rovescio::musicxml {

using xml::ByteSink;

struct ReadOptions {
    // Largest XML text, also after unpacking and in UTF-8.
    std::size_t maxBytes = std::size_t{256} << 20;
};

enum class Container { plain, compressed };

// A file ready to be written. The score file that it comes from must outlive it.
class WrittenFile {
  public:
    // A plain file is printed when it is written; of others there are bytes, and the text that is in them.
    WrittenFile(ScoreEdits edits, std::optional<std::string> bytes = std::nullopt, std::string text = {})
        : edits_(std::move(edits)), bytes_(std::move(bytes)), text_(std::move(text)) {}

    // Hands everything to the sink, in pieces; false when it refuses one.
    bool writeTo(const ByteSink& sink) const { return bytes_ ? sink(*bytes_) : print(sink); }
    // The same for the score in UTF-8.
    bool writeTextTo(const ByteSink& sink) const { return bytes_ ? sink(text_) : print(sink); }
    [[nodiscard]] bool isText() const { return !bytes_; }
    [[nodiscard]] std::string bytes() const;
    // Whether it is another score than was read.
    [[nodiscard]] bool isChanged() const { return !edits_.edits.empty(); }
    // What the user should know about the writing, each once.
    [[nodiscard]] const std::vector<std::string>& notices() const { return edits_.notices; }

  private:
    bool print(const ByteSink& sink) const;

    ScoreEdits edits_;
    std::optional<std::string> bytes_;
    std::string text_;
};

// Keeps the file's text as it came. Writing edits only the elements of changed
// notes and measures, so everything else comes out byte for byte.
class ScoreFile {
  public:
    // Reads the bytes of a file into an empty document; the name is for messages.
    static engine::Result<ScoreFile> read(Bytes bytes, std::string name, engine::Document& document,
                                          const ReadOptions& options = {});

    // The whole file for the document as it is now, which must be
    // the one that was read into. An archive keeps its other members; without any
    // change it is the very archive that was read.
    [[nodiscard]] engine::Result<WrittenFile> write(const engine::Document& document,
                                                    Container container) const;

    // Reads a result again, which must not take the place of any file when it is not sound; for a result that
    // is written piece by piece, piece by piece.
    [[nodiscard]] std::unique_ptr<Proofreader> proofreader(const engine::Document& document) const {
        return std::make_unique<Proofreader>(reading_.sources, document);
    }
    // What to say where the proofreader has found a fault.
    [[nodiscard]] engine::Problem unsound(const std::string& fault) const;
    // All at once.
    [[nodiscard]] std::optional<engine::Problem> proofread(const engine::Document& document,
                                                           const WrittenFile& written) const;

    // Whether the file that was read still is what it was.
    [[nodiscard]] bool isSourceSame() const { return source_.areSame(); }
    // How the file was stored.
    [[nodiscard]] Container container() const {
        return archive_.size() == 0 ? Container::plain : Container::compressed;
    }
    // What the user should know about the reading, each once.
    [[nodiscard]] const std::vector<std::string>& notices() const { return reading_.notices; }
    [[nodiscard]] const engine::Performance& performance() const { return reading_.performance; }
    [[nodiscard]] const ScoreSummary& summary() const { return reading_.summary; }

  private:
    ScoreFile() = default;

    std::string name_;
    Bytes source_;
    Bytes archive_;         // the compressed file's bytes; empty for a plain file
    std::string rootFile_;  // the score's path in the archive
    std::unique_ptr<const ScoreText> score_;
    Encoding encoding_;
    ScoreReading reading_;
};

}  // namespace rovescio::musicxml
