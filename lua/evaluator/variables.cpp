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
    return slotAt(base, asVariable(node)->offset).environment->slot;
  }
};

struct InCapture {
  static Value& slot(const Node* node, Value* base) noexcept {
    return captureOf(asVariable(node), base);
  }
};

struct InCapturedEnvironment {
  static Value& slot(const Node* node, Value* base) noexcept {
    return captureOf(asVariable(node), base).environment->slot;
  }
};

struct IsRunningFunction {
  static Value& slot(const Node*, Value* base) noexcept { return base[-1]; }
};

struct InGlobals {
  static Value& slot(const Node* node, Value*) noexcept { return *asVariable(node)->cell; }
};

Leaf leafOf(const VariableExpr& variable) noexcept {
  switch (variable.home) {
    case VariableHome::Frame:
      return Leaf::Frame;
    case VariableHome::CapturedValue:
    case VariableHome::CapturedEnvironment:
    case VariableHome::Global:
      return Leaf::Shared;
    case VariableHome::OwnEnvironment:
    case VariableHome::RunningFunction:
      break;
  }
  return Leaf::None;
}

template <class Home>
void choose(VariableExpr& variable) {
  variable.execute = [](const Node* node, Value* base) { return retain(Home::slot(node, base)); };
  variable.peek = [](const Node* node, Value* base) { return Home::slot(node, base); };
  variable.test = [](const Node* node, Value* base) { return Home::slot(node, base).isTruthy(); };
}

}  // namespace

void chooseVariable(VariableExpr& variable) {
  variable.leaf = leafOf(variable);
  switch (variable.home) {
    case VariableHome::Frame:
      return choose<InFrame>(variable);
    case VariableHome::OwnEnvironment:
      return choose<InOwnEnvironment>(variable);
    case VariableHome::CapturedValue:
      return choose<InCapture>(variable);
    case VariableHome::CapturedEnvironment:
      return choose<InCapturedEnvironment>(variable);
    case VariableHome::RunningFunction:
      return choose<IsRunningFunction>(variable);
    case VariableHome::Global:
      return choose<InGlobals>(variable);
  }
}

}  // namespace tarvel::lua::internal
