#include "lua/stdlib/patterns/text_search.h"

#include <algorithm>
#include <cstring>

#include "lua/value/metered_work.h"

namespace tarvel::lua::internal {

namespace {

constexpr std::size_t kPieceOfText = 256;  // bytes that are compared at once
constexpr std::size_t kCandidatesPerStep = 4;

// Compares at one place after the other, as std::string_view::find does, which can take the product
// of both lengths.
class SupervisedSearch {
 public:
  SupervisedSearch(WorkMeter& meter, std::string_view text, Site site)
      : meter_(meter), text_(text), site_(site) {}

  // `last` is behind the last place where the text can start. Returns it if the text is nowhere.
  const char* find(const char* next, const char* last) {
    for (; next != last; ++next) {
      next = findByte(meter_, next, last, text_[0], site_);
      if (next == last || startsHere(next)) break;
      if (++candidates_ % kCandidatesPerStep == 0) meter_.step(site_);
    }
    return next;
  }

 private:
  bool startsHere(const char* place) {
    for (std::size_t offset = 1; offset < text_.size();) {
      const std::size_t count = std::min(kPieceOfText, text_.size() - offset);
      if (std::memcmp(place + offset, text_.data() + offset, count) != 0) return false;
      meter_.spend(stepsForBytes(count), site_);
      offset += count;
    }
    return true;
  }

  WorkMeter& meter_;
  std::string_view text_;
  Site site_;
  std::size_t candidates_ = 0;
};

}  // namespace

std::size_t findText(WorkMeter& meter, std::string_view subject, std::string_view text,
                     std::size_t from, Site site) {
  if (!meter.isSupervised()) return subject.find(text, from);
  if (text.size() > subject.size() - from) return std::string_view::npos;
  if (text.empty()) return from;
  const char* const last = subject.data() + (subject.size() - text.size() + 1);
  const char* const found = SupervisedSearch(meter, text, site).find(subject.data() + from, last);
  return found == last ? std::string_view::npos : static_cast<std::size_t>(found - subject.data());
}

}  // namespace tarvel::lua::internal
