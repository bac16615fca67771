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
#include "musicxml/reading/score_reader.h"
#include "musicxml/writing/score_writer.h"

namespace rovescio::musicxml {

using xml::ByteSink;

struct ReadOptions {
    // Largest XML text, also after unpacking and in UTF-8.
    std::size_t maxBytes = std::size_t{256} << 20;
};

enum class Container { plain, compressed };

// A file ready to be written.
class WrittenFile {
  public:
    // The text is given where the bytes are something else.
    WrittenFile(std::string bytes, std::string text, std::vector<std::string> notices, bool isChanged)
        : bytes_(std::move(bytes)),
          text_(std::move(text)),
          notices_(std::move(notices)),
          isChanged_(isChanged) {}

    // Hands all bytes to the sink; false when it refuses them.
    bool writeTo(const ByteSink& sink) const { return sink(bytes_); }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }
    // The score in UTF-8, and whether it is another one than was read.
    [[nodiscard]] const std::string& text() const { return text_.empty() ? bytes_ : text_; }
    [[nodiscard]] bool isChanged() const { return isChanged_; }
    // What the user should know about the writing, each once.
    [[nodiscard]] const std::vector<std::string>& notices() const { return notices_; }

  private:
    std::string bytes_;
    std::string text_;
    std::vector<std::string> notices_;
    bool isChanged_;
};

// Keeps the file's text as it came. Writing edits only the elements of changed
// notes and measures, so everything else comes out byte for byte.
class ScoreFile {
  public:
    // Reads the bytes of a file into an empty document; the name is for messages.
    static engine::Result<ScoreFile> read(std::string bytes, std::string name, engine::Document& document,
                                          const ReadOptions& options = {});

    // The whole file for the document as it is now, which must be
    // the one that was read into. An archive keeps its other members; without any
    // change it is the very archive that was read.
    [[nodiscard]] engine::Result<WrittenFile> write(const engine::Document& document,
                                                    Container container) const;

    // Reads what was written again and says what is wrong with it; it must not take the place of any file
    // then.
    [[nodiscard]] std::optional<engine::Problem> proofread(const engine::Document& document,
                                                           const WrittenFile& written) const;

    // How the file was stored.
    [[nodiscard]] Container container() const {
        return archive_.empty() ? Container::plain : Container::compressed;
    }
    // What the user should know about the reading, each once.
    [[nodiscard]] const std::vector<std::string>& notices() const { return reading_.notices; }
    [[nodiscard]] const engine::Performance& performance() const { return reading_.performance; }
    [[nodiscard]] const ScoreSummary& summary() const { return reading_.summary; }

  private:
    ScoreFile() = default;

    std::string name_;
    std::string archive_;   // the compressed file's bytes; empty for a plain file
    std::string rootFile_;  // the score's path in the archive
    std::unique_ptr<const ScoreText> score_;
    Encoding encoding_;
    ScoreReading reading_;
};

}  // namespace rovescio::musicxml
