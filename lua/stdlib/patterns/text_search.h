#pragma once

#include <cstddef>
#include <string_view>

#include "lua/value/errors.h"
#include "lua/value/work_meter.h"

namespace tarvel::lua::internal {

// Where `text`, which is not empty, stands first in the subject; the subject's end if nowhere.
// Takes time in proportion to the lengths, whatever they are made of.
const char* findTextIn(std::string_view subject, std::string_view text) noexcept;

// Where `text` stands first in what follows the offset `from` (at most the subject's length); npos
// if nowhere. Counts the bytes that are looked at.
std::size_t findText(WorkMeter& meter, std::string_view subject, std::string_view text,
                     std::size_t from, Site site);

}  // namespace tarvel::lua::internal
