#include <gtest/gtest.h>
#include <tarvel/lua/lua_vm.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "lua/value/heap.h"
#include "tests/unit/number_model.h"
#include "tests/unit/script_outcome.h"
#include "tests/unit/value_support.h"

// Operators on the results of calls against the rules for numbers, and then with their operands in
// every form, and the whole in every place, for which the evaluator has functions of their own,
// against the same computed from the results of calls. Values, messages, lines and the number of
// live objects have to agree.

namespace tarvel::lua::internal {
namespace {

// Where an operand's value comes from: `@` is l or r, the captured parameter that holds it, `~` a
// literal in its stead.
struct Form {
  const char* operand;
  const char* inner = "";         // statements before it in the same function
  const char* plain = "same(@)";  // the operand from the results of calls alone
  const char* outer = "";         // statements in the function around that function
};

const Form kForms[] = {
    {"f@", "local f@ = @"},
    {"~", "", "same(~)"},
    {"same(@)"},
    {"t@.v", "local t@ = shaped(@)"},
    {"(p@ * q@)", "local p@, q@ = @, 1", "(same(@) * same(1))"},
    {"e@[i@]", "local e@, i@ = track({@}), 1"},
    {"m@[i@][j@ - 1]", "local m@, i@, j@ = {track({0, @})}, 1, 3"},
    {"e@[i@ + 1]", "local i@ = 1", "same(@)", "local e@ = track({0, @})"},
    // From here on each is combined with the others in one place only.
    {"(p@ * q@)", "local p@, q@ = 0.5, @", "(same(0.5) * same(@))"},
    {"(-~)", "", "(-same(~))"},
    {"t@.v", "", "same(@)", "local t@ = shaped(@)"},
    {"t@.v", "local t@ = shaped(@) undo = function() t@ = {} end"},
    {"T@.v", "T@ = shaped(@)"},
    {"t@.u.v", "local t@ = {u = shaped(@)}"},
    {"same(t@).v", "local t@ = shaped(@)"},
    {"(f@.name)", "local f@ = @", "same(@).name"},
    {"(f@[i@])", "local f@, i@ = @, 'name'", "same(@)[same('name')]"},
    {"e@[2]", "local e@ = track({0, @})"},
    {"e@[i@]", "local e@, i@ = track({k = @}), 'k'"},
    {"e@[same(1)]", "local e@ = track({@})"},
    {"e@[i@]", "local i@ = 1", "same(@)", "local e@ = track({@})"},
    {"e@['v']", "", "same(@)", "local e@ = shaped(@)"},
    {"e@['u'][1].v", "local e@ = {u = {{v = @}}}"},
    {"same(e@)[same(1)]", "local e@ = {@}"},
    {"e@[i@]", "local i@ = 1", "same(@)",
     "local e@ = track({@}) undoOuter = function() e@ = {} end"},
    {"e@[i@ + 1]", "local e@, i@ = track({0, @}), 1.0"},
    {"e@[i@ - 3]", "local e@, i@ = {[100] = @}, 103"},
    {"e@[i@ - 1]", "local e@, i@ = {[9223372036854775807] = @}, -9223372036854775807 - 1",
     "same(nil)"},
    {"m@[i@][1]", "local m@, i@ = {track({@})}, 1"},
    {"m@[i@].v", "local m@, i@ = {shaped(@)}, 1"},
    {"m@[i@].v", "local i@ = 1", "same(@)", "local m@ = {shaped(@)}"},
    {"t@.u[i@]", "local t@, i@ = {u = track({@})}, 1"},
    {"(T@.u[i@ + 1])", "local i@ = 0 T@ = {u = track({@})}"},
    {"T@[i@]", "local i@ = 1 T@ = track({@})"},
    {"T@[same(1)]", "T@ = track({@})"},
    {"g@", "g@ = @"},
    {"@"},
    {"c@", "", "same(@)", "local c@ = @"},
    {"c@", "local c@ = @ undo = function() c@ = nil end"},
    {"twice(@)"},
    {"t@:get()", "local t@ = {v = @, get = get}"},
    {"tostring(@)", "", "same(tostring(same(@)))"},
    {"(f@ .. 'x')", "local f@ = @", "same(same(@) .. same('x'))"},
    {"(-f@)", "local f@ = @", "(-same(@))"},
    {"(not g@)", "g@ = @", "(not same(@))"},
    {"(f@ and @)", "local f@ = @", "(same(@) and same(@))"},
    {"(t@.v or 2)", "local t@ = shaped(@)", "(same(@) or same(2))"},
    {"(t@.v - p@ * q@)", "local p@, q@, t@ = 3, 1.5, shaped(@)", "(same(@) - same(4.5))"},
    {"(p@ - q@)", "local p@, q@ = @, 1", "(same(@) - same(1))"},
    // Changes everything that a left operand can have been read from.
    {"spoil(@)", "", "same(@)", "undoOuter = function() l = nil end"}};
constexpr std::size_t kCoreForms = 8;

const char* const kBinaryOperators[] = {
    "+", "-", "*", "/", "%", "==", "~=", "<", "<=", ">", ">=", "..", "and", "or"};

// `$` is the expression, `%` its left operand if that can be assigned to.
const char* const kPlaces[] = {
    "% = $ return %", "return $", "local z = $ return z", "local z = 0 z = $ return z",
    "local z = {} z = $ return z", "if $ then return 1 end return 2",
    "if $ then return 1 else return 2 end", "while $ do return 1 end return 2",
    "if not ($) then return 1 else return 2 end", "return not ($)", "return same($)",
    "return {}, $",
    // From here on each has one combination of forms only.
    "local z, y = $, {} return z, y", "local y, z = {}, $ return y, z",
    "local z = 0 undo = function() z = 1 end z = $ return z", "fr = $ return fr",
    "local z = {v = 1} z.v = $ return z", "T = {} T.v = $ return T", "box.v = $ return box",
    "local z = {1} z[1] = $ return z", "local z, i = {{}}, 1 z[i] = $ return z",
    "local z, i = {}, 'k' z[i] = $ return z", "local z = {} z[same('k')] = $ return z",
    "T = {{}} T.t, T[same(1)] = 1, $ return T", "local z z[1] = $ return z",
    "local z = 1 z.v = $ return z", "local z = {5} return z[$]", "local z = {} z[$] = {} return z",
    "return {$, {}}", "return {k = $}", "return {[$] = {}}", "return second({}, $)",
    "return object:get($)", "return 1 + ($)", "return ($) * 2", "local y = 2 return ($) < y",
    "local y = {v = 2} return y.v == ($)", "return 'x' .. ($)", "return ($) and 5",
    "return nil or ($)", "return -($)", "for i = $, 3 do return i end return 'none'",
    "for i = 1, $ do return i end return 'none'", "for i = 1, 3, $ do return i end return 'none'",
    "if nil then return 0 elseif $ then return 1 end return 2",
    "if nil then return 0 elseif $ then return 1 elseif 1 then return 2 else return 3 end",
    ("if nil then elseif nil then elseif nil then elseif nil then elseif nil then elseif nil then "
     "elseif nil then elseif nil then elseif $ then return 1 else return 2 end"),
    "while not ($) do return 1 end return 2", "if not ($) then return 1 end return 2",
    "if ($) and 1 then return 1 end return 2", "if nil or ($) then return 1 else return 2 end"};
constexpr std::size_t kCorePlaces = 12;

const char* const kLiterals[] = {"0",   "1",     "3",   "4294967296", "9223372036854775807",
                                 "0.5", "2.0",   "''",  "'a'",        "10000000000000000000.0",
                                 "nil", "false", "'ab'"};

constexpr const char* kSetup = R"lua(
function same(v) return v end
function twice(v) return v, {} end
function second(a, b) return b end
function get(self, v)  -- gives its field away
  local taken = self.v
  self.v = nil
  return v or taken
end
object = {get = get}
function track(t) tracked = t return t end
layouts = 0
function shaped(v)  -- records in which v stands at different places
  layouts = layouts + 1
  if layouts % 3 == 0 then return track({v = v}) end
  if layouts % 3 == 1 then return track({x = 1, v = v}) end
  return track({a = 1, b = 2, c = 3, d = 4, e = 5, f = 6, g = 7, h = 8, i = 9, v = v})
end
function undo() end
function spoil(v)
  gl, Tl = nil, {}
  if tracked then tracked[1], tracked[2], tracked.v, tracked.k = nil, nil, nil, nil end
  undo()
  undoOuter()
  return v
end
V = {"", "a", "b", "ab" .. 1, "ab" .. 1, "ab" .. 2, true, false, print, {name = "p"}, {name = "q"}, nil,
     0, 1, 2, -1, 0.5, 2.0, 0 / -1, 2147483648, 4294967295, 9007199254740993}
)lua";
constexpr std::size_t kStrings = 6;
constexpr std::size_t kFirstNumber = 13;
constexpr std::size_t kGivenValues = 22;
constexpr std::size_t kValues = 122;

std::string replaced(std::string text, char mark, std::string_view with) {
  for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; at += with.size()) {
    text.replace(at, 1, with);
  }
  return text;
}

