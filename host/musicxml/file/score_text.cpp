// The messages for a musician about a text that cannot be parsed.
#include "musicxml/file/score_text.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "musicxml/file/tag_names.h"
#include "musicxml/rules/numbers.h"

namespace rovescio::musicxml {

namespace {

using Kind = xml::ParseFault::Kind;

engine::Problem explained(const xml::ParseFault& fault) {
    engine::Problem problem;
    switch (fault.kind) {
        case Kind::noElement:
            problem.message = "this is not an XML file";
            problem.remedy = "Give a MusicXML score, for example one exported by a notation program.";
            break;
        case Kind::truncated:
            problem.message = "the file ends in the middle of the score";
            problem.remedy = "It was probably cut off while it was copied or saved: get it again.";
            break;
        case Kind::tooLarge:
            problem.message = "this is more than any score needs: " + fault.description;
            problem.remedy = "Split the score, or export it again.";
            break;
        case Kind::entities:
            problem.message = "the document type declares entities, which could expand without bound";
            problem.remedy = "Remove the declarations between [ and ] in the DOCTYPE line.";
            break;
        default:
            problem.message = "the XML is not well-formed: " + fault.description;
            problem.remedy = "Export the score again, or repair that line in a text editor.";
            break;
    }
    return problem;
}

// Bytes that go on with a character of UTF-8 do not count.
bool startsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

// A score has an element for some 25 bytes; the shortest ones would fill the memory with little text.
xml::Limits limitsFor(std::size_t bytes) {
    constexpr std::size_t kAlways = 1'000'000;
    constexpr std::size_t kBytesOfElement = 10;
    xml::Limits limits;
    limits.elements = limits.attributes = kAlways + bytes / kBytesOfElement;
    return limits;
}

}  // namespace

ScoreText::ScoreText(Bytes utf8)
    : bytes(std::move(utf8)), tree(bytes.view(), kVocabulary, limitsFor(bytes.size())) {}

engine::Result<std::unique_ptr<const ScoreText>> parseScore(Bytes text, const std::string& file) {
    if (trimmed(text.view()).empty()) {
        return engine::Problem{.message = "the file is empty",
                               .file = file,
                               .line = 1,
                               .measure = {},
                               .remedy = "Give a MusicXML score."};
    }
    auto score = std::make_unique<const ScoreText>(std::move(text));
    if (score->tree.isSound()) return score;
    const xml::ParseFault& fault = score->tree.fault();
    engine::Problem problem = explained(fault);
    problem.file = file;
    const std::string_view before = score->bytes.view().substr(0, fault.offset);
    problem.line = static_cast<int>(1 + std::count(before.begin(), before.end(), '\n'));
    const std::string_view line = before.substr(before.rfind('\n') + 1);
    const bool placed = fault.kind == Kind::malformed || fault.kind == Kind::entities;
    if (placed)
        problem.column = static_cast<int>(1 + std::count_if(line.begin(), line.end(), startsCharacter));
    return problem;
}

}  // namespace rovescio::musicxml
