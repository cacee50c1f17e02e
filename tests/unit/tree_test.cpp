#include <gtest/gtest.h>

#include <string>

#include "tests/unit/tree_text.h"

namespace tarvel::lua {
namespace {

// Which function a construct gets. A construct that falls back to a general one still does what it
// should, only slower, so nothing else would notice.
TEST(TreeTest, ChoosesFunctionsByTheShapesOfOperands) {
  const std::string locals = "local n, m, t, s = 1, 2, {}, '' ";
  const struct {
    const char* source;
    const char* tree;  // of the last statement
  } cases[] = {
      // Arithmetic, fused into the assignment to a variable that only holds scalars.
      {"n = n + m", "(Arithmetic<Add, IntoLocal> Frame Frame n)"},
      {"n = -1 % n", "(Arithmetic<Modulo, IntoLocal> Constant Frame n)"},
      {"n = n - t.x", "(Arithmetic<Subtract, IntoLocal> Frame Field n)"},
      {"n = n * n + m * m", "(Arithmetic<Add, IntoLocal> Product Product n)"},
      {"n = t[n][m - 2] + t[m + 1]", "(Arithmetic<Add, IntoLocal> ElementOfElement Element n)"},
      {"n = t[n].x * t.x[m]", "(Arithmetic<Multiply, IntoLocal> Leaf Leaf n)"},
      {"n = g - t[n]", "(Arithmetic<Subtract, IntoLocal> Leaf Leaf n)"},
      {"n = 1 / 2", "(Arithmetic<Divide, IntoLocal> 1 Constant n)"},
      {"n = g.x * 2", "(Arithmetic<Multiply, IntoLocal> Leaf Constant n)"},
      {"s = n + 1", "(storeLocal (Arithmetic<Add> Frame Constant) s)"},
      // Comparisons as values, as conditions, and with the `if` that they decide.
      {"m = n < t.x", "(storeScalarLocal (Comparison<OrderRule<Less>>::AsValue Frame Field) m)"},
      {"while n <= m do n = n + 1 end",
       "(executeWhile (Comparison<OrderRule<LessEqual>>::Condition Frame Frame) "
       "(Arithmetic<Add, IntoLocal> Frame Constant n))"},
      {"if n == 1 then n = 2 end",
       "(Comparison<EqualityRule<true>>::If Frame Constant (storeInUnused<LiteralSource> 2 n))"},
      {"if t.x ~= 's' then n = 2 end",
       "(Comparison<EqualityRule<false>>::If Field Constant (storeInUnused<LiteralSource> 2 n))"},
      {"if n > m * m then n = 1 elseif t.x then n = 2 else n = 3 end",
       "(Comparison<OrderRule<Greater>>::If Frame (Arithmetic<Multiply> Frame Frame) "
       "(storeInUnused<LiteralSource> 1 n) "
       "(executeIfElse (testField<FrameObject> t) (storeInUnused<LiteralSource> 2 n) "
       "(storeInUnused<LiteralSource> 3 n)))"},
      {"if not t then n = 1 end", "(executeIfNot t (storeInUnused<LiteralSource> 1 n))"},
      // Appending.
      {"s = s .. n .. 'x'", "(appendToVariable s n x s)"},
      {"t.x = (t.x .. 1) .. n", "(appendToAccess (readField<FrameObject> t) 1 n t)"},
      {"s = n .. s", "(storeLocal (evaluateConcat n s) s)"},
      // Fields and elements.
      {"return t.x.y", "(readField<PeekedObject> (readField<FrameObject> t))"},
      {"return g[n][1]",
       "(readIndex<PeekedObject, OtherKey> (readIndex<PeekedObject, FrameKey> global.g n) 1)"},
      {"return g[t[n]].y",
       "(readField<PeekedObject> (readIndex<PeekedObject, PeekedKey> global.g "
       "(readIndex<FrameObject, FrameKey> t n)))"},
      {"return t[t.x + 1].y",
       "(readField<OwnedObject> (readIndex<FrameObject, OtherKey> t (Arithmetic<Add> Field "
       "Constant)))"},
      {"return g[#t.x], g[t.x + 1]",
       "(returnSeveral (readIndex<PeekedObject, PeekedKey> global.g (evaluatePeekedLength "
       "(readField<FrameObject> t))) (readIndexKeepingObject global.g (Arithmetic<Add> Field "
       "Constant)))"},
      {"return g[g()]",
       "(readIndexKeepingObject global.g (FunctionCall<GlobalCallee>::Of<0> global.g))"},
      {"t.x = n", "(FieldStore<true, FrameSource> n t)"},
      {"g.x = 1", "(FieldStore<false, LiteralSource> 1 global.g)"},
      {"t.x.y = n", "(FieldStore<false, FrameSource> n (readField<FrameObject> t))"},
      {"t[n] = true", "(ElementStore<true, LiteralSource> true t n)"},
      {"t[n] = #s", "(ElementStore<true, AnySource> (evaluatePeekedLength s) t n)"},
      {"g[1] = s", "(storeElement<VariableObject> s global.g 1)"},
      {"g[t.x] = s", "(storeElementKeepingObject s global.g (readField<FrameObject> t))"},
      // Calls.
      {"g(n, #t)", "(FunctionCall<GlobalCallee>::Of<2> global.g n (evaluatePeekedLength t))"},
      {"return t:m(s, s())",
       "(returnCall (CallWithMany t s (FunctionCall<FrameCallee>::Of<0> s)))"},
      {"return t:m(s)", "(returnCall (MethodCall<1> t s))"},
      {"g(n, t())",
       "(FunctionCall<GlobalCallee>::OfCall<2> global.g n (FunctionCall<FrameCallee>::Of<0> t))"},
      // Bodies.
      {"while g do local a = {} end",
       "(executeWhile global.g (runReleasing<runSome<1>> (storeScalarLocal (evaluateEmptyTable) "
       "a)))"},
      {"local function f(a) return function() a = n end end",
       "(declareFunction (makeScriptFunction (runFunctionSharing (makeScriptFunction "
       "(storeVariable copied.n captured.a)))))"},
      {"local function f(a) return f(f(a), 2) end",
       "(declareFunction (makeScriptFunction (returnCall (FunctionCall<OtherCallee>::Of<2> "
       "running.f (RunningFunctionCall<1> running.f a) 2))))"},
  };
  for (const auto& c : cases) {
    const std::string text = treeText(locals + c.source);
    EXPECT_TRUE(text.ends_with(std::string(" ") + c.tree + ")")) << c.source << "\n" << text;
  }
}

}  // namespace
}  // namespace tarvel::lua
