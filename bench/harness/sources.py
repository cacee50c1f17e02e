"""Generated scripts of many lines, in every language, for measuring how fast they are read.

Each kind is a function of a language and a number of lines that returns the text. The scripts do
next to nothing when they run."""


def straight(language, count):
    """Assignments and one-line branches on three variables of the script."""
    opening = {".lua": "local a, b, c = 1, 2, 3", ".py": "a, b, c = 1, 2, 3", ".js": "var a = 1, b = 2, c = 3;",
               ".pl": "my ($a, $b, $c) = (1, 2, 3);", ".rb": "a, b, c = 1, 2, 3"}[language]
    shapes = {
        ".lua": ["a = b + c * {0}", "b = a - {0}", "c = (a + b) % 7 + c", "if a > b then c = c + {0} end"],
        ".py": ["a = b + c * {0}", "b = a - {0}", "c = (a + b) % 7 + c", "if a > b: c = c + {0}"],
        ".js": ["a = b + c * {0};", "b = a - {0};", "c = (a + b) % 7 + c;", "if (a > b) {{ c = c + {0}; }}"],
        ".pl": ["$a = $b + $c * {0};", "$b = $a - {0};", "$c = ($a + $b) % 7 + $c;",
                "if ($a > $b) {{ $c = $c + {0}; }}"],
        ".rb": ["a = b + c * {0}", "b = a - {0}", "c = (a + b) % 7 + c", "if a > b then c = c + {0} end"],
    }[language]
    return "\n".join([opening] + [shapes[i % 4].format(i % 10) for i in range(count)]) + "\n"


def functions(language, count):
    """Functions of five lines, each called once, so that none is skipped by who compiles at the first call."""
    shape = {
        ".lua": "function work{0}(x, y)\n  local z = x * y + {0}\n  if z > x then z = z - y end\n  return z\nend\n"
                "work{0}(1, 2)\n",
        ".py": "def work{0}(x, y):\n    z = x * y + {0}\n    if z > x: z = z - y\n    return z\n\nwork{0}(1, 2)\n",
        ".js": "function work{0}(x, y) {{\n  var z = x * y + {0};\n  if (z > x) {{ z = z - y; }}\n  return z;\n}}\n"
               "work{0}(1, 2);\n",
        ".pl": "sub work{0} {{\n  my ($x, $y) = @_; my $z = $x * $y + {0};\n  if ($z > $x) {{ $z = $z - $y; }}\n"
               "  return $z;\n}}\nwork{0}(1, 2);\n",
        ".rb": "def work{0}(x, y)\n  z = x * y + {0}\n  if z > x then z = z - y end\n  return z\nend\nwork{0}(1, 2)\n",
    }[language]
    return "".join(shape.format(i) for i in range(count // 6))


def after_a_sum(language, text):
    """The text after a statement that is no JSON: jsc has a parser of its own for scripts that only
    assign constants, which would not be the one to measure."""
    return {".lua": "rest = 1 + 2\n", ".py": "rest = 1 + 2\n", ".js": "rest = 1 + 2;\n",
            ".pl": "$rest = 1 + 2;\n", ".rb": "rest = 1 + 2\n"}[language] + text


def in_list(language, items):
    opening = {".lua": "data = {", ".py": "data = [", ".js": "data = [", ".pl": "$data = [", ".rb": "data = ["}[language]
    closing = {".lua": "}", ".py": "]", ".js": "];", ".pl": "];", ".rb": "]"}[language]
    return after_a_sum(language, opening + "\n" + ",\n".join(items) + "\n" + closing + "\n")


def data(language, count):
    """One list of records."""
    shape = {
        ".lua": '{{id = {0}, name = "item{0}", price = {1}.25, tags = {{"a", "b"}}, stocked = true}}',
        ".py": '{{"id": {0}, "name": "item{0}", "price": {1}.25, "tags": ["a", "b"], "stocked": True}}',
        ".js": '{{id: {0}, name: "item{0}", price: {1}.25, tags: ["a", "b"], stocked: true}}',
        ".pl": '{{id => {0}, name => "item{0}", price => {1}.25, tags => ["a", "b"], stocked => 1}}',
        ".rb": '{{id: {0}, name: "item{0}", price: {1}.25, tags: ["a", "b"], stocked: true}}',
    }[language]
    return in_list(language, [shape.format(i, i % 100) for i in range(count)])


def integers(language, count):
    """One list of integers, ten in a line."""
    return in_list(language, [", ".join(str((i * 10 + j) * 7919 % 100000) for j in range(10))
                              for i in range(count)])


def global_names(language, count):
    """Assignments to global variables with names of their own."""
    shape = {".lua": "value{0} = {0}", ".py": "value{0} = {0}", ".js": "value{0} = {0};", ".pl": "$value{0} = {0};",
             ".rb": "$value{0} = {0}"}[language]
    return after_a_sum(language, "".join(shape.format(i) + "\n" for i in range(count)))


def long_strings(language, count):
    """One list of texts of some eighty bytes."""
    return in_list(language, [f'"line {i:06} ' + "of a longer text without anything special in it, " * 2 + '"'
                              for i in range(count)])


KINDS = {"straight": straight, "functions": functions, "data": data, "integers": integers,
         "globals": global_names, "strings": long_strings}
