#include "tests/fuzz/script_generator.h"

#include <string>

#include "tests/fuzz/choices.h"

namespace tarvel::lua::fuzz {

namespace {

constexpr unsigned kVariables = 6;  // which never hold a table, whose text would show an address
constexpr int kExpressionDepth = 4;
constexpr int kStatementDepth = 3;
constexpr unsigned kMostStatements = 40;

class Generator {
 public:
  Generator(std::span<const std::uint8_t> bytes, Placement placement)
      : choices_(bytes), placement_(placement) {}

  std::string run() {
    begin();
    while (!choices_.isEmpty() && statements_ < kMostStatements) statement();
    for (unsigned i = 1; i <= kVariables; ++i) line("report(" + variable(i) + ")");
    line("report(#" + list() + ", " + list() + "[1], " + list() + "[2], " + record() + ".a, " +
         record() + ".b)");
    line(placement_ == Placement::Captured ? "end body()" : "");
    return script_;
  }

 private:
  // ---- Variables ----
  std::string name(unsigned number) const {
    switch (placement_) {
      case Placement::Fields:
        return "o.v" + std::to_string(number);
      case Placement::Elements:
        return "o[" + std::to_string(number) + "]";
      default:
        return "v" + std::to_string(number);
    }
  }
  std::string variable(unsigned number) const {
    return placement_ == Placement::Calls ? "same(" + name(number) + ")" : name(number);
  }
  std::string anyVariable() { return variable(1 + choices_.below(kVariables)); }
  // "name = value": the first two mostly hold numbers and the third text, or most scripts would end
  // at their first operator.
  std::string assignment(int depth) {
    const unsigned number = 1 + choices_.below(kVariables);
    return name(number) + " = " + valueFor(number, depth);
  }
  std::string valueFor(unsigned number, int depth) {
    if (choices_.oneIn(12)) return any(depth);
    if (number == 4) return choices_.of({"1", "2", "3", "4"});
    return number <= 2 ? this->number(depth) : number == 3 ? text(depth) : any(depth);
  }
  std::string list() const { return variable(kVariables + 1); }
  std::string record() const { return variable(kVariables + 2); }
  std::string rows() const { return variable(kVariables + 3); }

  // One line in every placement.
  void begin() {
    static const char* const kValues[] = {"1",
                                          "2.5",
                                          "'ab'",
                                          "3",
                                          "'x,y'",
                                          "nil",
                                          "{5, 7, 4, 2}",
                                          "{a = 1, b = 'x', n = 0.5}",
                                          "{{1, 2.5, 3}, {4, 5, 6}, {7}}"};
    std::string text =
        "local function same(x) return x end local o = {} "
        "f1 = function(p, q) return q end f2, f3 = f1, f1 ";
    const bool isLocal = placement_ == Placement::Locals || placement_ == Placement::Captured ||
                         placement_ == Placement::Calls;
    for (unsigned i = 1; i <= kVariables + 3; ++i)
      text += (isLocal ? "local " : "") + name(i) + " = " + kValues[i - 1] + " ";
    if (placement_ == Placement::Captured) text += "local function body()";
    line(text);
  }
  void line(const std::string& text) { script_.append(text).push_back('\n'); }

  // ---- Expressions ----
  std::string literal() {
    static const char* const kLiterals[] = {
        "0",   "1",    "2",     "3",  "-1",  "0.5",  "'b'", "'ab'",  "'10'",
        "nil", "true", "false", "10", "1.5", "0.25", "255", "'a b'", "4611686018427387904"};
    return choices_.of(kLiterals);
  }

  std::string number(int depth) {
    switch (depth <= 0 ? choices_.below(4) : choices_.below(10)) {
      case 0:
      case 1:
        return variable(1 + choices_.below(2));
      case 2:
        return choices_.of({"1", "2", "0.5", "3", "-1", "10", "0.25", "7"});
      case 3:
        return loopVariable();
      case 4:
      case 5:
        return "(" + number(depth - 1) + " " + choices_.of({"+", "-", "*", "/", "%"}) + " " +
               number(depth - 1) + ")";
      case 6:
        return "- " + number(depth - 1);
      case 7:
        return choices_.oneIn(4) ? element(depth) : "(" + element(depth) + " or 1)";
      case 8:
        return "#" + text(depth - 1);
      default:
        return "math." + choices_.of({std::string("floor("), std::string("abs(")}) +
               number(depth - 1) + ")";
    }
  }

  std::string element(int depth) {
    switch (choices_.below(8)) {
      case 6:
        return rows() + "[" + choices_.of({"1", "2", "2", "3"}) + "][" + key() + "]";
      case 7:
        return rows() + "[2][" + loopVariable() + "]";
      case 0:
        return list() + "[1]";
      case 1:
        return record() + ".a";
      case 2:
        return list() + "[" + key() + "]";
      case 3:
        return list() + "[" + loopVariable() + " + 1]";
      case 4:
        return record() + ".n";
      default:
        return "{" + number(depth - 1) + ", " + number(depth - 1) + "}[" + loopVariable() + "]";
    }
  }

