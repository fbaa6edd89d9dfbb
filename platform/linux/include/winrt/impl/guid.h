#pragma once

#include <unknwn.h>

namespace winrt {

using guid = ::GUID;

}  // namespace winrt
