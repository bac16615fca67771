// Reads the text of a result again before anyone relies on it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "engine/model/document.h"
#include "musicxml/reading/source_map.h"
#include "xml/piece_reader.h"

namespace rovescio::musicxml {

// Parses the text of a score again and compares its parts, measures and the length of each measure with the
// document and with what the file had. The text comes in pieces, as it is written.
class Proofreader {
  public:
    Proofreader(const SourceMap& sources, const engine::Document& document);
    ~Proofreader();
    Proofreader(const Proofreader&) = delete;
    Proofreader& operator=(const Proofreader&) = delete;

    // UTF-8.
    void read(std::string_view piece) { reader_.read(piece); }
    // After the last piece. A difference is a fault of this program; it is returned as part of a sentence.
    std::optional<std::string> finish();

  private:
    class Proof;

    std::unique_ptr<Proof> proof_;
    xml::PieceReader reader_;
};

}  // namespace rovescio::musicxml
