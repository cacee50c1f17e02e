#include "lua/evaluator/variables.h"

#include "lua/evaluator/node_functions.h"

namespace tarvel::lua::internal {

namespace {

const VariableExpr* asVariable(const Node* node) noexcept {
  return static_cast<const VariableExpr*>(node);
}

struct InFrame {
  static Value& slot(const Node* node, Value* base) noexcept {
    return slotAt(base, asVariable(node)->offset);
  }
};

struct InOwnEnvironment {
  static Value& slot(const Node* node, Value* base) noexcept {
    return ownEnvironmentSlot(asVariable(node), base);
  }
};

struct InCapturedEnvironment {
  static Value& slot(const Node* node, Value* base) noexcept {
    return runningFunction(base)->environment->slots()[asVariable(node)->environmentIndex];
  }
};

struct InOuterEnvironment {
  static Value& slot(const Node* node, Value* base) noexcept {
    return capturedSlot(asVariable(node), base);
  }
};

struct InGlobals {
  static Value& slot(const Node* node, Value*) noexcept { return *asVariable(node)->cell; }
};

template <class Home>
void choose(VariableExpr& variable) {
  variable.execute = [](const Node* node, Value* base) { return retain(Home::slot(node, base)); };
  variable.peek = [](const Node* node, Value* base) { return Home::slot(node, base); };
  variable.test = [](const Node* node, Value* base) { return Home::slot(node, base).isTruthy(); };
}

}  // namespace

void chooseVariable(VariableExpr& variable) {
  switch (variable.home) {
    case VariableHome::Frame:
      return choose<InFrame>(variable);
    case VariableHome::OwnEnvironment:
      return choose<InOwnEnvironment>(variable);
    case VariableHome::Captured:
      return variable.hops == 0 ? choose<InCapturedEnvironment>(variable)
                                : choose<InOuterEnvironment>(variable);
    case VariableHome::Global:
      return choose<InGlobals>(variable);
  }
}

}  // namespace tarvel::lua::internal
