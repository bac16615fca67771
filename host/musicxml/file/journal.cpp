// Messages with their place in the file.
#include "musicxml/file/journal.h"

#include <algorithm>

namespace rovescio::musicxml {

engine::Problem Journal::at(std::string message, std::size_t offset, std::string remedy) const {
    const std::string_view before = text_.substr(0, std::min(offset, text_.size()));
    const auto line = 1 + std::count(before.begin(), before.end(), '\n');
    return {std::move(message), file_, static_cast<int>(line), measure_, std::move(remedy)};
}

void Journal::fail(std::string message, std::size_t offset, std::string remedy) {
    if (!failed()) problem_ = at(std::move(message), offset, std::move(remedy));
}

void Journal::notice(const std::string& topic, std::string message, std::size_t offset) {
    if (topics_.insert(topic).second) notices_.push_back(at(std::move(message), offset, {}).text());
}

}  // namespace rovescio::musicxml
