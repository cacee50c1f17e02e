#pragma once

#include <tarvel/lua/lua_conversion.h>

#include <concepts>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

// Functions and objects of the host, as scripts call them.

namespace tarvel::lua {

// Not for hosts until the end of the namespace; it may change with every version.
namespace bridge {

// ---- What a function takes and gives ------------------------------------------------------------

template <class Result, class... Parameters>
struct SignatureOf {
  using ResultType = Result;
  using ParameterTypes = std::tuple<Parameters...>;
};

template <class F>
struct Signature : Signature<decltype(&F::operator())> {};
template <class R, class... P>
struct Signature<R(P...)> : SignatureOf<R, P...> {};
template <class R, class... P>
struct Signature<R(P...) noexcept> : SignatureOf<R, P...> {};
template <class R, class... P>
struct Signature<R (*)(P...)> : SignatureOf<R, P...> {};
template <class R, class... P>
struct Signature<R (*)(P...) noexcept> : SignatureOf<R, P...> {};
template <class R, class C, class... P>
struct Signature<R (C::*)(P...)> : SignatureOf<R, P...> {};
template <class R, class C, class... P>
struct Signature<R (C::*)(P...) const> : SignatureOf<R, P...> {};
template <class R, class C, class... P>
struct Signature<R (C::*)(P...) noexcept> : SignatureOf<R, P...> {};
template <class R, class C, class... P>
struct Signature<R (C::*)(P...) const noexcept> : SignatureOf<R, P...> {};

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};
template <class T>
struct IsTuple : std::false_type {};
template <class... T>
struct IsTuple<std::tuple<T...>> : std::true_type {};

template <class T>
inline constexpr bool isInterpreter = std::is_same_v<T, LuaVM&>;
template <class T>
inline constexpr bool isRest = std::is_same_v<std::remove_cvref_t<T>, std::vector<LuaValue>>;

// Where a parameter of type P stands until the call. A reference to what is converted for this call
// only would be of no use to its caller, so it has to be const.
template <class P>
struct Parameter {
  static_assert(!std::is_lvalue_reference_v<P> || std::is_const_v<std::remove_reference_t<P>>,
                "parameters are copies: take them by value or by const reference, and objects by "
                "std::shared_ptr");
  using Stored = std::remove_cvref_t<P>;
  static_assert(!std::is_same_v<Stored, const char*>, "take strings as std::string_view");

  static Stored take(const Arguments& arguments, std::size_t index) {
    Stored value{};
    using C = Conversion<Stored>;
    if (IsOptional<Stored>::value && index >= arguments.count()) return value;
    const ScriptValue argument = arguments.at(index);
    Problem problem;
    if (!C::take(argument, value, problem)) [[unlikely]]
      arguments.fail(index, C::kArgument, C::fits(argument), problem);
    return value;
  }
};

template <class R>
void giveResult(ScriptSink& sink, const R& result) {
  if constexpr (IsTuple<R>::value) {
    std::apply(
        [&](const auto&... values) {
          (Conversion<std::remove_cvref_t<decltype(values)>>::give(sink, values), ...);
        },
        result);
  } else {
    Conversion<std::remove_cvref_t<R>>::give(sink, result);
  }
}

// Calls `invoke` with the parameters of types P, the first of which is argument number `First`.
template <std::size_t First, class... P>
struct Caller {
  static constexpr bool kTakesRest = (false || ... || isRest<P>);
  static constexpr std::size_t kConverted = sizeof...(P) - (kTakesRest ? 1 : 0);
  static constexpr std::size_t kLeast = [] {
    std::size_t least = 0;
    std::size_t number = 0;
    ((++number, least = IsOptional<std::remove_cvref_t<P>>::value || isRest<P> ? least : number),
     ...);
    return least + First;
  }();
  static constexpr std::size_t kMost =
      kTakesRest ? static_cast<std::size_t>(-1) : kConverted + First;

  template <class Invoke>
  static void call(Arguments& arguments, const Invoke& invoke) {
    arguments.requireCount(kLeast, kMost);
    callWith(arguments, invoke, std::index_sequence_for<P...>());
  }

 private:
  template <class One>
  static auto take(const Arguments& arguments, std::size_t index) {
    if constexpr (isRest<One>) {
      return arguments.rest(index);
    } else {
      return Parameter<One>::take(arguments, index);
    }
  }

  template <class Invoke, std::size_t... I>
  static void callWith(Arguments& arguments, const Invoke& invoke, std::index_sequence<I...>) {
    // Braces take the arguments from left to right.
    std::tuple<std::conditional_t<isRest<P>, std::vector<LuaValue>, std::remove_cvref_t<P>>...>
        values{take<P>(arguments, First + I)...};
    using Result = decltype(invoke(std::get<I>(std::move(values))...));
    if constexpr (std::is_void_v<Result>) {
      invoke(std::get<I>(std::move(values))...);
    } else {
      giveResult(arguments.results(), invoke(std::get<I>(std::move(values))...));
    }
  }
};

// A function as bind takes it.
template <class F, class Parameters = typename Signature<F>::ParameterTypes>
class BoundFunction;

template <class F, class... P>
class BoundFunction<F, std::tuple<P...>> final : public Callable {
 public:
  explicit BoundFunction(F function) : function_(std::move(function)) {}
  void call(Arguments& arguments) override {
    Caller<0, P...>::call(arguments, [this](auto&&... values) -> decltype(auto) {
      return std::invoke(function_, std::forward<decltype(values)>(values)...);
    });
  }

