#include "lua/stdlib/patterns/text_search.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "lua/value/metered_work.h"

namespace tarvel::lua::internal {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t kPieceOfText = 256;  // bytes that are compared at once
constexpr std::size_t kCandidatesPerStep = 4;

// Bytes from the most common ones on, in texts of many kinds. All others are rarer.
constexpr auto kCommonness = [] {
  std::array<std::uint8_t, 256> commonness{};
  constexpr auto kCommon = " etaoinsrhld\0cu0123456789mfpgwyb.,-_\n\"=/()vk:;<>'"sv;
  for (std::size_t i = 0; i < kCommon.size(); ++i)
    commonness[static_cast<unsigned char>(kCommon[i])] =
        static_cast<std::uint8_t>(kCommon.size() - i);
  return commonness;
}();

// The place of a byte of the text that is likely to be rare: few places have to be compared then.
std::size_t placeOfRareByte(std::string_view text) noexcept {
  const auto isRarer = [](char a, char b) {
    return kCommonness[static_cast<unsigned char>(a)] < kCommonness[static_cast<unsigned char>(b)];
  };
  return static_cast<std::size_t>(std::min_element(text.begin(), text.end(), isRarer) -
                                  text.begin());
}

// Compares at one place after the other, which can take the product of both lengths.
class SupervisedSearch {
 public:
  SupervisedSearch(WorkMeter& meter, std::string_view text, Site site)
      : meter_(meter), text_(text), site_(site) {}

  // Returns the end if the text is nowhere.
  const char* find(const char* next, const char* end) {
    const std::size_t rare = placeOfRareByte(text_);
    const char* const last = end - (text_.size() - 1) + rare;  // behind the last byte to look at
    for (next += rare; (next = findByte(meter_, next, last, text_[rare], site_)) != last; ++next) {
      if (startsAt(next - rare)) return next - rare;
      if (++candidates_ % kCandidatesPerStep == 0) meter_.step(site_);
    }
    return end;
  }

 private:
  bool startsAt(const char* place) {
    for (std::size_t offset = 0; offset < text_.size();) {
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

// Comparing at all places can take the product of both lengths. So after some that were in vain the
// search of the C library goes on, which is linear, but slower where there are few such places: a
// short text changes over only where they are dense.
const char* findTextIn(std::string_view subject, std::string_view text) noexcept {
  constexpr std::ptrdiff_t kMostInVain = 32;
  constexpr std::ptrdiff_t kShort = 16;  // bytes
  const char* const end = subject.data() + subject.size();
  if (text.size() > subject.size()) return end;
  const std::size_t rare = placeOfRareByte(text);
  const char* const last = end - (text.size() - 1) + rare;  // behind the last byte to look at
  const char* next = subject.data() + rare;
  std::ptrdiff_t inVain = 0;
  for (; (next = findByte(next, last, text[rare])) != last; ++next, ++inVain) {
    if (inVain >= kMostInVain &&
        (text.size() > kShort || next - subject.data() < kShort * inVain)) {
      const char* const rest = next - rare;
      const void* const found =
          memmem(rest, static_cast<std::size_t>(end - rest), text.data(), text.size());
      return found != nullptr ? static_cast<const char*>(found) : end;
    }
    if (std::memcmp(next - rare, text.data(), text.size()) == 0) return next - rare;
  }
  return end;
}

namespace {

// Where the whole search takes no longer than a few steps may, it is counted afterwards.
const char* findSupervised(WorkMeter& meter, std::string_view subject, std::string_view text,
                           Site site) {
  constexpr std::size_t kSoonSearched = 32 * kBytesPerStep;
  const char* const end = subject.data() + subject.size();
  if (subject.size() > kSoonSearched)
    return SupervisedSearch(meter, text, site).find(subject.data(), end);
  const char* const found = findTextIn(subject, text);
  meter.spend(stepsForBytes(static_cast<std::uint64_t>(found - subject.data())), site);
  return found;
}

}  // namespace

std::size_t findText(WorkMeter& meter, std::string_view subject, std::string_view text,
                     std::size_t from, Site site) {
  if (text.size() > subject.size() - from) return std::string_view::npos;
  if (text.empty()) return from;
  const char* const end = subject.data() + subject.size();
  const char* const found = meter.isSupervised()
                                ? findSupervised(meter, subject.substr(from), text, site)
                                : findTextIn(subject.substr(from), text);
  return found == end ? std::string_view::npos : static_cast<std::size_t>(found - subject.data());
}

}  // namespace tarvel::lua::internal
