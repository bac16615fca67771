// Large pages of memory under the texts of large scores.
#pragma once

#include <string>

namespace rovescio::musicxml {

// Gives a text room for as many bytes more, and asks the system for large pages under what has not been
// written yet: filling it is then not held up by a page fault for every 4 KiB. Only a hint; where the system
// has no large pages, nothing but the room comes of it.
void reserveInLargePages(std::string& text, std::size_t bytes);

}  // namespace rovescio::musicxml
