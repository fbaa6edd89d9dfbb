#pragma once

#include <webkit2/webkit2.h>

#include "glib_ptr.h"

namespace runtime {

/// The library's own script world in pages: its scripts see the document, and through `page` and `evaluate`
/// what the document's scripts see, while those do not see it. Only the top document has the two.
inline constexpr char const* page_world = "runtime";

using user_script = std::unique_ptr<WebKitUserScript, release_with<webkit_user_script_unref>>;

/// A script of that world that runs at the start of every top document.
inline user_script make_page_script(char const* source) {
    return user_script(webkit_user_script_new_for_world(source, WEBKIT_USER_CONTENT_INJECT_TOP_FRAME,
                                                        WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START,
                                                        page_world, nullptr, nullptr));
}

/// Has the engine load into its page processes what gives that world `page`, `evaluate` and what else scripts
/// cannot get by themselves. It lies beside this library; throws E_FAIL when it is missing there.
void offer_page_access(WebKitWebContext* context);

}  // namespace runtime
