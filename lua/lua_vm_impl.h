#pragma once

#include <tarvel/lua/lua_vm.h>

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "lua/value/completion.h"
#include "lua/value/errors.h"
#include "lua/value/function_handle.h"
#include "lua/value/heap.h"
#include "lua/value/multi_value.h"
#include "lua/value/string_object.h"
#include "lua/value/table.h"
#include "lua/value/value.h"
#include "lua/value/value_stack.h"

// The interpreter's state, and the operations that each layer defines on it. This is the one header
// that a source file of any layer includes for its share; see docs/design.md.

namespace tarvel::lua {

namespace internal {
class PatternCache;
struct ResolvedChunk;
struct VariableExpr;

// A reference to a chunk, as the run and every closure hold one.
class ChunkReference {
 public:
  explicit ChunkReference(ResolvedChunk* owned) : chunk_(owned) {}
  ChunkReference(ChunkReference&& other) noexcept : chunk_(other.chunk_) { other.chunk_ = nullptr; }
  ChunkReference(const ChunkReference&) = delete;
  ChunkReference& operator=(const ChunkReference&) = delete;
  ~ChunkReference();

  ResolvedChunk& operator*() const { return *chunk_; }
  ResolvedChunk* operator->() const { return chunk_; }

 private:
  ResolvedChunk* chunk_;
};

// One owner's share in a heap, so that the heap goes last among an interpreter's members.
class HeapOwner {
 public:
  HeapOwner() : heap_(Heap::create()) {}
  ~HeapOwner() { heap_->removeOwner(); }
  HeapOwner(const HeapOwner&) = delete;
  HeapOwner& operator=(const HeapOwner&) = delete;
  Heap& get() const noexcept { return *heap_; }

 private:
  Heap* heap_;
};
}  // namespace internal

class LuaVM::Impl {
 public:
  using Value = internal::Value;

  explicit Impl(LuaVM& ownerVm);
  // Completes a new interpreter. Not part of the constructor, so that the destructor releases what
  // there is when memory runs out halfway.
  void fillGlobals();
  ~Impl();
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  static Impl& of(LuaVM& vm) noexcept { return *vm.impl_; }

  // Gives back everything that handles of the host do not hold, files included. Destructors of what
  // the host's functions hold run in here.
  void end() noexcept;
  // The host's LuaVM is gone while a run is active.
  void abandon() noexcept { owner = &self; }

  // ---- Facade (lua/) ----
  LuaResult run(const std::string& source, const std::string& chunkName);
  LuaResult tryRun(const std::string& source, const std::string& chunkName);
  void clearGlobals() noexcept;
  LuaResult makeSuccess(const internal::MultiValue& results) const;
  LuaResult makeFailure(const internal::ProtectedRuntimeError& error,
                        const std::string& chunkName) const;
  LuaResult makeFailure(const std::exception& error, const std::string& chunkName) const;
  void bindFunction(const std::string& name, HostFunction function);
  // Borrow their argument; throw std::runtime_error for what cannot cross.
  LuaValue valueToPublic(const Value& value) const;
  Value publicToValue(const LuaValue& value);  // owned
  // Passes the printable form of a value to `write`, piece by piece.
  static void writePublic(const LuaValue& value, bool (*write)(std::string_view text) noexcept);

  // ---- Front end ----
  // Lexes, parses, resolves and prepares a chunk for running. Throws std::runtime_error
  // "chunk:line:column: message".
  internal::ChunkReference parseScript(const std::string& source, const std::string& chunkName);
  // Binds names that are no locals to their global slots.
  void bindGlobalSlots(const std::vector<internal::VariableExpr*>& names);

  // ---- Evaluator ----
  // The number of a global's slot: dense, in order of first mention, never given up.
  std::size_t resolveGlobalSlot(std::string_view name);
  // Lays out the frames of a resolved chunk and chooses the functions that execute its nodes.
  void planFrames(internal::ResolvedChunk& chunk);
  void selectNodeFunctions(internal::ResolvedChunk& chunk);

  // Call any value. The arguments are borrowed. Raises "attempt to call a ... value" at `line`.
  internal::MultiValue callValue(const Value& callee, internal::ValueSpan arguments, unsigned line);
  internal::MultiValue callHandle(internal::FunctionObject* function, internal::ValueSpan arguments,
                                  unsigned line);
  // Calls what stands in frame[0] with the `count` arguments behind it, all owned by their slots,
  // which are emptied. Returns an owned value or a ReturnSignal completion; several values stand
  // from frame[0] on.
  Value callFrame(Value* frame, std::uint32_t count, unsigned line);
  internal::MultiValue takeResults(Value completion);
  // Whether callee(first, second) gives a true first value: a comparator's call, without lists of
  // arguments and results. All three are borrowed.
  bool callPredicate(const Value& callee, const Value& first, const Value& second, unsigned line);
  // Runs a chunk's top level as a function without parameters.
  internal::MultiValue runChunk(internal::ResolvedChunk& chunk);

  // object[key], owned; both are borrowed.
  Value indexValue(const Value& object, const Value& key, unsigned line);
  // object:name and object.name, owned. The hint is as in Table::getString.
  Value indexField(const Value& object, internal::StringObject* name, std::uint32_t& hint,
                   unsigned line);
  // Raises the error of an index that no table, string or native object answers.
  [[noreturn]] void failIndex(const Value& object, unsigned line);

  // ---- Library ----
  void bindDefaults();
  void bindNativeGlobal(const std::string& name, internal::NativeFunction function);
  void bindTableFunction(internal::Table& table, const std::string& name,
                         internal::NativeFunction function);
  // A field of a file or stream: a bound method, owned, or nil.
  Value nativeObjectField(internal::NativeObject& object, internal::StringObject* name);

  // ---- Helpers of all layers ----
  Value makeString(std::string_view bytes);                                    // owned
  Value makeNative(std::string_view name, internal::NativeFunction function);  // owned
  void setGlobalValue(std::string_view name, Value owned);

  // ---- State. The order matters: the heap goes last. ----
  // The same interpreter for the library's functions, which may go on after the host's LuaVM is
  // gone.
  LuaVM self;
  LuaVM* owner;  // for functions of the host: the host's LuaVM, or `self` once that is gone
  internal::HeapOwner heapOwner;
  internal::Heap& heap;
  internal::StringInterner strings;
  // The strings of one byte, made when first needed, and the empty string: what cutting text into
  // characters gives. Behind the heap and the interner, which outlive them.
  std::array<internal::OwnedValue, 256> oneByteStrings;
  internal::OwnedValue emptyString;
  internal::ValueStack stack;
  internal::OwnedValue standardOutput;  // io.stdout as it was made; scripts may overwrite the field
  internal::OwnedValue anyFunction;     // a function that is always there
  internal::OwnedValue outOfMemoryText;  // the message, made while there is memory
  std::unique_ptr<internal::PatternCache> patterns;
  // Names to slots, and the slots themselves. A deque, because the tree points at the slots.
  std::unordered_map<std::string, std::size_t> globalSlots;
  std::deque<Value> globals;
  std::size_t stringLibrarySlot = 0;
  bool ended = false;
  // The code of an os.exit that ended the current run.
  bool exitRequested = false;
  std::int32_t exitCode = 0;
};

}  // namespace tarvel::lua
