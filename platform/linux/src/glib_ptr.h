#pragma once

#include <glib-object.h>

#include <cstddef>
#include <memory>
#include <utility>

namespace runtime {

/// A counted reference to a GObject.
template <typename T>
class gobject_ptr {
  public:
    gobject_ptr(std::nullptr_t = nullptr) noexcept {}
    gobject_ptr(gobject_ptr const& other) noexcept : gobject_ptr(share(other.object)) {}
    gobject_ptr(gobject_ptr&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    gobject_ptr& operator=(gobject_ptr other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~gobject_ptr() {
        if (object) {
            g_object_unref(object);
        }
    }

    /// Takes over a reference that the caller owns ("transfer full").
    static gobject_ptr adopt(T* owned) noexcept {
        gobject_ptr result;
        result.object = owned;
        return result;
    }

    /// Adds a reference to an object that somebody else owns ("transfer none"), and sinks a floating one.
    static gobject_ptr share(T* borrowed) noexcept {
        return adopt(borrowed ? static_cast<T*>(g_object_ref_sink(borrowed)) : nullptr);
    }

    T* get() const noexcept { return object; }
    T* release() noexcept { return std::exchange(object, nullptr); }
    explicit operator bool() const noexcept { return object != nullptr; }

  private:
    T* object = nullptr;
};

/// A deleter for whatever else a C library hands out: `std::unique_ptr<GUri, release_with<g_uri_unref>>`.
template <auto release>
struct release_with {
    void operator()(auto* pointer) const noexcept { release(pointer); }
};

/// A text from GLib's allocator.
using glib_text = std::unique_ptr<char, release_with<g_free>>;

/// The error of one call: give `put()` as the last argument and look at it afterwards.
class glib_error {
  public:
    glib_error() noexcept = default;
    glib_error(glib_error const&) = delete;
    glib_error& operator=(glib_error const&) = delete;
    ~glib_error() { g_clear_error(&error); }

    GError** put() noexcept {
        g_clear_error(&error);
        return &error;
    }

    explicit operator bool() const noexcept { return error != nullptr; }
    GError const* operator->() const noexcept { return error; }
    GError const* get() const noexcept { return error; }
    bool matches(GQuark domain, int code) const noexcept { return g_error_matches(error, domain, code); }
    char const* message() const noexcept { return error ? error->message : ""; }

  private:
    GError* error = nullptr;
};

}  // namespace runtime
