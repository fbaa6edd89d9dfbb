#include "local_media.h"

#include <gst/base/gstpushsrc.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "../src/glib_ptr.h"
#include "media_part.h"

namespace {

constexpr char const* scheme = "ms-local-stream";
constexpr std::string_view local_start = "ms-local-stream://";
constexpr std::chrono::seconds patience{30};

using runtime::glib_text;
using runtime::gobject_ptr;
using bytes_ptr = std::unique_ptr<GBytes, runtime::release_with<g_bytes_unref>>;

/// The page whose media elements this process plays.
GWeakRef local_page;

/// A request for a piece. A thread of the media framework waits for it; the main thread asks and gets the
/// answer.
class part_request {
  public:
    struct answer {
        bytes_ptr bytes;  // null: there is none
        guint64 total = 0;
    };

    part_request(std::string uri, guint64 begin) : uri(std::move(uri)), begin(begin) {}

    static std::shared_ptr<part_request> send(std::string const& uri, guint64 begin) {
        auto const request = std::make_shared<part_request>(uri, begin);
        g_main_context_invoke(
            nullptr,
            [](gpointer data) {
                ask(std::unique_ptr<reference>(static_cast<reference*>(data)));
                return G_SOURCE_REMOVE;
            },
            new reference(request));
        return request;
    }

    /// Ends the waiting. Any thread; what comes first counts.
    void finish(answer given) {
        std::lock_guard const guard(lock);
        if (!finished) {
            finished = true;
            result = std::move(given);
            changed.notify_all();
        }
    }

    answer wait() {
        std::unique_lock guard(lock);
        changed.wait_for(guard, patience, [this] { return finished; });
        finished = true;
        return std::move(result);
    }

  private:
    using reference = std::shared_ptr<part_request>;

    static void ask(std::unique_ptr<reference> request) {
        auto const page =
            gobject_ptr<WebKitWebPage>::adopt(static_cast<WebKitWebPage*>(g_weak_ref_get(&local_page)));
        if (!page) {
            (*request)->finish({});
            return;
        }
        auto* const parameters =
            g_variant_new(media_part_request, (*request)->uri.c_str(), (*request)->begin);
        webkit_web_page_send_message_to_view(page.get(),
                                             webkit_user_message_new(media_part_message, parameters), nullptr,
                                             on_answer, request.release());
    }

    static void on_answer(GObject* page, GAsyncResult* result, gpointer data) {
        std::unique_ptr<reference> const request(static_cast<reference*>(data));
        auto const message = gobject_ptr<WebKitUserMessage>::adopt(
            webkit_web_page_send_message_to_view_finish(WEBKIT_WEB_PAGE(page), result, nullptr));
        GVariant* const parameters = message ? webkit_user_message_get_parameters(message.get()) : nullptr;
        answer given;
        if (parameters) {
            GVariant* bytes = nullptr;
            g_variant_get(parameters, media_part_answer, &given.total, &bytes);
            given.bytes.reset(g_variant_get_data_as_bytes(bytes));
            g_variant_unref(bytes);
        }
        (*request)->finish(std::move(given));
    }

