#pragma once

#include <gio/gio.h>

#include <memory>

#include "glib_ptr.h"
#include "stream.h"

namespace runtime {

/// A part of a stream's content, as the engine reads it: piece by piece, on threads of GIO.
gobject_ptr<GInputStream> open_content(std::shared_ptr<stream_object> source, uint64_t begin,
                                       uint64_t length);

}  // namespace runtime
