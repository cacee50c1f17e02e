#pragma once

#include <functional>
#include <string>
#include <vector>

// What the engines have in common: rows of one table.

namespace embedding {

enum Row { kNothing, kAdd, kAddByName, kRecord, kHostNumbers, kHostText, kPrepared, kRowCount };

struct Record {
  double x = 1;
  double y = 2;
  double z = 3;
};

// One engine. Each work function does its thing `rounds` times; empty: not measured.
struct Engine {
  std::string name;
  std::function<void(long rounds)> rows[kRowCount];
  std::function<void()> end;
};

std::vector<Engine>& engines();

struct Registration {
  explicit Registration(Engine (*make)()) { engines().push_back(make()); }
};

// A script of 800 lines: a hundred functions of six lines. `functionEnd` is "end"
// or "}", and so on.
inline std::string longScript(const std::string& functionHead, const std::string& bodyLine,
                              const std::string& functionEnd) {
  std::string text;
  for (int i = 0; i < 100; ++i) {
    const std::string number = std::to_string(i);
    text += functionHead + number + "(a)" + (functionEnd == "}" ? " {" : "") + "\n" + bodyLine +
            "\n" + bodyLine + "\n" + bodyLine + "\n" + bodyLine + "\n" + functionEnd + "\n\n\n";
  }
  return text + "return 1\n";
}

}  // namespace embedding
