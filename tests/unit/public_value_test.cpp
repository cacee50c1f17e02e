#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

namespace tarvel::lua {
namespace {

using internal::runOnStack;

// Values as hosts make, copy and release them, without an interpreter.

constexpr std::size_t kSmallStack = 256 * 1024;
constexpr int kDepth = 1000000;

// A value in which sequences and objects nest, around `core`.
LuaValue nested(LuaValue core) {
  for (int i = 0; i < kDepth; ++i) {
    core = i % 3 == 0 ? object({{"a", core}, {"b", integer(i)}}) : sequence(core, integer(i), core);
  }
  return core;
}

TEST(LuaValue, IsReleasedFromAnyDepth) {
  const auto shared = std::make_shared<LuaValue::Sequence>(2, integer(7));
  runOnStack(kSmallStack, [&] {
    LuaValue whole = nested(LuaValue(shared));
    const LuaValue inner = std::get<6>(whole.data)->at("a");
    LuaResult result;
    result.value = std::move(whole);
    EXPECT_EQ(2, std::get<5>(inner.data).use_count()) << "in the object around it and here";
    result = LuaResult();
    EXPECT_EQ(LuaValue::Type::Sequence, inner.type);
    EXPECT_EQ(3u, std::get<5>(inner.data)->size()) << "what others hold stays as it was";
    EXPECT_EQ(1, std::get<5>(inner.data).use_count());
    EXPECT_LT(1, shared.use_count());
  });
  EXPECT_EQ(1, shared.use_count());
  EXPECT_EQ("{7, 7}", LuaValue(shared).toString());

  // Many at each level, and one that stands on another's way out.
  LuaValue wide = integer(0);
  for (int i = 0; i < 3000; ++i) {
    const LuaValue leaf = sequence(integer(i));
    LuaValue::Sequence elements(50, leaf);
    for (LuaValue& element : elements) element = sequence(leaf);
    elements.push_back(std::exchange(wide, LuaValue()));
    wide = LuaValue(std::make_shared<LuaValue::Sequence>(std::move(elements)));
  }
  runOnStack(kSmallStack, [&wide] { wide = LuaValue("gone"); });
  EXPECT_EQ("gone", wide.toString());
}

TEST(LuaValue, TakesAPartOfItself) {
  LuaValue value = object({{"list", sequence(LuaValue("inner"), integer(2))}});
  value = std::get<6>(value.data)->at("list");
  EXPECT_EQ("['inner' i2]", typed(value));
  value = std::move(std::get<5>(value.data)->front());
  EXPECT_EQ("'inner'", typed(value));
  LuaValue& same = value;
  value = same;
  value = std::move(same);
  EXPECT_EQ("'inner'", typed(value));
}

// A host may set the two apart; nothing then reads what is not there.
TEST(LuaValue, WithAWrongTypeIsRefused) {
  LuaVM vm;
  LuaValue wrong;
  vm.bindFunction("get", [&wrong](LuaVM&, const Arguments&) { return wrong; });
  for (const LuaValue& value : {LuaValue(), integer(1), LuaValue("x"), sequence(), object({})}) {
    for (const std::uint32_t type : {0u, 1u, 4u, 5u, 6u, 7u, 8u}) {
      wrong = value;
      if (static_cast<LuaValue::Type>(type) == wrong.type) continue;
      wrong.type = static_cast<LuaValue::Type>(type);
      EXPECT_THROW(vm.setGlobal("v", wrong), std::runtime_error) << type;
      EXPECT_THROW(vm.setGlobal("v", sequence(wrong)), std::runtime_error) << type;
      EXPECT_THROW(static_cast<void>(object({{"k", wrong}}).toString()), std::runtime_error);
      EXPECT_EQ("[false 'unsupported TarvelLua value']", run(vm, "return pcall(get)"));
    }
  }
}

}  // namespace
}  // namespace tarvel::lua
