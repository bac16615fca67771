// Strict reading of dialog descriptions.
#include "dialogs/dialog_resources.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>
#include <utility>

namespace rovescio::dialogs {

namespace {

using nlohmann::json;

constexpr std::uintmax_t kLargestFile = std::uintmax_t{1} << 20;

constexpr std::array<std::pair<std::string_view, ItemKind>, 5> kKinds = {{{"button", ItemKind::button},
                                                                          {"check", ItemKind::check},
                                                                          {"popup", ItemKind::popup},
                                                                          {"number", ItemKind::number},
                                                                          {"text", ItemKind::text}}};

// Where the reader stands and what it first stumbled over.
class Reader {
  public:
    explicit Reader(std::string file) : file_(std::move(file)) {}

    engine::Problem problem(const std::string& what) const {
        return {.message = "dialog descriptions: " + what,
                .file = file_,
                .measure = {},
                .remedy = "Install the plug-in bundle again"};
    }

    // True when the object has exactly these members.
    static bool hasMembers(const json& object, std::initializer_list<std::string_view> names) {
        return object.is_object() && object.size() == names.size() &&
               std::all_of(names.begin(), names.end(),
                           [&](std::string_view name) { return object.contains(name); });
    }

    static std::optional<short> numberFrom(const json& value, int lowest) {
        if (!value.is_number_integer()) return std::nullopt;
        const auto number = value.get<std::int64_t>();
        if (number < lowest || number > std::numeric_limits<short>::max()) return std::nullopt;
        return static_cast<short>(number);
    }

    engine::Result<Item> item(const json& source, short dialog) const {
        const std::string place = "dialog " + std::to_string(dialog);
        if (!source.is_object() || !source.contains("item") || !source.contains("kind")) {
            return problem(place + " has an item without number or kind");
        }
        const std::optional<short> number = numberFrom(source["item"], 1);
        if (!number) return problem(place + " has an item whose number is not between 1 and 32767");
        const std::string itemPlace = "item " + std::to_string(*number) + " of " + place;
        const auto* kind = std::find_if(kKinds.begin(), kKinds.end(),
                                        [&](const auto& known) { return source["kind"] == known.first; });
        if (kind == kKinds.end()) return problem(itemPlace + " has an unknown kind");
        Item result{.number = *number, .kind = kind->second};
        if (result.kind != ItemKind::popup) {
            if (!hasMembers(source, {"item", "kind"})) {
                return problem(itemPlace + " has members that its kind does not allow");
            }
            return result;
        }
        if (!hasMembers(source, {"item", "kind", "entries"})) {
            return problem(itemPlace + " needs a count of entries and nothing else");
        }
        const std::optional<short> entries = numberFrom(source["entries"], 1);
        if (!entries) return problem(itemPlace + " has a count of entries that is not positive");
        result.entries = *entries;
        return result;
    }

    engine::Result<DialogDescription> dialog(const json& source) const {
        if (!hasMembers(source, {"number", "items"}) || !source["items"].is_array()) {
            return problem("a dialog needs a number and a list of items, and nothing else");
        }
        const std::optional<short> number = numberFrom(source["number"], 1);
        if (!number) return problem("a dialog's number is not between 1 and 32767");
        DialogDescription result{.number = *number, .items = {}};
        for (const json& itemSource : source["items"]) {
            engine::Result<Item> read = item(itemSource, *number);
            if (!read) return read.problem();
            const bool twice = std::any_of(result.items.begin(), result.items.end(),
                                           [&](const Item& other) { return other.number == read->number; });
            if (twice) {
                return problem("item " + std::to_string(read->number) + " of dialog " +
                               std::to_string(*number) + " is described twice");
            }
            result.items.push_back(*read);
        }
        return result;
    }

  private:
    std::string file_;
};

}  // namespace

std::string_view itemKindName(ItemKind kind) {
    const auto* known =
        std::find_if(kKinds.begin(), kKinds.end(), [&](const auto& entry) { return entry.second == kind; });
    return known->first;
}

engine::Result<DialogResources> DialogResources::load(const std::string& bundle) {
    namespace fs = std::filesystem;
    const fs::path path = fs::path(bundle) / "Contents/Resources/Dialogs.json";
    const Reader reader(path.string());
    std::error_code error;
    // A pipe or device may never end.
    const fs::file_status status = fs::status(path, error);
    if (!fs::exists(status)) return reader.problem("the file is missing");
    if (!fs::is_regular_file(status)) return reader.problem("not a regular file");
    if (fs::file_size(path, error) > kLargestFile) return reader.problem("larger than any plug-in needs");
    std::ifstream in(path, std::ios::binary);
    if (!in) return reader.problem("the file cannot be read");
    return parse(std::string(std::istreambuf_iterator<char>(in), {}), path.string());
}

engine::Result<DialogResources> DialogResources::parse(const std::string& text, const std::string& file) {
    const Reader reader(file);
    const json root = json::parse(text, nullptr, false);
    if (root.is_discarded()) return reader.problem("not valid JSON");
    if (!Reader::hasMembers(root, {"dialogs"}) || !root["dialogs"].is_array()) {
        return reader.problem("the list \"dialogs\" is missing, or is not the only member");
    }
    DialogResources resources;
    for (const json& source : root["dialogs"]) {
        engine::Result<DialogDescription> dialog = reader.dialog(source);
        if (!dialog) return dialog.problem();
        const short number = dialog->number;
        if (!resources.dialogs_.emplace(number, std::move(*dialog)).second) {
            return reader.problem("dialog " + std::to_string(number) + " is described twice");
        }
    }
    return resources;
}

const DialogDescription* DialogResources::find(short number) const {
    const auto found = dialogs_.find(number);
    return found == dialogs_.end() ? nullptr : &found->second;
}

}  // namespace rovescio::dialogs
