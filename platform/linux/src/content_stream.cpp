#include "content_stream.h"

#include <algorithm>
#include <atomic>
#include <mutex>

namespace runtime {

namespace {

/// The part that is still to be read. Each read may come on another thread of GIO's.
struct remaining {
    std::shared_ptr<stream_object> source;
    uint64_t begin;
    uint64_t length;
    std::mutex lock;
};

struct content_stream {
    GInputStream base;
    std::atomic<remaining*> rest;
};

struct content_stream_class {
    GInputStreamClass base;
};

gssize read(GInputStream* stream, void* buffer, gsize count, GCancellable*, GError** error) {
    auto& rest = *reinterpret_cast<content_stream*>(stream)->rest.load();
    std::lock_guard const guard(rest.lock);
    auto const wanted = std::min<uint64_t>(count, rest.length);
    try {
        auto const done = rest.source->read(rest.begin, {static_cast<uint8_t*>(buffer), wanted});
        rest.begin += done;
        rest.length -= done;
        return static_cast<gssize>(done);
    } catch (winrt::hresult_error const& failure) {
        g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_FAILED,
                            winrt::to_string(failure.message()).c_str());
        return -1;
    }
}

GObjectClass* parent_class = nullptr;

void finalize(GObject* object) {
    std::unique_ptr<remaining> const rest(reinterpret_cast<content_stream*>(object)->rest.load());
    {
        std::lock_guard const last_read_ended(rest->lock);
    }
    parent_class->finalize(object);
}

void initialise_class(gpointer type_class, gpointer) {
    parent_class = static_cast<GObjectClass*>(g_type_class_peek_parent(type_class));
    static_cast<GObjectClass*>(type_class)->finalize = finalize;
    static_cast<GInputStreamClass*>(type_class)->read_fn = read;
}

GType content_stream_type() {
    static GType const type = g_type_register_static_simple(
        G_TYPE_INPUT_STREAM, "RuntimeContentStream", sizeof(content_stream_class), initialise_class,
        sizeof(content_stream), nullptr, G_TYPE_FLAG_NONE);
    return type;
}

}  // namespace

gobject_ptr<GInputStream> open_content(std::shared_ptr<stream_object> source, uint64_t begin,
                                       uint64_t length) {
    auto* const stream = static_cast<GInputStream*>(g_object_new(content_stream_type(), nullptr));
    reinterpret_cast<content_stream*>(stream)->rest = new remaining{std::move(source), begin, length, {}};
    return gobject_ptr<GInputStream>::adopt(stream);
}

}  // namespace runtime
