// Character data and references of XML, for the few values that have more than
// plain text.
#pragma once

#include <string>
#include <string_view>

namespace rovescio::musicxml {

// The text with the five named references and the numeric ones resolved;
// unknown ones stay as written.
std::string resolveReferences(std::string_view text);
// The characters directly inside an element's content, marked sections
// included, without comments and child elements, and without surrounding
// whitespace.
std::string characterData(std::string_view content);

}  // namespace rovescio::musicxml
