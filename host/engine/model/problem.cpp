// Text of a problem as the user reads it.
#include "engine/model/problem.h"

namespace rovescio::engine {

std::string Problem::text() const {
    std::string result;
    if (!file.empty()) {
        result += file;
        if (line > 0) result.append(":").append(std::to_string(line));
        if (line > 0 && column > 0) result.append(":").append(std::to_string(column));
        result += ": ";
    }
    result += message;
    if (!measure.empty()) result.append(" (measure ").append(measure).append(")");
    if (!remedy.empty()) result.append(". ").append(remedy);
    return result;
}

Problem problemWith(std::string message, std::string remedy) {
    return {.message = std::move(message), .file = {}, .measure = {}, .remedy = std::move(remedy)};
}

}  // namespace rovescio::engine
