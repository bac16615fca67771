// Parses the text again and again from the last place that is settled.
#include "xml/piece_reader.h"

#include <algorithm>
#include <utility>

#include "xml/characters.h"

namespace rovescio::xml {

namespace {

// The parser looks back so far.
constexpr std::size_t kLookBack = 2;

}  // namespace

PieceReader::PieceReader(std::span<const std::string_view> vocabulary, std::size_t depth, Visit opened,
                         Visit closed, std::size_t worthALook)
    : tree_(vocabulary),
      watcher_(*this, depth),
      opened_(std::move(opened)),
      closed_(std::move(closed)),
      worthALook_(worthALook),
      wanted_(worthALook) {}

void PieceReader::Watcher::closed(Node node) {
    reader_.closed_({reader_.tree_, node});
    reader_.tree_.decoded_.clear();
}

void PieceReader::read(std::string_view piece) {
    text_ += piece;
    if (text_.size() < wanted_) return;
    // A fault may be no more than the end of what there is so far; if it is one, it is found again.
    parse();
    // An element that is larger than what there is must not be begun too often.
    wanted_ = std::max(text_.size() + worthALook_, 2 * text_.size());
}

ParseFault PieceReader::finish() {
    if (!begun_ && !looksLikeXml(text_)) return {ParseFault::Kind::noElement, 0, "this is not XML"};
    return parse();
}

ParseFault PieceReader::parse() {
    if (!begun_ && text_.starts_with(kByteOrderMark)) text_.erase(0, kByteOrderMark.size());
    const std::size_t legal = firstIllegal(text_);
    const Limits limits;
    tree_.text_ = text_;
    std::vector<NodeData>& nodes = tree_.nodes_;
    Parser parser(std::string_view(text_).substr(0, legal), limits, tree_.names_, &tree_.names_,
                  {nodes, static_cast<Node>(nodes.size()), 0}, &watcher_);
    if (begun_) {
        parser.rest(from_);
    } else {
        parser.document();
    }
    begun_ = begun_ || parser.settled() > 0;
    // What is open beyond the settled place will be opened again.
    nodes.resize(parser.settledNodes());
    if (nodes.size() > 1) nodes.back().hasChildren = false;
    ParseFault fault = firstFault(parser.fault(), text_, legal);
    const std::size_t dropped = std::max(parser.settled(), kLookBack) - kLookBack;
    from_ = parser.settled() - dropped;
    text_.erase(0, dropped);
    return fault;
}

}  // namespace rovescio::xml
