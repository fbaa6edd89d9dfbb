#pragma once

#include <array>
#include <atomic>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <tuple>
#include <utility>

#include "platform.h"

/// Objects of the app's side with as little as a test needs: each names the methods that it answers, and
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

class Object;

/// What a caller's interface pointer points to.
struct Face {
    void* const* slots;
    Object* object;
};

/// The virtual table of one interface of one class.
struct Table {
    explicit Table(const winrt::guid& interfaceId);

    winrt::guid interfaceId;
    std::array<void*, 160> slots;
};

/// Counts its references. Objects of the user interface may be used on the UI thread only.
class Object {
  public:
    enum class Threads { ui, any };

    explicit Object(const wchar_t* className, Threads threads = Threads::ui);
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    /// Adds the interface whose table the function makes, once for each type of function.
    template <typename MakeTable>
    Object& add(MakeTable make) {
        static const auto table = make();
        faces.push_back({{table.slots.data(), this}, table.interfaceId});
        return *this;
    }
    /// Adds interfaces of which no method is answered.
    template <typename... Interfaces>
    Object& addBare() {
        (add([] { return Table(winrt::guid_of<Interfaces>()); }), ...);
        return *this;
    }

    /// The interface, with a reference of its own, or null.
    void* query(const winrt::guid& interfaceId);
    std::uint32_t addReference() { return ++references; }
    std::uint32_t release();
    const wchar_t* name() const { return className; }
    /// Not agile, so that nobody keeps it beyond one use.
    void forbidKeeping() { mayBeKept = false; }
    void checkThread(const Method& method) const;

    /// How many objects of the class are alive.
    static int alive(const std::wstring& className);

  private:
    struct Entry {
        Face face;
        winrt::guid interfaceId;
    };

    const wchar_t* const className;
    const Threads threads;
    bool mayBeKept = true;
    std::atomic<std::uint32_t> references{1};
    std::deque<Entry> faces;
};

/// Notes something that must not happen; the test ends as failed.
void finding(const std::string& text);
/// Notes it unless the condition holds.
void check(bool right, const std::string& what);

/// Ends the program at once: the plug-in and its threads stay until then.
[[noreturn]] void endProgram();

/// Begins a step of the test. It is named with each finding; when it takes too long, the program ends.
void beginStep(const std::string& name);

/// Fails with the code that the test asked for, if it asked for one, and remembers how the method's operation
/// is to end.
void enter(const Object& object, const Method& method);

/// A borrowed argument as what the answer wants.
template <typename Parameter, typename Argument>
decltype(auto) borrow(Argument& argument) {
    using Wanted = std::remove_cvref_t<Parameter>;
    if constexpr (std::is_same_v<Argument, void*> && !std::is_pointer_v<Wanted>) {
        return reinterpret_cast<const Wanted&>(argument);
    } else {
        return static_cast<Wanted>(argument);
    }
}

/// Hands out a result, objects and texts with their reference.
template <typename Target, typename Value>
void give(Target* target, Value value) {
    if constexpr (std::is_same_v<Target, void*> && !std::is_pointer_v<Value>) {
        *target = winrt::detach_abi(value);
    } else {
        *target = static_cast<Target>(value);
    }
}

/// Calls what answers a method, a function of the object and the first arguments; a result goes to the last
/// argument.
template <typename Answer, typename Owner, typename Arguments, typename Result, typename... Parameters>
void respond(const Answer& answer, Owner& owner, const Arguments& arguments,
             Result (Answer::*)(Owner&, Parameters...) const) {
    [&]<std::size_t... i>(std::index_sequence<i...>) {
        if constexpr (std::is_void_v<Result>) {
            answer(owner, borrow<Parameters>(std::get<i>(arguments))...);
        } else {
            give(std::get<std::tuple_size_v<Arguments> - 1>(arguments),
                 answer(owner, borrow<Parameters>(std::get<i>(arguments))...));
        }
    }(std::index_sequence_for<Parameters...>());
}

/// The virtual table of an interface, filled method by method.
template <typename Owner, typename Interface>
struct Answers : Table {
    Answers() : Table(winrt::guid_of<Interface>()) {}

    /// `answer` is a function or, for a property, a member of the object.
    template <auto answer, typename... Arguments>
    Answers& on(std::int32_t (__stdcall Methods<Interface>::*method)(Arguments...) noexcept) {
        static Method called;
        called = {interfaceId, slotOf(method)};
        slots.at(called.slot) =
            reinterpret_cast<void*>(+[](Face* self, Arguments... arguments) noexcept -> std::int32_t {
                try {
                    enter(*self->object, called);
                    auto& owner = static_cast<Owner&>(*self->object);
                    if constexpr (std::is_member_object_pointer_v<decltype(answer)>) {
                        access(owner.*answer, arguments...);
                    } else {
                        respond(answer, owner, std::tie(arguments...), &decltype(answer)::operator());
                    }
                    return 0;
                } catch (...) {
                    return winrt::to_hresult();
                }
            });
        return *this;
    }

  private:
    template <typename Member, typename Argument>
    static void access(Member& member, Argument argument) {
        if constexpr (std::is_pointer_v<Argument> && !std::is_same_v<Argument, void*>) {
            give(argument, member);
        } else {
            member = borrow<Member>(argument);
        }
    }
};

/// The projection of an object that is already alive.
template <typename Projection>
Projection project(Object& object) {
    return {object.query(winrt::guid_of<winrt::default_interface<Projection>>()),
            winrt::take_ownership_from_abi};
}

/// The same of one just made, whose only reference it takes over.
template <typename Projection>
Projection adopt(Object* object) {
    Projection made = project<Projection>(*object);
    object->release();
    return made;
}

template <typename Projection, typename Class, typename... Arguments>
Projection create(Arguments&&... arguments) {
    return adopt<Projection>(new Class(std::forward<Arguments>(arguments)...));
}

/// The object behind a projection.
template <typename Class, typename Projection>
Class& behind(const Projection& projection) {
    return static_cast<Class&>(*static_cast<Face*>(winrt::get_abi(projection))->object);
}

/// How to make what a class is activated with.
using MakeFactory = std::function<Object*()>;
using Factories = std::map<std::wstring, MakeFactory>;

/// A factory or the static side of a class, with the interfaces whose tables the functions make.
template <typename... MakeTable>
MakeFactory statics(MakeTable... make) {
    return [=] {
        auto* const object = new Object(L"factory", Object::Threads::any);
        (object->add(make), ...);
        return object;
    };
}

/// Makes the table of a factory whose objects need no arguments.
template <typename Class>
constexpr auto activation = [] {
    using I = foundation::IActivationFactory;
    return Answers<Object, I>()
        .template on<[](Object&) { return adopt<foundation::IInspectable>(new Class); }>(
            &Methods<I>::ActivateInstance);
};

template <typename Class>
MakeFactory factory() {
    return statics(activation<Class>);
}

}  // namespace app
