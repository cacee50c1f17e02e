#include "lua/evaluator/native_access.h"

#include <string>
#include <string_view>

#include "lua/evaluator/execute.h"
#include "lua/value/errors.h"
#include "lua/value/native_class.h"
#include "lua/value/native_object.h"

namespace tarvel::lua::internal {

namespace {

// World has no field 'x', or World.x cannot be assigned.
[[noreturn]] void failAssignment(const NativeClass& type, std::string_view name, bool isKnown,
                                 Site site) {
  std::string text = type.name();
  if (isKnown) {
    text.append(".").append(name).append(" cannot be assigned");
  } else {
    text.append(" has no field '").append(name).append("'");
  }
  failRuntime(site, text);
}

}  // namespace

Value readNativeField(const Node* node, NativeObject& object, StringObject* name,
                      std::uint32_t& hint, Value* base) {
  if (object.handle == nullptr) failRuntime(node->site, "native object handle is empty");
  const Value member = object.type.member(name, hint);
  if (!member.isInteger()) return retain(member);
  return callBehindFrame(node, base, object.type.property(member).getter.get(), {Value(&object)});
}

void requireAssignable(const Value& object, Site site) {
  // Deliberate: files and streams fail like every other value that has no fields to assign.
  if (object.tag == kUserData && object.native->kind == NativeObject::Kind::Host) return;
  failRuntime(site, {"attempt to assign into a ", describeValueType(object), " value"});
}

void assignNativeField(const Node* node, NativeObject& object, StringObject* name,
                       std::uint32_t& hint, const Value& value, Value* base) {
  const Value member = object.type.member(name, hint);
  const Value setter = member.isInteger() ? object.type.property(member).setter.get() : Value();
  if (setter.isNil()) failAssignment(object.type, name->view(), !member.isNil(), node->site);
  drop(callBehindFrame(node, base, setter, {Value(&object), value}));
}

}  // namespace tarvel::lua::internal
