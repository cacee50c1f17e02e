#include <tarvel/lua/lua_class.h>
#include <tarvel/lua/lua_vm.h>

#include <algorithm>
#include <bit>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "lua/bridge_access.h"
#include "lua/evaluator/call_protocol.h"
#include "lua/failure_report.h"
#include "lua/lua_vm_impl.h"
#include "lua/native_objects.h"
#include "lua/stdlib/arguments.h"
#include "lua/value/completion.h"
#include "lua/value/errors.h"
#include "lua/value/memory_charge.h"
#include "lua/value/work_meter.h"

// Functions of the host with parameters of their own types, as scripts call them.

namespace tarvel::lua {

namespace bridge {

using internal::Site;
using internal::Value;
using internal::ValueSpan;

namespace {

// Where a function of the host puts its results: above its arguments. There is room for the usual
// number of them, and runs inside the function leave it.
class ResultSink final : public ScriptSink {
 public:
  static constexpr std::uint32_t kUsualResults = internal::ValueStack::kLeastRoom;

  ResultSink(LuaVM::Impl& interpreter, Value* first)
      : ScriptSink(internal::interpreterOf(interpreter)), first_(first) {
    next_ = reinterpret_cast<std::byte*>(first);
    end_ = reinterpret_cast<std::byte*>(first + kUsualResults);
  }

  // What was put into it, as the completion of a call.
  Value take() noexcept {
    Value* const end = reinterpret_cast<Value*>(next_);
    if (end - first_ == 1) return std::exchange(*first_, Value());
    if (end == first_) return internal::ReturnSignal::noValues();
    return internal::ReturnSignal::severalValues(first_, static_cast<std::uint32_t>(end - first_));
  }

 private:
  Value* const first_;
};

}  // namespace

class ArgumentsAccess {
 public:
  static Arguments make(LuaVM::Impl& interpreter, ValueSpan values, ScriptSink& results,
                        const std::string& name, Site site) {
    Arguments arguments;
    arguments.first_ = reinterpret_cast<const std::byte*>(values.begin());
    arguments.count_ = values.size();
    arguments.interpreter_ = internal::interpreterOf(interpreter);
    arguments.vm_ = interpreter.owner;
    arguments.results_ = &results;
    arguments.name_ = &name;
    arguments.site_ = site;
    return arguments;
  }
};

Callable::~Callable() = default;

std::vector<LuaValue> Arguments::rest(std::size_t index) const {
  const auto* const values = reinterpret_cast<const Value*>(first_);
  if (index >= count_) return {};
  const LuaVM::Impl& interpreter = internal::implOf(interpreter_);
  internal::MemoryCharge memory(interpreter.heap);
  return interpreter.valuesToPublic(ValueSpan(values + index, count_ - index), memory, site_);
}

void* Arguments::receiver(const void* classKey) const {
  if (count_ > 0) [[likely]] {
    if (void* const object = internal::objectOf(*reinterpret_cast<const Value*>(first_), classKey))
        [[likely]] {
      return object;
    }
  }
  fail(0, 0, nullptr, false, Problem());
}

void Arguments::fail(std::size_t index, std::size_t number, const char* expected, bool isOfKind,
                     const Problem& problem) const {
  if (expected == nullptr) {
    const bool isObject =
        index < count_ && std::bit_cast<Value>(at(index).raw()).tag == internal::kUserData;
    expected = isObject ? " received the wrong userdata type" : " expects userdata";
  }
  if (!isOfKind) internal::failArgument(name_->c_str(), expected, site_);
  const std::string place = number == 0 ? "" : ": argument " + std::to_string(number);
  const std::string text = place + ": " + problem.message();
  internal::failArgument(name_->c_str(), text.c_str(), site_);
}

// Unlike the library's own, with a location.
void Arguments::failCount(std::size_t least, std::size_t most) const {
  internal::failRuntime(site_, internal::argumentCountText(name_->c_str(), least, most));
}

}  // namespace bridge

using bridge::Callable;
using internal::Site;
using internal::Value;

namespace {

// What the host throws becomes an error at the call. What is an error of the script already, from
// its arguments, passes. Where it tells of a run inside of this one that had to end, so must this.
inline void callHost(Callable& function, bridge::Arguments& arguments, internal::WorkMeter& meter,
                     Site site) {
  try {
    function.call(arguments);
  } catch (const internal::RuntimeError&) {
    throw;
  } catch (internal::StopSignal& stop) {
    if (stop.site == 0) stop.site = site;  // while arguments were converted
    throw;
  } catch (const std::exception& error) {
    meter.spend(0, site);
    internal::failRuntime(site, internal::exceptionText(error), internal::hostFailureKind(error));
  }
}

}  // namespace

namespace {

struct BoundCode final : internal::NativeCode {
  BoundCode(internal::Heap& heap, std::string fullName, std::shared_ptr<Callable> hostFunction,
            bool isSupervised)
      : NativeCode(heap, {}), name(std::move(fullName)), callable(std::move(hostFunction)) {
    whole = isSupervised ? callBound<internal::Supervised> : callBound<internal::Unsupervised>;
  }

