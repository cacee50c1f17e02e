#include "tests/fuzz/script_generator.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tests/fuzz/choices.h"

namespace tarvel::lua::fuzz {

namespace {

constexpr int kExpressionDepth = 4;
constexpr int kStatementDepth = 3;
constexpr unsigned kMostStatements = 40;

// A rule in a line: its forms, of which only those in front of `||` are taken where nesting has to
// end. What stands twice is taken twice as often. In a form, `$NAME` is another rule, and:
//   $v1 to $v9   reads a variable: 1 and 2 mostly hold numbers, 3 text, 4 a small index, 7 a list,
//                8 a record and 9 a list of rows; only these three hold tables, whose text would
//                show an address
//   $w1 to $w9   the same variable where something is assigned to it
//   $1           the text of the first rule in the form, once more; $2 that of the second
//   $i           the variable of the innermost loop of the function; a number
//   $N           the number of a loop that begins here, and $enter the begin of its body
//   $spoil       reaches the function `spoil`, which may change every variable and what it holds
//   $function    the begin of a function's body; $closure the same where loop variables are visible
//   $break       leaves a loop, if there is one
//   $line        the end of a line
//   $block       a few statements, each on a line of its own
constexpr std::string_view kGrammar = R"lua(
variable:   $v1 | $v2 | $v3 | $v4 | $v5 | $v6
digit:      1 | 2 | 3 | 4
third:      1 | 2 | 3
constant:   1 | 2 | 0.5 | 3 | -1 | 10 | 0.25 | 7 | 3037000500 | 9223372036854775807
literal:    0 | 1 | 2 | -1 | 0.5 | 'b' | '10' | nil | false | 255 | 'a b' | 4611686018427387904
arithmetic: + | - | * | / | %
order:      < | <= | > | >= | == | ~=
number:     $v1 | $v2 | $constant | $i || ($number $arithmetic $number) | - $number | #$text
number:     ($number $arithmetic $number) | ($number $line $arithmetic $line $number)
number:     ($number $arithmetic $spoil) | $spoil
number:     ($element or 1) | $element | math.floor($number) | math.max($number, $v1)
element:    $v7[1] | $v8.a | $v8.n | $v9[2][$i] || $v7[$key] | $v7[$i + 1] | $v9[$third][$key]
element:    {$number, 2}[$i] | $v9[2].n | $v8.row.n | $v9[$third][$spoil] | $v7[$spoil]
key:        $digit | $i | $v4 | $i + 1 | $i - 1 | $i + 2 | $digit || $number
text:       $v3 | 'ab' | 'hello world' | $v8.b | 'a,b;c' | '' || ($text $line .. $line $any)
text:       tostring($any)
text:       string.sub($text, $number, $number) | string.format('%d:%s', $number, $any)
text:       string.rep($text, 2) | (string.gsub($text, $pattern, 'x'))
pattern:    'a' | '%a+' | '(%w)(%w)' | '^%s*(.-)%s*$' | '[^,;]+' | 'b-$' | '%d*' | 'l+o?' | '.'
pattern:    '(a)()' | 'x+'
condition:  $variable | $v1 $order $constant || $number $line $order $line $number | $element
condition:  not $condition
condition:  ($condition and $condition) | ($condition and $condition) | ($condition or $condition)
condition:  ($condition or $condition) | $text == $text | $text < $text | $text ~= $text
any:        $variable | $literal || $number | $number | $number | $text | $text | ($condition)
any:        $call | pcall(same, $any)
call:       f$third($any, $any) | f$third($any, $any) | f$third($any, same($any))
assignment: $w1 = $number | $w2 = $number | $w3 = $text | $w4 = $digit | $w5 = $any | $w6 = $any
assignment: $w1 = $number | $w2 = $number | $w3 = $text | $w4 = $any | $w5 = $number | $w1 = $any
place:      $w1 | $w2 | $v8.n | $v8.a | $v7[1] | $v7[$i] | $v9[1][2] | $v9[3][$key] | $v7[$key]
place:      $v8.row.n
words:      $w3 | $w3 | $v8.b | $v8[$v3] | $w5
field:      a | b | n | c
result:     p + q | p, q | error(p) | q
library:    report(pcall(table.sort, $v7)) | report(pcall(table.concat, $v7, ','))
library:    report(pcall(table.remove, $v7, $number)) | report(string.find($text, $pattern))
library:    report(string.match($text, $pattern)) | report(tonumber($text), type($any))
library:    report(pcall(table.sort, $v7, function(a, b) return b < a end))
library:    report(pcall(same(f$third), $any, $any))
statement:  $assignment | $assignment | $w1, $w5 = $number, $any | $w2, $w1 = $number, $number
statement:  $place = $1 $arithmetic $number | $place = ($1 or 0) + $number | $words = $1 .. $any
statement:  $words = $1 .. $any .. $spoil
statement:  $words = ($1 .. $any) .. $any | $v7[$key] = $any | $v8.$field = $any
statement:  $v7[$key], $v7[$key] = $v7[$2], $v7[$1] | report($any, $any) | report($any)
statement:  report($condition) | $library | if $condition then $break end
statement:  || if $condition then $block end | if $condition then $block else $block end
statement:  for i$N = $number, $limit do $enter $block end
statement:  for i$N = 5, $stop, $step do $enter $block end
statement:  for i$N, e$N in ipairs($v7) do report(e$N) $enter $block end
statement:  for k$N, e$N in pairs($v8) do report(k$N, e$N) local i$N = 1 $enter $block end
statement:  local n$N = 0 while n$N < 4 and $condition do $count $enter $block end
statement:  report(pcall(function() $closure $block end))
statement:  f$third = function(p, q) $function $body end
statement:  spoil = function() $function $change $change return $digit end
change:     $w1 = $constant | $w2 = 'two' | $w3 = 'new' .. $digit | $w4, $w5 = $digit, $v1 | $renew
change:     $v7[$digit] = $literal | $v8.$field = nil | $v8.row = {n = $digit} | $v9[2] = {9, n = 8}
change:     $w7 = {$digit, 9} | $w8 = {b = 'y' .. $digit, a = 1, row = {n = 3}, n = 1.5}
change:     $w7, $w9 = {6, 5, 4}, {{8, 7, n = 1}, {n = 6}, {5}} | $renew | error('spoiled')
count:      n$N = n$N + 1 local i$N = n$N
limit:      4 | 2 + 1 | 5 - 0.5
stop:       1 | 2 | 0.5 | 7 | 10
step:       -1 | -2 | 1.5
body:       $assignment report(p, q) if p == 'stop' then return $any end return $result
begin:      $local$w1 = 1 $local$w2 = 2.5 $local$w3 = 'ab' $local$w4 = 3 $local$w5 = 'x,y' $tables
tables:     $local$w6 = nil $local$w7 = {5, 7, 4, 2} $record $rows
record:     $local$w8 = {a = 1, b = 'x', n = 0.5, row = {n = 2}}
rows:       $local$w9 = {{1, 2.5, 3, n = 4}, {4, 5, 6, n = 5}, {7}} $main
)lua";

// What is the same in every placement, and on the same line.
constexpr const char* kBegin =
    "local function same(x) return x end local o = {} f1 = function(p, q) return q end "
    "f2, f3 = f1, f1 spoil = function() return 1 end ";
constexpr std::string_view kEnd =
    "report($v1, $v2, $v3, $v4, $v5, $v6) report(#$v7, $v7[1], $v7[2], $v8.a, $v8.b)";

struct Rule {
  std::vector<std::string_view> forms;
  std::size_t plain = 0;  // so many of the forms; 0 for all
};

std::string_view withoutBlanks(std::string_view text) {
  const std::size_t first = std::min(text.find_first_not_of(' '), text.size());
  return text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

std::map<std::string_view, Rule> readGrammar() {
  std::map<std::string_view, Rule> rules;
  std::string_view rest = kGrammar.substr(1);
  while (!rest.empty()) {
    std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(line.size() + 1);
    Rule& rule = rules[line.substr(0, line.find(':'))];
    line.remove_prefix(line.find(':') + 1);
    while (!line.empty()) {
      const std::string_view form = line.substr(0, line.find('|'));
      line.remove_prefix(std::min(form.size() + 1, line.size()));
      if (!withoutBlanks(form).empty()) rule.forms.push_back(withoutBlanks(form));
      if (line.starts_with('|')) rule.plain = rule.forms.size();
    }
  }
  return rules;
}

const std::map<std::string_view, Rule>& rules() {
  static const std::map<std::string_view, Rule> rules = readGrammar();
  return rules;
}

class Generator {
 public:
  Generator(std::span<const std::uint8_t> bytes, Placement placement)
      : choices_(bytes), placement_(placement) {}

  std::string run() {
    std::string script = kBegin;
    if (placement_ == Placement::Properties) script += properties();
    script += pick("begin", 0, 0) + "\n";
    while (!choices_.isEmpty() && statements_ < kMostStatements) script += statement();
    script += fill(kEnd, 0);
    return placement_ == Placement::Captured ? script + "end body()" : script;
  }

 private:
  // The loops around a statement: those up to the function, and those that a `break` may leave.
  struct Loops {
    int visible = 0;
    int breakable = 0;
  };

  std::string statement() {
    ++statements_;
    ++depth_;
    const bool mayNest = depth_ <= kStatementDepth && statements_ < kMostStatements;
    const std::string text = pick("statement", mayNest ? kExpressionDepth : 0, kExpressionDepth);
    --depth_;
    return text + "\n";
  }

  std::string block() {
    std::string text;
    for (unsigned count = 1 + choices_.below(3); count > 0; --count) text += statement();
    return text;
  }

  // One of the rule's forms, with what stands in it at most `inside` levels deep.
  std::string pick(std::string_view name, int depth, int inside) {
    const Rule& rule = rules().at(name);
    const std::size_t count = depth > 0 || rule.plain == 0 ? rule.forms.size() : rule.plain;
    return fill(rule.forms[choices_.below(static_cast<unsigned>(count))], inside);
  }

  std::string fill(std::string_view form, int depth) {
    const Loops outer = loops_;
    std::vector<std::string> parts;
    std::string text;
    while (!form.empty()) {
      const std::size_t before = std::min(form.find('$'), form.size());
      text += form.substr(0, before);
      form.remove_prefix(before);
      if (form.empty()) break;
      std::size_t end = 1;
      while (end < form.size() && std::isalnum(static_cast<unsigned char>(form[end]))) ++end;
      text += expand(form.substr(1, end - 1), depth, parts);
      form.remove_prefix(end);
    }
    loops_ = outer;
    return text;
  }

  std::string expand(std::string_view name, int depth, std::vector<std::string>& parts) {
    const bool isNumbered = name.size() == 2 && name[1] >= '1' && name[1] <= '9';
    if (name.empty()) return "$";
    if (isNumbered) return variable(name[1], name[0] == 'v');
    if (name == "1" || name == "2") return parts.at(static_cast<std::size_t>(name[0] - '1'));
    if (name == "block") return block();
    if (rules().contains(name)) return parts.emplace_back(pick(name, depth, depth - 1));
    return special(name);
  }

  std::string special(std::string_view name) {
    if (name == "i") return loops_.visible == 0 ? "2" : "i" + std::to_string(loops_.visible);
    if (name == "N") return std::to_string(loops_.visible + 1);
    if (name == "break") return loops_.breakable > 0 ? "break" : "report('no loop')";
    if (name == "local") return isLocal() ? "local " : "";
    if (name == "main") return placement_ == Placement::Captured ? "local function body()" : "";
    if (name == "line") return "\n";
    if (name == "spoil") return placement_ == Placement::Properties ? "o.spoil" : "spoil()";
    if (name == "renew") return placement_ == Placement::Properties ? "o = renew()" : "";
    if (name == "enter") loops_ = {loops_.visible + 1, loops_.breakable + 1};
    if (name == "function") loops_ = {};
    if (name == "closure") loops_.breakable = 0;
    return {};
  }

  static std::string properties() {
    std::string text = "local s = {} o = renew() ";
    for (const std::string number : {"1", "2", "3", "4", "5", "6", "7", "8", "9"})
      text += "function get" + number + "() return s.v" + number + " end function set" + number +
              "(self, v) s.v" + number + " = v end ";
    return text;
  }

  bool isLocal() const {
    return placement_ == Placement::Locals || placement_ == Placement::Captured ||
           placement_ == Placement::Calls;
  }

  std::string variable(char number, bool isRead) const {
    const std::string local = std::string("v") + number;
    switch (placement_) {
      case Placement::Fields:
      case Placement::Properties:
        return "o." + local;
      case Placement::Elements:
        return std::string("o[") + number + "]";
      case Placement::Calls:
        return isRead ? "same(" + local + ")" : local;
      default:
        return local;
    }
  }

  Choices choices_;
  const Placement placement_;
  unsigned statements_ = 0;
  int depth_ = 0;
  Loops loops_;
};

}  // namespace

std::string generateScript(std::span<const std::uint8_t> bytes, Placement placement) {
  return Generator(bytes, placement).run();
}

}  // namespace tarvel::lua::fuzz
