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

// Empty for what has none, or more than one.
template <class F>
struct Signature {};
template <class F>
requires requires { &F::operator(); }
struct Signature<F> : Signature<decltype(&F::operator())> {};
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

template <class F>
concept HasSignature = requires {
  typename Signature<F>::ResultType;
};

template <class T>
struct IsOptional : std::false_type {};
template <class T>
struct IsOptional<std::optional<T>> : std::true_type {};
template <class T>
struct IsTuple : std::false_type {};
template <class... T>
struct IsTuple<std::tuple<T...>> : std::true_type {};

template <class... P>
inline constexpr bool endsInValues = false;
template <class P>
inline constexpr bool endsInValues<P> =
    std::is_same_v<std::remove_cvref_t<P>, std::vector<LuaValue>>;
template <class First, class Second, class... P>
inline constexpr bool endsInValues<First, Second, P...> = endsInValues<Second, P...>;

// What a last parameter std::vector<LuaValue> takes: all further arguments, or one sequence.
enum class LastValues { Further, Sequence };

// Where a parameter of type P stands until the call. A reference to what is converted for this call
// only would be of no use to its caller, so it has to be const.
template <class P>
struct Parameter {
  static_assert(!std::is_lvalue_reference_v<P> || std::is_const_v<std::remove_reference_t<P>>,
                "parameters are copies: take them by value or by const reference, and objects by "
                "std::shared_ptr");
  using Stored = std::remove_cvref_t<P>;
  static_assert(!std::is_same_v<Stored, const char*>, "take strings as std::string_view");

