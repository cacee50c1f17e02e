#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "lua/value/heap_resource.h"
#include "lua/value/table.h"
#include "lua/value/value.h"

namespace tarvel::lua::internal {

struct NativeObject;

// What scripts may do with native objects of one kind: their methods and properties by name. Also
// knows which userdata stands for which object of the host, so that an object that crosses twice is
// the same userdata. Belongs to the heap, so it outlives every object; the end of the interpreter
// empties it.
class NativeClass final : public HeapResource {
 public:
  // Functions, called with the object, and the setter with the new value behind it. No setter: nil.
  struct Property {
    OwnedValue getter;
    OwnedValue setter;
  };

  // `className` stands in messages. `key` tells the classes of the host's types apart; null for
  // those of the library.
  static NativeClass& create(Heap& heap, std::string_view className, const void* key = nullptr);

  const std::string& name() const noexcept { return name_; }
  const void* typeKey() const noexcept { return typeKey_; }

  // What stands under a name, borrowed: the function of a method, the number of a property, or nil.
  // The hint is as in Table::getString.
  Value member(StringObject* memberName, std::uint32_t& hint) const noexcept {
    return members_.get().table->getString(memberName, hint);
  }
  // The same where the hint is right, otherwise nil.
  Value hintedMember(StringObject* memberName, std::uint32_t hint) const noexcept {
    return members_.get().table->getHinted(memberName, hint);
  }
  const Property& property(Value number) const noexcept {
    return properties_[static_cast<std::size_t>(number.integer)];
  }
  // A name stands for what was set last.
  void setMethod(StringObject* memberName, OwnedValue function);
  void setProperty(StringObject* memberName, Property property);

  // The userdata that stands for the object at this address, borrowed; null where there is none.
  NativeObject* find(const void* address) const noexcept;
  void remember(const void* address, NativeObject& object) { objects_[address] = &object; }
  // Where that is what stands for it.
  void forget(const void* address, const NativeObject& object) noexcept;

 private:
  NativeClass(Heap& heap, std::string_view className, const void* key);
  void close() noexcept override;

  const std::string name_;
  const void* const typeKey_;
  OwnedValue members_;  // a table; nil once closed, when no script runs any more
  std::vector<Property> properties_;
  std::unordered_map<const void*, NativeObject*> objects_;
};

}  // namespace tarvel::lua::internal
