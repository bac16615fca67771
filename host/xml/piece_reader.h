// Reads a text that comes in pieces, and keeps no more of it than the element that it is in.
#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "xml/parser.h"
#include "xml/tree.h"

namespace rovescio::xml {

// Hands over what lies near the root as soon as it has been read: the elements of one depth when they are
// complete, those above it when their start tag is. An element and its attributes may be looked at until the
// call returns; of the elements around it only the names.
class PieceReader {
  public:
    using Visit = std::function<void(const Element&)>;

    // The root has depth 1. Pieces are collected until they are worth a look.
    PieceReader(std::span<const std::string_view> vocabulary, std::size_t depth, Visit opened, Visit closed,
                std::size_t worthALook = std::size_t{1} << 20);
    PieceReader(const PieceReader&) = delete;
    PieceReader& operator=(const PieceReader&) = delete;

    // UTF-8; a piece may end anywhere.
    void read(std::string_view piece);
    // After the last piece. The fault's offset means nothing.
    ParseFault finish();

  private:
    class Watcher final : public ParseWatcher {
      public:
        Watcher(PieceReader& reader, std::size_t depth) : ParseWatcher(depth), reader_(reader) {}
        void opened(Node node) override { reader_.opened_({reader_.tree_, node}); }
        void closed(Node node) override;

      private:
        PieceReader& reader_;
    };
    ParseFault parse();

    Tree tree_;  // of what is open
    Watcher watcher_;
    Visit opened_;
    Visit closed_;
    std::string text_;      // what is not settled, after a few bytes that are
    std::size_t from_ = 0;  // of what is not settled
    const std::size_t worthALook_;
    std::size_t wanted_;  // bytes that are worth the next one
    bool begun_ = false;
};

}  // namespace rovescio::xml
