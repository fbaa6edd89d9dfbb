#pragma once

#include <winrt/impl/array.h>
#include <winrt/impl/com_ptr.h>
#include <winrt/impl/coroutine.h>
#include <winrt/impl/error.h>
#include <winrt/impl/event.h>
#include <winrt/impl/implements.h>
#include <winrt/impl/object.h>
#include <winrt/impl/string.h>
