// Errors as values: what went wrong, where, and what the user can do about it.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace rovescio::engine {

// One problem, shown to the user as "file:line:column: message (measure M). remedy".
struct Problem {
    std::string message;
    std::string file;     // empty when no file is concerned
    int line = 0;         // 1-based; 0 when unknown
    std::string measure;  // the measure's printed number; empty when none is concerned
    std::string remedy;
    int column = 0;  // 1-based, characters; 0 when the line says enough

    // The whole text on one line.
    [[nodiscard]] std::string text() const;
};

// A value or the problem that kept it from being made.
template <class T>
class [[nodiscard]] Result {
  public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Problem problem) : state_(std::in_place_index<1>, std::move(problem)) {}

    [[nodiscard]] bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }
    T& value() { return std::get<0>(state_); }
    const T& value() const { return std::get<0>(state_); }
    T& operator*() { return value(); }
    const T& operator*() const { return value(); }
    T* operator->() { return &value(); }
    [[nodiscard]] const Problem& problem() const { return std::get<1>(state_); }

  private:
    std::variant<T, Problem> state_;
};

// A problem that concerns no file.
Problem problemWith(std::string message, std::string remedy);

// Nothing but success; for operations that only can fail.
struct Done {};

}  // namespace rovescio::engine
