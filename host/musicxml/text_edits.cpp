// Collecting and splicing of edits.
#include "musicxml/text_edits.h"

#include <algorithm>

namespace rovescio::musicxml {

// Where the whitespace before an element begins; the element itself when text
// stands before it.
std::size_t TextEdits::indentationBegin(const Element& element) const {
    std::size_t begin = element.begin;
    while (begin > 0 && std::string_view(" \t\r\n").find(text_[begin - 1]) != std::string_view::npos) --begin;
    return begin > 0 && text_[begin - 1] == '>' ? begin : element.begin;
}

void TextEdits::replace(std::size_t begin, std::size_t end, std::string_view replacement) {
    const auto poolBegin = static_cast<std::uint32_t>(pool_.size());
    pool_ += replacement;
    edits_.push_back({static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end), poolBegin,
                      static_cast<std::uint32_t>(pool_.size()), false});
}

void TextEdits::remove(const Element& element) {
    replace(indentationBegin(element), element.end, {});
}

void TextEdits::insertAfter(const Element& element, std::string_view inserted) {
    const std::size_t indentation = indentationBegin(element);
    std::string replacement(text_.substr(indentation, element.begin - indentation));
    replacement += inserted;
    replace(element.end, element.end, replacement);
}

void TextEdits::settleNew() {
    std::sort(edits_.begin() + static_cast<std::ptrdiff_t>(settled_), edits_.end());
    settled_ = edits_.size();
}

void TextEdits::settleAll() {
    std::erase_if(edits_, [](const Edit& edit) { return edit.gone; });
    if (!std::is_sorted(edits_.begin(), edits_.end())) std::sort(edits_.begin(), edits_.end());
    settled_ = edits_.size();
}

std::pair<std::size_t, std::size_t> TextEdits::within(std::size_t begin, std::size_t end) const {
    const auto settled = edits_.begin() + static_cast<std::ptrdiff_t>(settled_);
    const auto before = [](const Edit& edit, std::size_t place) { return edit.begin < place; };
    const auto first = std::lower_bound(edits_.begin(), settled, begin, before);
    const auto last = std::lower_bound(first, settled, end, before);
    return {static_cast<std::size_t>(first - edits_.begin()),
            static_cast<std::size_t>(last - edits_.begin())};
}

std::string TextEdits::edited(std::size_t begin, std::size_t end) const {
    std::string result;
    std::size_t copied = begin;
    const auto [first, last] = within(begin, end);
    for (std::size_t i = first; i < last; ++i) {
        const Edit& edit = edits_[i];
        result += text_.substr(copied, edit.begin - copied);
        result += std::string_view(pool_).substr(edit.poolBegin, edit.poolEnd - edit.poolBegin);
        copied = edit.end;
    }
    return result += text_.substr(copied, end - copied);
}

void TextEdits::replaceStretch(std::size_t begin, std::size_t end, std::string_view replacement) {
    const auto [first, last] = within(begin, end);
    for (std::size_t i = first; i < last; ++i) edits_[i].gone = true;
    replace(begin, end, replacement);
}

bool TextEdits::applyTo(const ByteSink& sink) const {
    // Most pieces are short; the sink gets them in portions that fit into the processor's cache.
    constexpr std::size_t kPortion = std::size_t{1} << 16;
    std::string portion;
    portion.reserve(kPortion);
    const auto put = [&](std::string_view piece) {
        while (portion.size() + piece.size() > kPortion) {
            const std::size_t fits = kPortion - portion.size();
            portion += piece.substr(0, fits);
            piece.remove_prefix(fits);
            if (!sink(portion)) return false;
            portion.clear();
        }
        portion += piece;
        return true;
    };
    std::size_t copied = 0;
    for (const Edit& edit : edits_) {
        if (!put(text_.substr(copied, edit.begin - copied))) return false;
        if (!put(std::string_view(pool_).substr(edit.poolBegin, edit.poolEnd - edit.poolBegin))) return false;
        copied = edit.end;
    }
    return put(text_.substr(copied)) && sink(portion);
}

}  // namespace rovescio::musicxml