  // `number` as for Arguments::fail.
  static Stored take(const Arguments& arguments, std::size_t index, std::size_t number) {
    Stored value{};
    using C = Conversion<Stored>;
    if (IsOptional<Stored>::value && index >= arguments.count()) return value;
    const ScriptValue argument = arguments.at(index);
    Problem problem;
    if (!C::take(argument, value, problem)) [[unlikely]]
      arguments.fail(index, number, C::kArgument, C::fits(argument), problem);
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

// Calls `invoke` with the parameters of types P, which stand behind `First` other arguments: none,
// or the object.
template <std::size_t First, LastValues lastValues, class... P>
struct Caller {
  static constexpr bool kTakesRest = lastValues == LastValues::Further && endsInValues<P...>;
  static constexpr std::size_t kConverted = sizeof...(P) - (kTakesRest ? 1 : 0);
  static constexpr std::size_t kLeast = [] {
    std::size_t least = 0;
    std::size_t number = 0;
    ((++number,
      least = IsOptional<std::remove_cvref_t<P>>::value || number > kConverted ? least : number),
     ...);
    return least;
  }();
  static constexpr std::size_t kMost = kTakesRest ? static_cast<std::size_t>(-1) : kConverted;

  template <class Invoke>
  static void call(Arguments& arguments, const Invoke& invoke) {
    arguments.requireCount(First, kLeast, kMost);
    callWith(arguments, invoke, std::index_sequence_for<P...>());
  }

 private:
  template <class One, std::size_t Number>
  static typename Parameter<One>::Stored take(const Arguments& arguments) {
    if constexpr (kTakesRest && Number == kConverted) {
      return arguments.rest(First + Number);
    } else {
      // Only the functions of properties take a last sequence.
      constexpr bool isAssigned = lastValues == LastValues::Sequence;
      return Parameter<One>::take(arguments, First + Number, isAssigned ? 0 : Number + 1);
    }
  }

  template <class Invoke, std::size_t... I>
  static void callWith(Arguments& arguments, const Invoke& invoke, std::index_sequence<I...>) {
    // Braces take the arguments from left to right.
    std::tuple<typename Parameter<P>::Stored...> values{take<P, I>(arguments)...};
    using Result = decltype(invoke(std::get<I>(std::move(values))...));
    if constexpr (std::is_void_v<Result>) {
      invoke(std::get<I>(std::move(values))...);
    } else {
      giveResult(arguments.results(), invoke(std::get<I>(std::move(values))...));
    }
  }
};

// ---- Functions and members ----------------------------------------------------------------------

template <class Tuple>
struct WithoutFirst {
  using First = void;
  using Others = Tuple;
};
template <class P, class... Further>
struct WithoutFirst<std::tuple<P, Further...>> {
  using First = P;
  using Others = std::tuple<Further...>;
};

// The parameters that the arguments of a script fill, out of those behind the object: all, or all
// behind the interpreter.
template <class Tuple>
inline constexpr bool takesInterpreter =
    std::is_same_v<typename WithoutFirst<Tuple>::First, LuaVM&>;
template <class Tuple>
using FilledParameters =
    std::conditional_t<takesInterpreter<Tuple>, typename WithoutFirst<Tuple>::Others, Tuple>;

// A function as bind takes it. `Parameters` are FilledParameters.
template <class F, bool withInterpreter, class Parameters>
class BoundFunction;

template <class F, bool withInterpreter, class... P>
class BoundFunction<F, withInterpreter, std::tuple<P...>> final : public Callable {
 public:
  explicit BoundFunction(F function) : function_(std::move(function)) {}
  void call(Arguments& arguments) override {
    if constexpr (withInterpreter) {
      callBehind(arguments, arguments.vm());
    } else {
      callBehind(arguments);
    }
  }

 private:
  template <class... Before>
  void callBehind(Arguments& arguments, Before&... before) {
    Caller<0, LastValues::Further, P...>::call(
        arguments, [this, &before...](auto&&... values) -> decltype(auto) {
          return std::invoke(function_, before..., std::forward<decltype(values)>(values)...);
        });
  }

  F function_;
};

// A member function of T, or a function whose first parameter is T&.
template <class T, LastValues lastValues, class F, bool withInterpreter, class Parameters>
class BoundMember;

template <class T, LastValues lastValues, class F, bool withInterpreter, class... P>
class BoundMember<T, lastValues, F, withInterpreter, std::tuple<P...>> final : public Callable {
 public:
  explicit BoundMember(F function) : function_(std::move(function)) {}
  void call(Arguments& arguments) override {
    T& object = *static_cast<T*>(arguments.receiver(&ClassKey<T>::key));
    if constexpr (withInterpreter) {
      callBehind(arguments, object, arguments.vm());
    } else {
      callBehind(arguments, object);
    }
  }

 private:
  template <class... Before>
  void callBehind(Arguments& arguments, Before&... before) {
    Caller<1, lastValues, P...>::call(
        arguments, [this, &before...](auto&&... values) -> decltype(auto) {
          return std::invoke(function_, before..., std::forward<decltype(values)>(values)...);
        });
  }

  F function_;
};

template <class T, class F, class Tuple>
inline constexpr bool isInvocableOn = false;
template <class T, class F, class... P>
inline constexpr bool isInvocableOn<T, F, std::tuple<P...>> = std::is_invocable_v<F&, T&, P...>;

// A function of an object of class T: whether it is one, and what it takes besides the object.
template <class T, class F>
struct MemberOfClass {
  static constexpr bool kIsOne = false;
  using Parameters = std::tuple<>;
};
template <class T, HasSignature F>
struct MemberOfClass<T, F> {
 private:
  using All = typename Signature<F>::ParameterTypes;
  using Split = WithoutFirst<All>;
  static constexpr bool kIsPointer = std::is_member_function_pointer_v<F>;
  static constexpr bool kHasObject =
      kIsPointer || std::is_lvalue_reference_v<typename Split::First>;

 public:
  using Parameters = std::conditional_t<kIsPointer, All, typename Split::Others>;
  static constexpr bool kIsOne = kHasObject && isInvocableOn<T, F, Parameters>;
};

// How many arguments a function of T takes besides the object.
template <class T, class F>
inline constexpr std::size_t argumentCount =
    std::tuple_size_v<FilledParameters<typename MemberOfClass<T, F>::Parameters>>;

template <class T, LastValues lastValues, class F>
std::shared_ptr<Callable> makeMember(F function) {
  using Parameters = typename MemberOfClass<T, F>::Parameters;
  return std::make_shared<
      BoundMember<T, lastValues, F, takesInterpreter<Parameters>, FilledParameters<Parameters>>>(
      std::move(function));
}

// Each says in one sentence what is wrong with a function, and looks no further into it then.
template <class T, class F>
std::shared_ptr<Callable> makeMethod(F function) {
  constexpr bool isOne = MemberOfClass<T, F>::kIsOne;
  static_assert(isOne,
                "a method is a member function of the class, or a function without auto parameters "
                "whose first parameter is a reference to the object (T& or const T&)");
  if constexpr (isOne) {
    return makeMember<T, LastValues::Further>(std::move(function));
  } else {
    return nullptr;
  }
}

template <class T, class F>
std::shared_ptr<Callable> makeGetter(F getter) {
  constexpr bool isData = std::is_member_object_pointer_v<F> && std::is_invocable_v<F, T&>;
  constexpr bool isFunction = MemberOfClass<T, F>::kIsOne && argumentCount<T, F> == 0;
  static_assert(isData || isFunction,
                "a getter is a data member or a member function without parameters, of the class, "
                "or a function whose only parameter is a reference to the object (T& or const T&)");
  if constexpr (isData) {
    const auto read = [getter](T& object) -> decltype(auto) { return (object.*getter); };
    return makeMember<T, LastValues::Sequence>(read);
  } else if constexpr (isFunction) {
    return makeMember<T, LastValues::Sequence>(std::move(getter));
  } else {
    return nullptr;
  }
}

template <class T, class F>
std::shared_ptr<Callable> makeSetter(F setter) {
  constexpr bool isOne = MemberOfClass<T, F>::kIsOne && argumentCount<T, F> == 1;
  static_assert(isOne,
                "a setter is a member function of the class with one parameter, or a function of a "
                "reference to the object (T&) and the value");
  if constexpr (isOne) {
    return makeMember<T, LastValues::Sequence>(std::move(setter));
  } else {
    return nullptr;
  }
}

// Null for a constant.
template <class T, class Owner, class Member>
std::shared_ptr<Callable> makeMemberSetter(Member Owner::*member) {
  if constexpr (std::is_const_v<Member> || !std::is_invocable_v<Member Owner::*, T&>) {
    return nullptr;
  } else {
    return makeSetter<T>([member](T& object, const Member& value) { object.*member = value; });
  }
}

template <class F>
std::shared_ptr<Callable> makeFunction(F function) {
  constexpr bool isMember = std::is_member_pointer_v<F>;
  static_assert(!isMember, "methods belong to a class: see LuaVM::defineClass");
  static_assert(isMember || HasSignature<F>,
                "bind takes a function pointer or an object with exactly one call operator that is "
                "no template: put what has auto parameters, or std::bind, into a lambda without");
  if constexpr (!isMember && HasSignature<F>) {
    using Parameters = typename Signature<F>::ParameterTypes;
    return std::make_shared<
        BoundFunction<F, takesInterpreter<Parameters>, FilledParameters<Parameters>>>(
        std::move(function));
  } else {
    return nullptr;
  }
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
// T is not const: objects are shared as std::shared_ptr<T>, and constness does not cross. For
// objects that scripts must not change describe only what reads.
//
// Scripts get at objects only through std::shared_ptr<T>, so neither side can outlive the other's
// use: an object that a script can reach is released by the script's last use, at the latest by the
// end of the interpreter, on the thread that uses it. An object that crosses twice is the same
// userdata. Fields that are not described are nil for scripts, and assigning them is an error of
// the script, as is a method on a receiver of another class.
//
// What parameters and results may be is as for LuaVM::bind, and so is what becomes of exceptions. A
// parameter LuaVM& directly behind the object is the interpreter. A name that is described again
// stands for what was said last, also in objects that scripts have.
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
  // parameter more, the value. Since that is one, a std::vector<LuaValue> is an ordinary sequence
  // here, not all further arguments. The value cannot be nil unless it is a std::optional or a
  // LuaValue: std::optional<std::shared_ptr<U>> is an object that may be missing.
  template <class Getter>
  LuaClass& property(std::string_view name, Getter getter) {
    std::shared_ptr<bridge::Callable> setter;
    if constexpr (std::is_member_object_pointer_v<Getter>)
      setter = bridge::makeMemberSetter<T>(getter);
    bridge::addProperty(*vm_, type_, name, bridge::makeGetter<T>(std::move(getter)),
                        std::move(setter));
    return *this;
  }
  template <class Getter, class Setter>
  LuaClass& property(std::string_view name, Getter getter, Setter setter) {
    bridge::addProperty(*vm_, type_, name, bridge::makeGetter<T>(std::move(getter)),
                        bridge::makeSetter<T>(std::move(setter)));
    return *this;
  }

 private:
  friend class LuaVM;
  LuaClass(LuaVM& vm, bridge::ClassInInterpreter* type) : vm_(&vm), type_(type) {}

  LuaVM* vm_;
  bridge::ClassInInterpreter* type_;
};

}  // namespace tarvel::lua
