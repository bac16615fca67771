// Extensions of results.
#include "cli/result_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <string_view>

#include "cli/messages.h"

namespace rovescio::cli {

namespace {

using engine::Done;
using engine::Result;

constexpr std::array<std::string_view, 3> kScores = {".musicxml", ".xml", ".mxl"};
constexpr std::array<std::string_view, 3> kMidi = {".mid", ".midi", ".smf"};
constexpr std::array<std::string_view, 5> kPages = {".pdf", ".ps", ".png", ".svg", ".jpg"};

bool isOneOf(const std::string& extension, const auto& known) {
    return std::ranges::find(known, extension) != known.end();
}

}  // namespace

std::string extensionOf(const std::string& name) {
    std::string extension = std::filesystem::path(name).extension().string();
    std::ranges::transform(extension, extension.begin(),
                           [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension;
}

musicxml::Container containerFor(const std::string& name) {
    return extensionOf(name) == ".mxl" ? musicxml::Container::compressed : musicxml::Container::plain;
}

Result<Done> checkScoreName(const std::string& name, const std::vector<std::string>& scores) {
    const std::string extension = extensionOf(name);
    const bool known = extension.empty() || isOneOf(extension, kScores);
    if (known || std::ranges::find(scores, extension, extensionOf) != scores.end()) return Done{};
    const std::string message = "-o " + name + ": the result is MusicXML, not " + extension;
    if (isOneOf(extension, kMidi)) return problemWith(message, "Use --midi " + name + " for a MIDI file");
    if (isOneOf(extension, kPages)) {
        return problemWith(message,
                           "Write a .musicxml file and open it in a notation program, such as MuseScore, "
                           "which prints and exports pages");
    }
    return problemWith(message, "Choose a name that ends in .musicxml, .xml or .mxl");
}

Result<Done> checkMidiName(const std::string& name) {
    if (!isOneOf(extensionOf(name), kScores)) return Done{};
    return problemWith("--midi " + name + " would be a MIDI file with the name of a score",
                       "Choose a name that ends in .mid");
}

}  // namespace rovescio::cli