  // Mostly a whole number.
  std::string key() {
    switch (choices_.below(8)) {
      case 0:
      case 1:
        return loopVariable();
      case 2:
        return loopVariable() + choices_.of({" + 1", " - 1", " + 2"});
      case 3:
        return variable(4);
      case 4:
        return number(1);
      default:
        return choices_.of({"1", "2", "3", "4"});
    }
  }

  std::string text(int depth) {
    switch (depth <= 0 ? choices_.below(3) : choices_.below(9)) {
      case 0:
        return name3();
      case 1:
        return choices_.of({"'ab'", "'hello world'", "''", "'a,b;c'"});
      case 2:
        return record() + ".b";
      case 3:
        return "(" + text(depth - 1) + " .. " + any(depth - 1) + ")";
      case 4:
        return "string.sub(" + text(depth - 1) + ", " + number(depth - 1) + ", " +
               number(depth - 1) + ")";
      case 5:
        return "tostring(" + any(depth - 1) + ")";
      case 6:
        return "string.format('%d:%s', " + number(depth - 1) + ", " + any(depth - 1) + ")";
      case 7:
        return "string.rep(" + text(depth - 1) + ", 2)";
      default:
        return "(string.gsub(" + text(depth - 1) + ", " + pattern() + ", 'x'))";
    }
  }
  std::string name3() const { return variable(3); }
  std::string pattern() {
    static const char* const kPatterns[] = {"'a'",      "'%a+'",   "'(%w)(%w)'", "'^%s*(.-)%s*$'",
                                            "'[^,;]+'", "'b-$'",   "'%d*'",      "'l+o?'",
                                            "'.'",      "'(a)()'", "'x+'"};
    return choices_.of(kPatterns);
  }

  std::string condition(int depth) {
    switch (depth <= 0 ? choices_.below(3) : choices_.below(9)) {
      case 0:
        return anyVariable();
      case 1:
        return number(depth - 1) + choices_.of({" < ", " <= ", " > ", " >= ", " == ", " ~= "}) +
               number(depth - 1);
      case 2:
        return element(depth);
      case 3:
      case 4:
        return "(" + condition(depth - 1) + " and " + condition(depth - 1) + ")";
      case 5:
      case 6:
        return "(" + condition(depth - 1) + " or " + condition(depth - 1) + ")";
      case 7:
        return "not " + condition(depth - 1);
      default:
        return text(depth - 1) + choices_.of({" == ", " < ", " ~= "}) + text(depth - 1);
    }
  }

  std::string any(int depth) {
    switch (depth <= 0 ? choices_.below(3) : choices_.below(10)) {
      case 0:
        return anyVariable();
      case 1:
        return literal();
      case 2:
      case 3:
      case 4:
        return number(depth - 1);
      case 5:
      case 6:
        return text(depth - 1);
      case 7:
        return "(" + condition(depth - 1) + ")";
      case 8:
        return "pcall(same, " + any(depth - 1) + ")";
      default:
        return call(depth);
    }
  }

  // Functions that the script has defined so far take two values; one defined later is nil.
  std::string call(int depth) {
    const std::string callee = "f" + std::to_string(1 + choices_.below(3));
    return choices_.oneIn(3) ? callee + "(" + any(depth - 1) + ", same(" + any(depth - 1) + "))"
                             : callee + "(" + any(depth - 1) + ", " + any(depth - 1) + ")";
  }

  // Of the innermost loop or function; a number.
  std::string loopVariable() const { return loops_ == 0 ? "2" : "i" + std::to_string(loops_); }

  // ---- Statements ----
  void block(const std::string& head, const std::string& tail) {
    line(head);
    ++depth_;
    for (unsigned count = 1 + choices_.below(3); count > 0; --count) statement();
    --depth_;
    line(tail);
  }

  void statement() {
    ++statements_;
    const bool mayNest = depth_ < kStatementDepth && statements_ < kMostStatements;
    switch (mayNest ? choices_.below(20) : choices_.below(11)) {
      case 0:
        return line(assignment(kExpressionDepth));
      case 1: {
        const unsigned first = 1 + choices_.below(kVariables);
        const unsigned second = 1 + choices_.below(kVariables);
        return line(name(first) + ", " + name(second) + " = " + valueFor(first, 2) + ", " +
                    valueFor(second, 2));
      }
      case 2:
        return update();
      case 3:
        return line(list() + "[" + key() + "] = " + any(2));
      case 4:
        return line(record() + choices_.of({".a", ".b", ".n", ".c"}) + " = " + any(2));
      case 5:
        return swap();
      case 6:
        return line("report(" + any(kExpressionDepth) + ", " + any(2) + ")");
      case 7:
        return libraryCall();
      case 8:
        return line("report(pcall(same(f" + std::to_string(1 + choices_.below(3)) + "), " + any(2) +
                    ", " + any(2) + "))");
      case 9:
        return line("report(" + condition(kExpressionDepth) + ")");
      case 10:
        return line("if " + condition(2) + " then " + (breaks_ > 0 ? "break" : assignment(1)) +
                    " end");
      default:
        return nested();
    }
  }

