#pragma once

#include <array>
#include <atomic>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <memory>
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

    bool operator<(const Method& other) const {
        return interfaceId == other.interfaceId ? slot < other.slot : interfaceId < other.interfaceId;
    }
};

template <typename Pointer>
std::size_t slotOf(Pointer method) {
    // A pointer to a virtual method begins with its offset in the table; the lowest bit marks it as virtual.
    std::uintptr_t offset = 0;
    std::memcpy(&offset, &method, sizeof offset);
    return (offset & ~std::uintptr_t{1}) / sizeof(void*);
}

template <typename Interface, auto method>
Method methodOf() {
    return {winrt::guid_of<Interface>(), slotOf(method)};
}

class Object;

/// What a caller's interface pointer points to: one interface of an object.
struct Face {
    Face(Object& object, const winrt::guid& interfaceId);

    void** table = nullptr;  // first, for the caller
    Object& object;
    const winrt::guid interfaceId;
    std::array<void*, 160> slots;
    std::map<std::size_t, std::shared_ptr<void>> answers{};
};

/// Counts its references. Objects of the user interface may be used on the UI thread only.
class Object {
  public:
    enum class Threads { ui, any };

    Object(const wchar_t* className, Threads threads) : className(className), threads(threads) {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

    std::uint32_t AddRef() { return ++references; }
    std::uint32_t Release();

    /// The interface, with a reference of its own, or null.
    void* query(const winrt::guid& interfaceId);
    /// An interface that it has from now on.
    Face& face(const winrt::guid& interfaceId);
    const wchar_t* name() const { return className; }
    /// Not agile, so that nobody keeps it beyond one use.
    void forbidKeeping() { mayBeKept = false; }
    void checkThread(const Method& method) const;

    /// What `behind` gives.
    std::shared_ptr<void> state;

  private:
    ~Object() = default;

    const wchar_t* const className;
    const Threads threads;
    bool mayBeKept = true;
    std::atomic<std::uint32_t> references{0};
    std::deque<Face> faces;
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

/// The projection of an object that is already alive.
template <typename Projection>
Projection project(Object& object) {
    return {object.query(winrt::guid_of<winrt::default_interface<Projection>>()),
            winrt::take_ownership_from_abi};
}

/// A method of an interface, as two arguments of a template.
#define METHOD(interface, name) interface, &app::Methods<interface>::name

/// An object in the making. It becomes whatever projection is wanted of it.
class Making {
  public:
    Making(const wchar_t* className, Object::Threads threads) {
        object.copy_from(new Object(className, threads));
    }

    /// Has an interface even if none of its methods is answered.
    template <typename Interface>
    const Making& also() const {
        object->face(winrt::guid_of<Interface>());
        return *this;
    }

    /// Lets a function answer a method. It gets the first arguments; its result goes to the last one.
    template <typename Interface, auto method, typename Answer>
    const Making& on(Answer answer) const {
        return bind<Interface, method>(std::function(std::move(answer)), method);
    }

    template <typename Interface, auto method, typename Value>
    const Making& constant(Value value) const {
        return on<Interface, method>([value] { return value; });
    }

    template <typename Interface, auto get, typename, auto put, typename Value>
    const Making& property(Value initial) const {
        const auto value = std::make_shared<Value>(std::move(initial));
        on<Interface, get>([value] { return *value; });
        return on<Interface, put>([value](const Value& changed) { *value = changed; });
    }

    const Making& holding(std::shared_ptr<void> state) const {
        object->state = std::move(state);
        return *this;
    }

    template <typename Projection>
    operator Projection() const {
        if constexpr (std::is_same_v<Projection, winrt::com_ptr<Object>>) {
            return object;
        } else {
            return project<Projection>(*object);
        }
    }

  private:
    template <typename Interface, auto method, typename Result, typename... Parameters, typename... Arguments>
    const Making& bind(std::function<Result(Parameters...)> answer,
                       std::int32_t (__stdcall Methods<Interface>::*)(Arguments...) noexcept) const {
        using Answer = decltype(answer);
        const std::size_t slot = slotOf(method);
        Face& face = object->face(winrt::guid_of<Interface>());
        face.answers[slot] = std::make_shared<Answer>(std::move(answer));
        face.slots.at(slot) =
            reinterpret_cast<void*>(+[](Face* self, Arguments... arguments) noexcept -> std::int32_t {
                try {
                    const std::size_t called = slotOf(method);
                    enter(self->object, {self->interfaceId, called});
                    respond(*static_cast<Answer*>(self->answers.at(called).get()), std::tie(arguments...));
                    return 0;
                } catch (...) {
                    return winrt::to_hresult();
                }
            });
        return *this;
    }

    template <typename Result, typename... Parameters, typename Arguments>
    static void respond(const std::function<Result(Parameters...)>& answer, const Arguments& arguments) {
        [&]<std::size_t... i>(std::index_sequence<i...>) {
            if constexpr (std::is_void_v<Result>) {
                answer(borrow<Parameters>(std::get<i>(arguments))...);
            } else {
                give(std::get<std::tuple_size_v<Arguments> - 1>(arguments),
                     answer(borrow<Parameters>(std::get<i>(arguments))...));
            }
        }(std::index_sequence_for<Parameters...>());
    }

    winrt::com_ptr<Object> object;
};

inline Making make(const wchar_t* className, Object::Threads threads = Object::Threads::any) {
    return {className, threads};
}

/// What the object behind a projection holds.
template <typename State, typename Projection>
State& behind(const Projection& projection) {
    return *static_cast<State*>(static_cast<Face*>(winrt::get_abi(projection))->object.state.get());
}

/// What a class is activated with, by its name: a factory or its static side.
using Factories = std::map<std::wstring, Making>;

/// A factory with one method.
template <typename Interface, auto method, typename Answer>
Making answering(Answer answer) {
    return make(L"factory").on<Interface, method>(answer);
}

/// A factory of objects that need no arguments.
template <typename Make>
Making activating(Make makeObject) {
    return answering<METHOD(foundation::IActivationFactory, ActivateInstance)>(
        [makeObject]() -> foundation::IInspectable { return makeObject(); });
}

}  // namespace app
