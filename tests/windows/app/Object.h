#pragma once

#include <array>
#include <atomic>
#include <cstring>
#include <deque>
#include <string>
#include <utility>

#include "platform.h"

/// Objects of the app's side with as little as a test needs: a class names the methods that it answers, and
/// their slots come from the SDK's own declarations. A call of any other method fails and is a finding.
namespace app {

/// The declaration of an interface's methods, in the order of its virtual table.
template <typename Interface>
using Methods = winrt::impl::abi_t<Interface>;

/// A method of an interface, as a position in its virtual table.
struct Method {
    winrt::guid interfaceId;
    std::size_t slot;

    bool operator==(const Method&) const = default;
};

template <typename Pointer>
std::size_t slotOf(Pointer method) {
    // A pointer to a virtual method begins with its offset in the table; the lowest bit marks it as virtual.
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &method, sizeof offset);
    return (offset & ~std::uintptr_t{1}) / sizeof(void*);
}

template <typename Interface, typename Pointer>
Method methodOf(Pointer method) {
    return {winrt::guid_of<Interface>(), slotOf(method)};
}

class Object;

/// What a caller's interface pointer points to.
struct Face {
    void* const* slots;
    Object* object;
};

inline constexpr std::size_t mostSlots = 160;

/// The virtual table of one interface of one class.
struct Table {
    explicit Table(const winrt::guid& interfaceId);

    winrt::guid interfaceId;
    std::array<void*, mostSlots> slots;
};

/// Counts its references. Objects of the user interface may be used on the UI thread only. What makes objects
/// is not agile, so that it is asked for each time and can be refused.
class Object {
  public:
    enum class Threads { ui, any };

    explicit Object(const wchar_t* className, Threads threads = Threads::ui);
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    /// The interface, with a reference of its own, or null.
    void* query(const winrt::guid& interfaceId);
    void forbidKeeping() { kept = false; }
    std::uint32_t addReference() { return ++references; }
    std::uint32_t release();
    const wchar_t* name() const { return className; }
    void checkThread(const Method& method) const;

    /// How many objects of the class are alive.
    static int alive(const std::wstring& className);

  protected:
    void add(const Table& table) { faces.push_back({{table.slots.data(), this}, table.interfaceId}); }

  private:
    struct Entry {
        Face face;
        winrt::guid interfaceId;
    };

    const wchar_t* const className;
    const Threads threads;
    bool kept = true;
    std::atomic<std::uint32_t> references{1};
    std::deque<Entry> faces;
};

/// Notes something that must not happen; the test ends as failed.
void finding(const std::string& text);
int findings();

/// Begins a step of the test. It is named with each finding; when it takes too long, the program ends.
void beginStep(const std::string& name);

/// Fails with the code that the test asked for, if it asked for one, and remembers how the method's
/// operation is to end.
void enter(const Object& object, const Method& method);

/// The virtual table of an interface, filled method by method.
template <typename Owner, typename Interface, typename Declaration = Methods<Interface>>
struct Answers : Table {
    Answers() : Table(winrt::guid_of<Interface>()) {}

    template <auto answer, typename... Arguments>
    Answers& on(std::int32_t (__stdcall Declaration::*method)(Arguments...) noexcept) {
        static Method called;
        called = {interfaceId, slotOf(method)};
        slots.at(called.slot) =
            reinterpret_cast<void*>(+[](Face* self, Arguments... arguments) noexcept -> std::int32_t {
                try {
                    enter(*self->object, called);
                    answer(static_cast<Owner&>(*self->object), arguments...);
                    return 0;
                } catch (...) {
                    return winrt::to_hresult();
                }
            });
        return *this;
    }
};

/// A borrowed argument.
template <typename Type>
const Type& in(void* const& pointer) {
    return reinterpret_cast<const Type&>(pointer);
}

/// Hands out a result with its reference.
template <typename Type>
void out(void** result, Type value) {
    *result = winrt::detach_abi(value);
}

/// The projection of an object that is already alive, as one of its interfaces or as its class.
template <typename Projection>
Projection project(Object& object) {
    return {object.query(winrt::guid_of<winrt::default_interface<Projection>>()),
            winrt::take_ownership_from_abi};
}

template <typename Projection, typename Class, typename... Arguments>
Projection create(Arguments&&... arguments) {
    auto* const object = new Class(std::forward<Arguments>(arguments)...);
    Projection made = project<Projection>(*object);
    object->release();
    return made;
}

/// The object behind a projection.
template <typename Class, typename Projection>
Class& behind(const Projection& projection) {
    return static_cast<Class&>(*static_cast<Face*>(winrt::get_abi(projection))->object);
}

}  // namespace app
