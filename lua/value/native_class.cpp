#include "lua/value/native_class.h"

#include <utility>

#include "lua/value/heap.h"
#include "lua/value/native_object.h"

namespace tarvel::lua::internal {

NativeClass::NativeClass(Heap& heap, std::string_view className, const void* key)
    : HeapResource(heap), name_(className), typeKey_(key), members_(Value(Table::create(heap))) {}

NativeClass& NativeClass::create(Heap& heap, std::string_view className, const void* key) {
  return *new NativeClass(heap, className, key);
}

// What a name stood for may be functions of the host's, whose destructors can come back here. So
// they go last, when everything is in its place.

void NativeClass::setMethod(StringObject* memberName, OwnedValue function) {
  Table& members = *members_.get().table;
  const Value old = members.getString(memberName);
  Property replaced;
  if (old.isInteger()) std::swap(properties_[static_cast<std::size_t>(old.integer)], replaced);
  members.set(TableKey::ofString(memberName), function.take());
}

void NativeClass::setProperty(StringObject* memberName, Property property) {
  Table& members = *members_.get().table;
  const Value old = members.getString(memberName);
  if (old.isInteger()) {
    std::swap(properties_[static_cast<std::size_t>(old.integer)], property);
    return;
  }
  const auto number = static_cast<std::int64_t>(properties_.size());
  properties_.push_back(std::move(property));
  members.set(TableKey::ofString(memberName), Value(number));
}

NativeObject* NativeClass::find(const void* address) const noexcept {
  const auto entry = objects_.find(address);
  return entry == objects_.end() ? nullptr : entry->second;
}

void NativeClass::forget(const void* address, const NativeObject& object) noexcept {
  const auto entry = objects_.find(address);
  if (entry != objects_.end() && entry->second == &object) objects_.erase(entry);
}

void NativeObject::leaveClass() const noexcept {
  if (kind == Kind::Host) type.forget(static_cast<const HostObjectHandle&>(*handle).address, *this);
}

void NativeClass::close() noexcept {
  const OwnedValue members = std::move(members_);
  const std::vector<Property> properties = std::move(properties_);
  objects_.clear();
}

}  // namespace tarvel::lua::internal
