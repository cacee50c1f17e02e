#pragma once

// The scripts of the engines for JavaScript.

namespace embedding {

inline constexpr const char* kJavaScript = R"(
function nothing() {}
function add(a, b) { return a + b }
function move(r) { r.x = r.y; return r }
function numbers(n) { for (var i = 1; i <= n; ++i) addNumbers(i, 2) }
var text = "abcdefghijklmnopqrstuvwxyz0123456789"
function texts(n) { for (var i = 1; i <= n; ++i) passText(text) }
)";

}  // namespace embedding