  void update() {
    static const char* const kArithmetic[] = {" + ", " - ", " * ", " / ", " % "};
    const std::string places[] = {name(1),           name(2),
                                  name(3),           record() + ".n",
                                  record() + ".a",   list() + "[" + loopVariable() + "]",
                                  list() + "[1]",    record() + "[" + name3() + "]",
                                  rows() + "[1][2]", rows() + "[3][" + key() + "]"};
    const unsigned which = choices_.below(10);
    const std::string place = places[which];
    const bool isText = which == 2 || which == 7;
    const std::string operation = isText ? " .. " : choices_.of(kArithmetic);
    switch (choices_.below(4)) {
      case 0:
        return line(place + " = " + place + operation + (isText ? literal() : number(0)));
      case 1:
        return line(place + " = (" + place + " or 0) + " + number(1));
      case 2:
        return line(place + " = (" + place + " .. " + any(1) + ") .. " + any(1));
      default:
        return line(place + " = " + place + operation + (isText ? any(2) : number(2)));
    }
  }

  void swap() {
    const std::string left = list() + "[" + key() + "]";
    const std::string right = list() + "[" + key() + "]";
    line(left + ", " + right + " = " + right + ", " + left);
  }

  void libraryCall() {
    switch (choices_.below(7)) {
      case 0:
        return line("report(pcall(table.sort, " + list() + "))");
      case 1:
        return line("report(pcall(table.concat, " + list() + ", ','))");
      case 2:
        return line("report(pcall(table.remove, " + list() + ", " + number(1) + "))");
      case 3:
        return line("report(string.find(" + text(2) + ", " + pattern() + "))");
      case 4:
        return line("report(string.match(" + text(2) + ", " + pattern() + "))");
      case 5:
        return line("report(pcall(table.sort, " + list() + ", function(a, b) return b < a end))");
      default:
        return line("report(tonumber(" + text(2) + "), type(" + any(2) + "))");
    }
  }

  void nested() {
    switch (choices_.below(9)) {
      case 0:
        return block("if " + condition(3) + " then", "end");
      case 1: {
        block("if " + condition(2) + " then", "else");
        return block("", "end");
      }
      case 2:
        return loop("for i# = " + number(1) + ", " + choices_.of({"4", "2 + 1", "5 - 0.5"}) +
                    " do");
      case 3:
        return loop("for i# = 5, " + number(0) + ", " + choices_.of({"-1", "-2", "1.5"}) + " do");
      case 4:
        return loop("local n# = 0 while n# < 4 and " + condition(2) +
                    " do n# = n# + 1 local i# = n#");
      case 5:
        return loop("for i#, e# in ipairs(" + list() + ") do report(e#)");
      case 6:
        return loop("for k#, e# in pairs(" + record() + ") do report(k#, e#) local i# = 1");
      case 7:
        return function();
      default: {
        const int outerBreaks = breaks_;
        breaks_ = 0;
        block("report(pcall(function()", "end))");
        breaks_ = outerBreaks;
      }
    }
  }

  void loop(std::string head) {
    ++loops_;
    ++breaks_;
    const std::string number = std::to_string(loops_);
    for (std::size_t at = 0; (at = head.find('#', at)) != std::string::npos;) {
      // `#` in front of anything but a blank is the operator.
      const bool isPlaceholder =
          at > 0 && std::string("ienk").find(head[at - 1]) != std::string::npos;
      if (isPlaceholder) head.replace(at, 1, number);
      ++at;
    }
    block(head, "end");
    --loops_;
    --breaks_;
  }

  void function() {
    const int outerLoops = loops_;
    loops_ = 0;
    const std::string global = "f" + std::to_string(1 + choices_.below(3));
    const std::string result = choices_.of({std::string("return p + q"), std::string("return p, q"),
                                            std::string("error(p)"), std::string("return q")});
    line(global + " = function(p, q)");
    line(assignment(2) + " report(p, q)");
    line("if p == 'stop' then return " + any(1) + " end " + result + " end");
    loops_ = outerLoops;
  }

  Choices choices_;
  const Placement placement_;
  std::string script_;
  unsigned statements_ = 0;
  int depth_ = 0;
  int loops_ = 0;   // around the statement, up to the function
  int breaks_ = 0;  // of these, those that a `break` may leave
};

}  // namespace

std::string generateScript(std::span<const std::uint8_t> bytes, Placement placement) {
  return Generator(bytes, placement).run();
}

}  // namespace tarvel::lua::fuzz
