#pragma once

#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/exports/Sequence.h"
#include "fuzz/exports/Session.h"

/// Calls an export in a session with arguments that were decoded, and gives its result to the session.
template <auto function>
void callExport(Session& session, const Step& step) {
    const auto call = [&]<typename Result, typename... Parameters, std::size_t... indices>(
                          Result (*exported)(Parameters...), std::index_sequence<indices...>) {
        // The texts have to live as long as the call.
        const auto arguments = session.prepared(step);
        if constexpr (std::is_void_v<Result>) {
            exported(session.value<Parameters>(arguments[indices])...);
        } else {
            session.keep(step, exported(session.value<Parameters>(arguments[indices])...));
        }
    };
    const auto exported = session.plugin().*function;
    const auto indicesOf = []<typename Result, typename... Parameters>(Result (*)(Parameters...)) {
        return std::index_sequence_for<Parameters...>();
    };
    call(exported, indicesOf(exported));
}
