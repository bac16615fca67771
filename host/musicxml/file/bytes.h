// The bytes of a file, which are copied nowhere.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace rovescio::musicxml {

// Memory of its own, or a file that someone has mapped and keeps mapped as long as the owner lives.
class Bytes {
  public:
    Bytes() = default;
    Bytes(std::string own) {
        const auto kept = std::make_shared<const std::string>(std::move(own));
        view_ = *kept;
        owner_ = kept;
    }
    Bytes(const char* text) : Bytes(std::string(text)) {}
    // `areSame` tells whether the file still is what it was when it was mapped.
    Bytes(std::string_view mapped, std::shared_ptr<const void> owner, std::function<bool()> areSame)
        : view_(mapped), owner_(std::move(owner)), areSame_(std::move(areSame)) {}

    [[nodiscard]] std::string_view view() const { return view_; }
    [[nodiscard]] std::size_t size() const { return view_.size(); }
    [[nodiscard]] bool areSame() const { return !areSame_ || areSame_(); }

  private:
    std::string_view view_;
    std::shared_ptr<const void> owner_;
    std::function<bool()> areSame_;
};

}  // namespace rovescio::musicxml
