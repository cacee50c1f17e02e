#include "lua/frontend/scopes.h"

namespace tarvel::lua::internal {

LocalVariable* Scopes::declare(Name& name, const FunctionExpr& function) {
  auto* const variable = chunk_.arena.make<LocalVariable>(name, &function);
  shadowed_.push_back({name, name.local});
  *next_ = variable;
  next_ = &variable->next;
  name.local = variable;
  return variable;
}

void Scopes::close(std::size_t firstShadowed, LocalVariable** nextOfOuter) noexcept {
  for (; shadowed_.size() > firstShadowed; shadowed_.pop_back()) {
    shadowed_.back().name.local = shadowed_.back().local;
  }
  next_ = nextOfOuter;
}

VariableExpr* Scopes::mention(Name& name, const FunctionExpr& function, Site site) {
  LocalVariable* const variable = name.local;
  if (variable == nullptr) {
    if (name.global == nullptr) name.global = chunk_.arena.make<VariableExpr>(name, site);
    return name.global;
  }
  if (variable->mentionedIn != &function) {
    variable->captured |= variable->declaredIn != &function;
    variable->mention = chunk_.arena.make<VariableExpr>(*variable, site);
    variable->mentionedIn = &function;
  }
  return variable->mention;
}

}  // namespace tarvel::lua::internal