std::string exactText(const LuaValue& value) {
  const double* const number = std::get_if<double>(&value.data);
  return number == nullptr ? typed(value) : exact(Value(*number));
}

class Comparison {
 public:
  Comparison() {
    EXPECT_EQ("nil", run(vm_, kSetup));
    for (std::size_t i = kGivenValues + 1; i <= kValues; ++i) {
      number_ = i % 3 == 0 ? neighbour(random_, number_) : anyNumber(random_);
      vm_.setGlobal("v",
                    number_.isInteger() ? LuaValue(number_.integer) : LuaValue(number_.number));
      run(vm_, "V[" + std::to_string(i) + "] = v");
      numbers_.push_back(number_);
    }
  }

  // Each operator on every pair of numbers, whose results a script collects.
  void checkRules() {
    for (const auto& [op, rule] : kOperators) {
      const std::string script =
          "function apply(l, r) return same(l) " + std::string(op) +
          " same(r) end local results = {} for i = first, last do for j = first, last do "
          "local ok, result = pcall(apply, V[i], V[j]) results[#results + 1] = ok and result "
          "end end return results";
      const LuaFunction rules = vm_.load(script, "rules", {"first", "last"}).value();
      const auto results =
          vm_.call<std::vector<LuaValue>>(rules, kGivenValues + 1, kValues).value();
      ASSERT_EQ(numbers_.size() * numbers_.size(), results.size());
      for (std::size_t i = 0; i < results.size(); ++i) {
        const Value& left = numbers_[i / numbers_.size()];
        const Value& right = numbers_[i % numbers_.size()];
        const bool isDivision = std::strchr("/%", *op) != nullptr;
        const bool fails = isDivision && std::fabs(right.asFloat()) <= kEpsilon;
        ASSERT_EQ(exact(fails ? Value(false) : rule(left, right)), exactText(results[i]))
            << exact(left) << ' ' << op << ' ' << exact(right);
      }
    }
    for (std::size_t i = 0; i < numbers_.size(); ++i) {
      const Value& number = numbers_[i];
      const Value negated = number.isInteger() && number.integer != kLowest
                                ? Value(-number.integer)
                                : plainNormalize(-number.asFloat());
      const std::string index = std::to_string(kGivenValues + 1 + i);
      EXPECT_EQ(exact(negated), exactRun("return -same(V[" + index + "])"));
    }
  }

