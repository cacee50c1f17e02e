#pragma once

#include <cstdio>
#include <string>
#include <string_view>

// Reading and writing whole files. Every failure is a std::runtime_error whose text ends with the
// path, or std::bad_alloc where there is no memory, also for opening a file; what is larger than a
// gigabyte, such as a device without end, fails with "file is too large: ".

namespace tarvel::lua {

// A script's text, from anything that can be read to its end. What cannot be opened, and a
// directory, fails with `openFailure` and the path, anything later with "failed to read file: ".
std::string readScriptFile(const std::string& path, const char* openFailure);

// A container's bytes. Throws "failed to open file: ", "failed to size file: " or "failed to read
// file: ".
std::string readContainerFile(const std::string& path);

// The next line, without its line feed; the last one may lack it. False at the end of the input
// and after an error, which ends a dialogue as its end does. Throws std::runtime_error "line is too
// long" beyond a gigabyte.
bool readScriptLine(std::FILE* input, std::string& line);

// Throws "failed to open file for writing: ", or "failed to write file: ", which leaves no regular
// file behind.
void writeContainerFile(const std::string& path, std::string_view bytes);

}  // namespace tarvel::lua