  template <class Supervision>
  static Value callBound(LuaVM::Impl& interpreter, Value* frame, std::uint32_t count, Site site) {
    internal::ValueStack& stack = interpreter.stack;
    Value* const end = frame + 1 + count;
    Value* const resultsEnd = end + bridge::ResultSink::kUsualResults;
    constexpr std::uint32_t kHostBytes = internal::stack_cost::kNativeCall;
    if (!stack.hasRoom(resultsEnd, kHostBytes) && !stack.makeRoom(resultsEnd, kHostBytes))
        [[unlikely]] {
      internal::failStackOverflow(site);
    }
    Value* const outerTop = stack.top();
    stack.setTop(end);
    typename Supervision::NativeCall call(interpreter.self, frame, site);
    bridge::ResultSink results(interpreter, end);
    const auto& code = *static_cast<const BoundCode*>(frame[0].function->code);
    bridge::Arguments arguments = bridge::ArgumentsAccess::make(
        interpreter, internal::ValueSpan(frame + 1, count), results, code.name, site);
    internal::WorkMeter& meter = interpreter.heap.meter();
    callHost(*code.callable, arguments, meter, site);
    Supervision::hostReturned(meter, site);
    call.returned();
    const Value completion = results.take();
    stack.setTop(outerTop);
    internal::clearSlots(frame, end);
    if (internal::ReturnSignal::isSeveral(completion)) [[unlikely]]
      return internal::settleSeveral(frame, completion);
    return completion;
  }

  const std::string name;  // as messages show it
  std::shared_ptr<Callable> callable;

 private:
  void close() noexcept override {
    const std::shared_ptr<Callable> closed = std::exchange(callable, nullptr);
  }
};

}  // namespace

internal::Value LuaVM::Impl::makeBound(std::string_view name, std::string fullName,
                                       std::shared_ptr<Callable> function) {
  internal::OwnedValue interned{Value(strings.intern(name))};
  auto code = std::make_unique<BoundCode>(heap, std::move(fullName), std::move(function),
                                          options.supervised);
  return Value(
      internal::FunctionObject::createNative(heap, interned.take().string, std::move(code)));
}

void LuaVM::bindCallable(std::string_view name, std::shared_ptr<Callable> function) {
  const internal::InterpreterInUse use(*impl_);
  const internal::HostStackScope hostStack;
  const std::string_view lastName = name.substr(name.rfind('.') + 1);
  impl_->storeByPath(name, impl_->makeBound(lastName, std::string(name), std::move(function)));
}

// ---- Names with points --------------------------------------------------------------------------

namespace {

// The first part of a path; takes it and the point behind it away.
std::string_view takePart(std::string_view& path) noexcept {
  const std::string_view part = path.substr(0, path.find('.'));
  path.remove_prefix(std::min(path.size(), part.size() + 1));
  return part;
}

}  // namespace

internal::Value LuaVM::Impl::findByPath(std::string_view path) {
  Value value = globals.find(takePart(path));
  while (!path.empty()) {
    if (!value.isTable()) return Value();
    const internal::OwnedValue key(makeString(takePart(path)));
    value = value.table->getString(key.get().string);
  }
  return value;
}

void LuaVM::Impl::storeByPath(std::string_view path, Value owned) {
  internal::OwnedValue value(owned);
  std::string_view rest = path;
  const std::string_view first = takePart(rest);
  if (rest.empty()) return globals.set(first, value.take());
  Value table = globals.find(first);
  if (table.isNil()) {
    table = Value(internal::Table::create(heap));
    globals.set(first, table);
  }
  for (;;) {
    if (!table.isTable()) {
      throw std::runtime_error(std::string(path.substr(0, path.size() - rest.size() - 1)) +
                               ": a table expected, got " +
                               bridge::ScriptValue(internal::interpreterOf(*this),
                                                   std::bit_cast<bridge::RawValue>(table))
                                   .description());
    }
    const internal::OwnedValue key(Value(strings.intern(takePart(rest))));
    if (rest.empty())
      return table.table->set(internal::TableKey::ofString(key.get().string), value.take());
    Value next = table.table->getString(key.get().string);
    if (next.isNil()) {
      next = Value(internal::Table::create(heap));
      table.table->set(internal::TableKey::ofString(key.get().string), next);
    }
    table = next;
  }
}

}  // namespace tarvel::lua