    std::string const uri;
    guint64 const begin;
    std::mutex lock;
    std::condition_variable changed;
    bool finished = false;
    answer result;
};

/// What a source reads, and where it is.
struct reading {
    std::string uri;
    guint64 position = 0;
    std::atomic<guint64> total = GST_CLOCK_TIME_NONE;  // unknown
    std::mutex lock;                                   // for the rest
    bool is_stopping = false;
    std::shared_ptr<part_request> request;
};

struct source {
    GstPushSrc base;
    reading* own;
};

reading& reading_of(gpointer element) {
    return *reinterpret_cast<source*>(element)->own;
}

/// Whether the page's element was given this very address. A playlist from the web may name others, and must
/// not reach local content.
bool is_chosen_by_page(GstElement* element) {
    auto top = gobject_ptr<GstObject>::share(GST_OBJECT(element));
    while (auto parent = gobject_ptr<GstObject>::adopt(gst_object_get_parent(top.get()))) {
        top = std::move(parent);
    }
    char* uri = nullptr;
    if (g_object_class_find_property(G_OBJECT_GET_CLASS(top.get()), "current-uri")) {
        g_object_get(top.get(), "current-uri", &uri, nullptr);
    }
    glib_text const chosen(uri);
    return chosen && reading_of(element).uri == chosen.get();
}

gboolean start(GstBaseSrc* element) {
    if (!is_chosen_by_page(GST_ELEMENT(element))) {
        GST_ELEMENT_ERROR(element, RESOURCE, NOT_FOUND, (nullptr), ("the page has not asked for it"));
        return FALSE;
    }
    return TRUE;
}

GstFlowReturn create(GstPushSrc* element, GstBuffer** buffer) {
    auto& own = reading_of(element);
    std::shared_ptr<part_request> request;
    {
        std::lock_guard const guard(own.lock);
        if (own.is_stopping) {
            return GST_FLOW_FLUSHING;
        }
        request = own.request = part_request::send(own.uri, own.position);
    }
    auto const [bytes, total] = request->wait();
    {
        std::lock_guard const guard(own.lock);
        own.request.reset();
        if (own.is_stopping) {
            return GST_FLOW_FLUSHING;
        }
    }
    if (!bytes) {
        GST_ELEMENT_ERROR(element, RESOURCE, READ, (nullptr), ("%s cannot be read", own.uri.c_str()));
        return GST_FLOW_ERROR;
    }
    own.total = total;
    GST_OBJECT_LOCK(element);
    GST_BASE_SRC(element)->segment.duration = static_cast<gint64>(total);  // what demuxers ask for
    GST_OBJECT_UNLOCK(element);
    auto const size = g_bytes_get_size(bytes.get());
    if (size == 0) {
        return GST_FLOW_EOS;
    }
    *buffer = gst_buffer_new_wrapped_bytes(bytes.get());
    GST_BUFFER_OFFSET(*buffer) = own.position;
    own.position += size;
    GST_BUFFER_OFFSET_END(*buffer) = own.position;
    return GST_FLOW_OK;
}

gboolean stop_waiting(GstBaseSrc* element) {
    auto& own = reading_of(element);
    std::lock_guard const guard(own.lock);
    own.is_stopping = true;
    if (own.request) {
        own.request->finish({});
    }
    return TRUE;
}

gboolean go_on(GstBaseSrc* element) {
    auto& own = reading_of(element);
    std::lock_guard const guard(own.lock);
    own.is_stopping = false;
    return TRUE;
}

gboolean seek(GstBaseSrc* element, GstSegment* segment) {
    reading_of(element).position = segment->start;
    return TRUE;
}

gboolean size(GstBaseSrc* element, guint64* size) {
    *size = reading_of(element).total;
    return *size != GST_CLOCK_TIME_NONE;
}

gboolean is_seekable(GstBaseSrc*) {
    return TRUE;
}

void set_up_class(gpointer type_class, gpointer);
void set_up_uri_handler(gpointer handler, gpointer);

void set_up(GTypeInstance* element, gpointer) {
    reinterpret_cast<source*>(element)->own = new reading();
}

GType source_type() {
    static GType const type = [] {
        GTypeInfo const info{.class_size = sizeof(GstPushSrcClass),
                             .base_init = nullptr,
                             .base_finalize = nullptr,
                             .class_init = set_up_class,
                             .class_finalize = nullptr,
                             .class_data = nullptr,
                             .instance_size = sizeof(source),
                             .n_preallocs = 0,
                             .instance_init = set_up,
                             .value_table = nullptr};
        GType const made =
            g_type_register_static(GST_TYPE_PUSH_SRC, "RuntimeLocalMediaSource", &info, G_TYPE_FLAG_NONE);
        GInterfaceInfo const handler{set_up_uri_handler, nullptr, nullptr};
        g_type_add_interface_static(made, GST_TYPE_URI_HANDLER, &handler);
        return made;
    }();
    return type;
}

GstBaseSrcClass* parent_class = nullptr;

/// In order only, since what is asked for in any order is asked for on the main thread too, which must not
/// wait.
gboolean query(GstBaseSrc* element, GstQuery* query) {
    if (GST_QUERY_TYPE(query) == GST_QUERY_SCHEDULING) {
        gst_query_set_scheduling(query, GST_SCHEDULING_FLAG_SEEKABLE, 1, -1, 0);
        gst_query_add_scheduling_mode(query, GST_PAD_MODE_PUSH);
        return TRUE;
    }
    return parent_class->query(element, query);
}

void finalize(GObject* element) {
    delete reinterpret_cast<source*>(element)->own;
    G_OBJECT_CLASS(parent_class)->finalize(element);
}

void set_up_class(gpointer type_class, gpointer) {
    static GstStaticPadTemplate pad =
        GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS_ANY);
    parent_class = static_cast<GstBaseSrcClass*>(g_type_class_peek_parent(type_class));
    G_OBJECT_CLASS(type_class)->finalize = finalize;
    gst_element_class_add_static_pad_template(GST_ELEMENT_CLASS(type_class), &pad);
    gst_element_class_set_static_metadata(GST_ELEMENT_CLASS(type_class), "Local content", "Source",
                                          "Reads local content of a web view", "platform library");
    auto* const base = GST_BASE_SRC_CLASS(type_class);
    base->start = start;
    base->unlock = stop_waiting;
    base->unlock_stop = go_on;
    base->do_seek = seek;
    base->get_size = size;
    base->is_seekable = is_seekable;
    base->query = query;
    GST_PUSH_SRC_CLASS(type_class)->create = create;
}

void set_up_uri_handler(gpointer handler, gpointer) {
    auto& functions = *static_cast<GstURIHandlerInterface*>(handler);
    functions.get_type = [](GType) { return GST_URI_SRC; };
    functions.get_protocols = [](GType) {
        static gchar const* const protocols[] = {scheme, nullptr};
        return protocols;
    };
    functions.get_uri = [](GstURIHandler* element) { return g_strdup(reading_of(element).uri.c_str()); };
    functions.set_uri = [](GstURIHandler* element, gchar const* uri, GError**) -> gboolean {
        reading_of(element).uri = uri;
        return TRUE;
    };
}

}  // namespace

void allow_local_media() {
    g_setenv("WEBKIT_GST_ALLOWED_URI_PROTOCOLS", scheme, TRUE);
}

void offer_local_media(WebKitWebPage* page) {
    char const* const uri = webkit_web_page_get_uri(page);
    if (!uri || !std::string_view(uri).starts_with(local_start)) {
        return;
    }
    g_weak_ref_set(&local_page, page);
    // The framework takes some milliseconds to start, which pages of the web that play nothing should not
    // pay.
    static bool const is_known =
        gst_init_check(nullptr, nullptr, nullptr) &&
        gst_element_register(nullptr, "runtimelocalmedia", GST_RANK_PRIMARY, source_type());
    if (!is_known) {
        g_warning("Local content cannot be played: the media framework does not start.");
    }
}
