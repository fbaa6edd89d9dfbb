#include "script_text.h"

#include <memory>

#include "glib_ptr.h"

namespace runtime {

std::string text_of(JSCValue* value) {
    std::unique_ptr<GBytes, release_with<g_bytes_unref>> const bytes(jsc_value_to_string_as_bytes(value));
    if (!bytes) {
        return {};
    }
    gsize size = 0;
    auto const* const characters = static_cast<char const*>(g_bytes_get_data(bytes.get(), &size));
    return {characters, size};
}

}  // namespace runtime
