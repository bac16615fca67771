// The passage of one call through the gate, as expanded for every exported host function.
#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

#include "contract/records.h"
#include "engine/interface/gate.h"

namespace rovescio::engine {

// Checks the version word and counts the call; false when the fault plan wants it to fail.
bool admitCall(HostFunction function, std::uint32_t version);

// Where calls are traced to; null: nowhere.
std::ostream* callTrace();

// Writes one argument or result of a traced call.
template <class T>
void traceValue(std::ostream& out, T value) {
    if constexpr (std::is_same_v<T, const char*>) {
        out << '"' << (value ? value : "") << '"';
    } else if constexpr (std::is_same_v<T, const EREGION*>) {
        if (!value) {
            out << "null";
            return;
        }
        out << "slots " << value->start.slot << '-' << value->end.slot << " from " << value->start.measure
            << ':' << value->start.position << " to " << value->end.measure << ':' << value->end.position;
    } else if constexpr (std::is_pointer_v<T> || std::is_same_v<T, SXDialogProc>) {
        out << (value ? "set" : "null");
    } else {
        out << +value;
    }
}

// Writes "name=value" for each argument; names come as they stand in the list, separated by commas.
template <class... Args>
void traceArguments(std::ostream& out, std::string_view names, Args... args) {
    [[maybe_unused]] const auto one = [&](auto value) {
        const std::size_t comma = names.find(',');
        std::string_view name = names.substr(0, comma);
        while (name.ends_with(' ')) name.remove_suffix(1);
        out << name << '=';
        traceValue(out, value);
        if (comma == std::string_view::npos) return;
        out << ", ";
        names.remove_prefix(comma + 1);
        while (!names.empty() && names.front() == ' ') names.remove_prefix(1);
    };
    (one(args), ...);
}

// Runs one call: check, count, fault plan, work, trace. A planned fault gives 0 and does no work.
template <class R, class Work, class... Args>
R passGate(HostFunction function, std::uint32_t version, std::string_view names, Work work, Args... args) {
    const bool admitted = admitCall(function, version);
    std::ostream* trace = callTrace();
    if (!trace) [[likely]] {
        if (!admitted) return R();
        return work(args...);
    }
    *trace << hostFunctionName(function) << '(';
    traceArguments(*trace, names, args...);
    *trace << ')' << (admitted ? "" : " [fails as planned]") << std::endl;
    if (!admitted) return R();
    if constexpr (std::is_void_v<R>) {
        work(args...);
    } else {
        const R result = work(args...);
        *trace << "  " << hostFunctionName(function) << " = ";
        traceValue(*trace, result);
        *trace << std::endl;
        return result;
    }
}

}  // namespace rovescio::engine
