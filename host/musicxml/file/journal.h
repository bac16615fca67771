// What a reader reports: the problem that stopped it, and notices, each once.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "engine/model/problem.h"

namespace rovescio::musicxml {

class Journal {
  public:
    // The text must outlive the journal; it turns offsets into line numbers.
    Journal(std::string_view text, std::string file) : text_(text), file_(std::move(file)) {}

    // The printed number of the measure that following messages are about; empty
    // for none.
    void setMeasure(std::string_view label) { measure_ = label; }

    // Keeps the first problem; offset says where in the text it lies.
    void fail(std::string message, std::size_t offset, std::string remedy);
    [[nodiscard]] bool failed() const { return problem_.has_value(); }
    // Makes room for a problem that goes before the one that was kept.
    [[nodiscard]] const engine::Problem& problem() const { return *problem_; }

    // Notes something once per topic; later ones of the same topic are dropped.
    void notice(const std::string& topic, std::string message, std::size_t offset);
    [[nodiscard]] std::vector<std::string>& notices() { return notices_; }

  private:
    [[nodiscard]] engine::Problem at(std::string message, std::size_t offset, std::string remedy) const;

    std::string_view text_;
    std::string file_;
    std::string measure_;
    std::optional<engine::Problem> problem_;
    std::set<std::string> topics_;
    std::vector<std::string> notices_;
};

}  // namespace rovescio::musicxml
