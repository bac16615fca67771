// The text of a score with its tree.
#pragma once

#include <memory>
#include <string>

#include "engine/model/problem.h"
#include "musicxml/file/bytes.h"
#include "xml/tree.h"

namespace rovescio::musicxml {

struct ScoreText {
    explicit ScoreText(Bytes utf8);

    Bytes bytes;
    xml::Tree tree;  // over the bytes
};

// Parses UTF-8 text of less than 2 GiB. What is not well-formed, or larger than any score, is a problem that
// names line and column; the file name is for that.
engine::Result<std::unique_ptr<const ScoreText>> parseScore(Bytes text, const std::string& file);

}  // namespace rovescio::musicxml