 private:
  F function_;
};

template <class F, class... P>
class BoundFunction<F, std::tuple<LuaVM&, P...>> final : public Callable {
 public:
  explicit BoundFunction(F function) : function_(std::move(function)) {}
  void call(Arguments& arguments) override {
    LuaVM& vm = arguments.vm();
    Caller<0, P...>::call(arguments, [this, &vm](auto&&... values) -> decltype(auto) {
      return std::invoke(function_, vm, std::forward<decltype(values)>(values)...);
    });
  }

 private:
  F function_;
};

// A member function of T, or a function whose first parameter is T&.
template <class T, class F, class Parameters>
class BoundMethod;

template <class T, class F, class... P>
class BoundMethod<T, F, std::tuple<P...>> final : public Callable {
 public:
  explicit BoundMethod(F function) : function_(std::move(function)) {}
  void call(Arguments& arguments) override {
    T& object = *static_cast<T*>(arguments.receiver(&ClassKey<T>::key));
    Caller<1, P...>::call(arguments, [this, &object](auto&&... values) -> decltype(auto) {
      return std::invoke(function_, object, std::forward<decltype(values)>(values)...);
    });
  }

 private:
  F function_;
};

template <class Tuple>
struct WithoutFirst;
template <class First, class... Others>
struct WithoutFirst<std::tuple<First, Others...>> {
  using Type = std::tuple<Others...>;
};

template <class T, class F>
std::shared_ptr<Callable> makeMethod(F function) {
  using Parameters = typename Signature<F>::ParameterTypes;
  if constexpr (std::is_member_function_pointer_v<F>) {
    return std::make_shared<BoundMethod<T, F, Parameters>>(std::move(function));
  } else {
    using Others = typename WithoutFirst<Parameters>::Type;
    return std::make_shared<BoundMethod<T, F, Others>>(std::move(function));
  }
}

template <class F>
std::shared_ptr<Callable> makeFunction(F function) {
  static_assert(!std::is_member_pointer_v<F>, "methods belong to a class: see LuaVM::defineClass");
  return std::make_shared<BoundFunction<F>>(std::move(function));
}

struct ClassInInterpreter;  // never defined: a class in one interpreter

TARVELLUA_API void addMethod(LuaVM& vm, ClassInInterpreter* type, std::string_view name,
                             std::shared_ptr<Callable> function);
// `setter` is null for one that scripts cannot assign.
TARVELLUA_API void addProperty(LuaVM& vm, ClassInInterpreter* type, std::string_view name,
                               std::shared_ptr<Callable> getter, std::shared_ptr<Callable> setter);

}  // namespace bridge

// What scripts may do with a T, for one LuaVM, which makes it (LuaVM::defineClass) and which it
// must not outlive:
//
//   vm.defineClass<Boat>("Boat").method("push", &Boat::push).property("name", &Boat::name);
//   vm.setGlobal("flagship", std::make_shared<Boat>("Alva"));  // flagship:push(2)
//
// Scripts get at objects only through std::shared_ptr<T>, so neither side can outlive the other's
// use: an object that a script can reach is released by the script's last use, at the latest by the
// end of the interpreter, on the thread that uses it. An object that crosses twice is the same
// userdata. Fields that are not described are nil for scripts, and assigning them is an error of
// the script, as is a method on a receiver of another class.
//
// What parameters and results may be is as for LuaVM::bind, and so is what becomes of exceptions. A
// name that is described again stands for what was said last, also in objects that scripts have.
template <class T>
class LuaClass {
 public:
  // A member function, or a function whose first parameter is T&. For scripts: object:name(...).
  template <class F>
  LuaClass& method(std::string_view name, F function) {
    bridge::addMethod(*vm_, type_, name, bridge::makeMethod<T>(std::move(function)));
    return *this;
  }

  // object.name: a data member (read and, unless it is const, assigned), or a getter, and perhaps a
  // setter. A getter is a member function without parameters, or a function of T&; a setter has one
  // parameter more.
  template <class Getter>
  LuaClass& property(std::string_view name, Getter getter) {
    if constexpr (std::is_member_object_pointer_v<Getter>) {
      return memberProperty(name, getter);
    } else {
      bridge::addProperty(*vm_, type_, name, bridge::makeMethod<T>(std::move(getter)), nullptr);
      return *this;
    }
  }
  template <class Getter, class Setter>
  LuaClass& property(std::string_view name, Getter getter, Setter setter) {
    bridge::addProperty(*vm_, type_, name, bridge::makeMethod<T>(std::move(getter)),
                        bridge::makeMethod<T>(std::move(setter)));
    return *this;
  }

 private:
  friend class LuaVM;
  LuaClass(LuaVM& vm, bridge::ClassInInterpreter* type) : vm_(&vm), type_(type) {}

  template <class Owner, class Member>
  LuaClass& memberProperty(std::string_view name, Member Owner::*member) {
    auto getter = bridge::makeMethod<T>([member](T& object) -> Member { return object.*member; });
    std::shared_ptr<bridge::Callable> setter;
    if constexpr (!std::is_const_v<Member>) {
      setter = bridge::makeMethod<T>(
          [member](T& object, const Member& value) { object.*member = value; });
    }
    bridge::addProperty(*vm_, type_, name, std::move(getter), std::move(setter));
    return *this;
  }

  LuaVM* vm_;
  bridge::ClassInInterpreter* type_;
};

}  // namespace tarvel::lua
