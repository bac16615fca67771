// The list of kinds, by marks in their content and by extension.
#include "cli/foreign_formats.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "cli/messages.h"
#include "cli/result_names.h"

namespace rovescio::cli {

namespace {

constexpr const char* kMuseScore = "Open it in MuseScore and choose File > Export, MusicXML";
constexpr const char* kImport = "Open it in a notation program, such as MuseScore, and export MusicXML there";
constexpr const char* kOwnProgram = "Open it in the program that wrote it and export MusicXML there";

struct Format {
    std::string_view name;
    const char* remedy;
    std::vector<std::string_view> beginnings;  // one of them, when the content has such marks
    std::string_view inside;                   // and this somewhere later, when not empty
    std::vector<std::string_view> extensions;
};

const std::array<Format, 8>& formats() {
    using namespace std::string_view_literals;
    static const std::array<Format, 8> kFormats = {{
        {"a MuseScore file", kMuseScore, {"PK"}, ".mscx", {".mscz", ".mscx"}},
        {"a MuseScore file", kMuseScore, {"<"}, "<museScore", {}},
        {"a MIDI file", kImport, {"MThd"}, {}, {".mid", ".midi"}},
        {"a PDF file",
         "Export MusicXML from the program that made the page; a page alone needs optical music "
         "recognition",
         {"%PDF"},
         {},
         {".pdf"}},
        {"an ABC tune", "Convert it with abc2xml", {"X:", "%abc", "%%abc"}, {}, {".abc"}},
        {"a LilyPond source",
         "LilyPond cannot export MusicXML; export it from the program that made the source, or enter it "
         "again",
         {"\\version", "\\relative", "\\score"},
         {},
         {".ly"}},
        {"an MEI file", kImport, {"<"}, "<mei", {".mei"}},
        {"a file of another notation program",
         kOwnProgram,
         {},
         {},
         {".sib", ".mus", ".musx", ".dorico", ".enc", ".nwc", ".cap", ".capx", ".gp", ".gpx", ".gp5"}},
    }};
    return kFormats;
}

bool hasContentOf(const Format& format, std::string_view sample) {
    const bool begins = std::ranges::any_of(
        format.beginnings, [&](std::string_view beginning) { return sample.starts_with(beginning); });
    return begins && sample.find(format.inside) != std::string_view::npos;
}

}  // namespace

std::string formatSample(std::string_view bytes) {
    constexpr std::size_t kEnd = 4096;
    std::string sample(bytes.substr(0, kEnd));
    // An archive lists its members at its end.
    if (bytes.size() > kEnd)
        sample += bytes.substr(std::max(kEnd, bytes.size() - std::min(kEnd, bytes.size())));
    return sample;
}

std::optional<engine::Problem> foreignFormat(std::string_view sample, const std::string& name) {
    sample.remove_prefix(std::min(sample.find_first_not_of("\xEF\xBB\xBF \t\r\n"), sample.size()));
    const std::string extension = extensionOf(name);
    const auto hasExtension = [&](const Format& format) {
        return std::ranges::find(format.extensions, extension) != format.extensions.end();
    };
    const auto* format =
        std::ranges::find_if(formats(), [&](const Format& known) { return hasContentOf(known, sample); });
    if (format == formats().end()) format = std::ranges::find_if(formats(), hasExtension);
    if (format == formats().end()) return std::nullopt;
    return engine::Problem{.message = "this is " + std::string(format->name) + ", not MusicXML",
                           .file = name,
                           .measure = {},
                           .remedy = format->remedy};
}

}  // namespace rovescio::cli