  void checkAll() {
    for (std::size_t r = 0; r < std::size(kForms); ++r) {
      for (const char* const op : {"-", "not", "#"}) check({"", "", ""}, op, kForms[r], true);
      for (std::size_t l = 0; l + 1 < std::size(kForms); ++l) {
        const bool isCore = l < kCoreForms && r < kCoreForms;
        for (const char* const op : kBinaryOperators) check(kForms[l], op, kForms[r], isCore);
        if (::testing::Test::HasFatalFailure()) return;
      }
    }
  }

 private:
  void check(const Form& left, const char* op, const Form& right, bool everywhere) {
    for (std::size_t i = 0; everywhere && i < kCorePlaces; ++i) check(left, op, right, kPlaces[i]);
    check(left, op, right, kPlaces[below(3) == 0 ? 0 : below(std::size(kPlaces))]);
  }

  void check(const Form& left, const char* op, const Form& right, const char* place) {
    const char* const literals[] = {kLiterals[below(std::size(kLiterals))],
                                    kLiterals[below(std::size(kLiterals))]};
    const auto fill = [&](const char* Form::*part, const char* between) {
      return replaced(replaced(left.*part, '@', "l"), '~', literals[0]) + between +
             replaced(replaced(right.*part, '@', "r"), '~', literals[1]);
    };
    // The operator stands in a line of its own, the operands in those around it.
    const std::string operation = std::string("\n") + op + "\n";
    const std::string calls[] = {callWith(kFirstNumber, kValues), callWith(1, kStrings),
                                 callWith(1, kValues)};
    run(vm_, "function value(l, r) return " + fill(&Form::plain, operation.c_str()) + " end");
    define("", "", place, "value(l, r)\n\n", "z");
    std::vector<std::string> expected;
    for (const std::string& call : calls) expected.push_back(exactRun("return " + call));
    const bool isTarget = *left.operand != '\0' && std::strpbrk(left.operand, "(~") == nullptr;
    const std::string source = define(fill(&Form::outer, " "), fill(&Form::inner, " "), place,
                                      fill(&Form::operand, operation.c_str()),
                                      isTarget ? replaced(left.operand, '@', "l") : "z");
    for (std::size_t i = 0; i < expected.size(); ++i) {
      ASSERT_EQ(expected[i], exactRun("return " + calls[i])) << source << "\n" << calls[i];
    }
    if (!kCheckedHeap) return;
    const std::size_t before = Heap::liveBlocks();
    for (const std::string& call : calls) exactRun(call + " return " + call);
    ASSERT_EQ(before, Heap::liveBlocks()) << source;
  }

