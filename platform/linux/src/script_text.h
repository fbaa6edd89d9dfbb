#pragma once

#include <jsc/jsc.h>

#include <string>

namespace runtime {

/// A script's text as UTF-8, NULs included. The engine cuts it at a lone surrogate, so scripts make their
/// texts well-formed before they hand them over. Empty for an object that cannot be made a text.
std::string text_of(JSCValue* value);

}  // namespace runtime