  std::string define(const std::string& outer, const std::string& inner, const char* place,
                     const std::string& expression, const std::string& target) {
    const std::string source = "function case(l, r) return (function() local box = {} " + outer +
                               " return (function() " + inner + " " +
                               replaced(replaced(place, '%', target), '$', expression) +
                               " end)() end)() end";
    EXPECT_EQ("nil", run(vm_, source)) << source;
    return source;
  }

  // With values of these numbers, often the same one twice.
  std::string callWith(std::size_t first, std::size_t last) {
    const std::size_t left = first + below(last - first + 1);
    const std::size_t right = below(4) == 0 ? left : first + below(last - first + 1);
    return "case(V[" + std::to_string(left) + "], V[" + std::to_string(right) + "])";
  }

  std::string exactRun(const std::string& source) {
    const LuaResult result = vm_.runScriptString(source, "c");
    return result.ok ? exactText(result.value) : outcome(result);
  }

  std::size_t below(std::size_t limit) { return random_() % limit; }

  std::mt19937_64 random_{59};
  LuaVM vm_;
  Value number_{std::int64_t{9223372036854775807}};  // the latest in V
  std::vector<Value> numbers_;                       // those from kGivenValues + 1 on
};

TEST(OperandForms, GiveWhatCallsGiveAndCallsWhatTheRulesSay) {
  const std::size_t before = Heap::liveBlocks();
  auto comparison = std::make_unique<Comparison>();
  comparison->checkRules();
  comparison->checkAll();
  comparison.reset();
  EXPECT_EQ(before, Heap::liveBlocks());
}

}  // namespace
}  // namespace tarvel::lua::internal
