#include "lua/stdlib/files/file_reading.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "lua/lua_vm_impl.h"
#include "lua/stdlib/library.h"
#include "lua/stdlib/number_text.h"
#include "lua/stdlib/text_builder.h"

namespace tarvel::lua::internal {

namespace {

bool isAtEnd(BufferedFile& file) { return file.unread().empty() && !file.readMore(); }

Value takeString(LuaVM& vm, BufferedFile& file, std::size_t length, std::size_t bytesToConsume,
                 Site site) {
  const Value text = makeText(LuaVM::Impl::of(vm).strings, file.unread().substr(0, length), site);
  file.consume(bytesToConsume);
  return text;
}

// For a line that fills the whole buffer.
Value readLongLine(LuaVM& vm, BufferedFile& file, bool keepLineFeed, Site site) {
  TextBuilder text(LuaVM::Impl::of(vm).heap, 2 * BufferedFile::kBufferBytes, site);
  do {
    const std::string_view arrived = file.unread();
    const std::size_t feed = arrived.find('\n');
    if (feed != std::string_view::npos) {
      text.append(arrived.substr(0, feed + (keepLineFeed ? 1 : 0)));
      file.consume(feed + 1);
      break;
    }
    text.append(arrived);
    file.consume(arrived.size());
  } while (file.readMore());
  return text.take();
}

void takeUnread(BufferedFile& file, TextBuilder& text) {
  text.append(file.unread());
  file.consume(file.unread().size());
}

// Reads large pieces of up to `most` bytes without a detour through the buffer, in which nothing is
// left. Returns how many bytes have been read.
std::uint64_t readStraight(WorkMeter& meter, BufferedFile& file, TextBuilder& text,
                           std::uint64_t most, Site site) {
  std::uint64_t total = 0;
  for (;;) {
    std::size_t piece = std::min<std::uint64_t>(most - total, file.estimateRest());
    if (piece < BufferedFile::kBufferBytes) return total;
    if (meter.isSupervised()) piece = BufferedFile::kBufferBytes;
    const std::size_t count = file.readInto(text.makeSpace(piece), piece);
    if (count == 0) return total;
    text.addFilled(count);
    total += count;
    meter.spend(stepsForBytes(count), site);
  }
}

}  // namespace

Value readRest(LuaVM& vm, BufferedFile& file, Site site) {
  Heap& heap = LuaVM::Impl::of(vm).heap;
  TextBuilder text(heap, file.estimateRest(), site);
  do {
    takeUnread(file, text);
    readStraight(heap.meter(), file, text, UINT64_MAX, site);
  } while (file.readMore());
  return text.take();
}

Value readLine(LuaVM& vm, BufferedFile& file, bool keepLineFeed, Site site) {
  for (;;) {
    const std::string_view arrived = file.unread();
    LuaVM::Impl::of(vm).heap.meter().step(site);  // what arrives byte by byte is looked at as often
    const std::size_t feed = arrived.find('\n');
    if (feed != std::string_view::npos) {
      return takeString(vm, file, feed + (keepLineFeed ? 1 : 0), feed + 1, site);
    }
    if (arrived.size() == BufferedFile::kBufferBytes) {
      return readLongLine(vm, file, keepLineFeed, site);
    }
    if (!file.readMore()) {
      return arrived.empty() ? Value() : takeString(vm, file, arrived.size(), arrived.size(), site);
    }
  }
}

Value readBytes(LuaVM& vm, BufferedFile& file, std::uint64_t count, Site site) {
  if (isAtEnd(file)) return Value();
  if (count <= file.unread().size()) return takeString(vm, file, count, count, site);
  Heap& heap = LuaVM::Impl::of(vm).heap;
  TextBuilder text(heap, std::min<std::uint64_t>(count, file.estimateRest()), site);
  do {
    const std::string_view piece = file.unread().substr(0, count);
    text.append(piece);
    file.consume(piece.size());
    count -= piece.size();
    if (file.unread().empty()) count -= readStraight(heap.meter(), file, text, count, site);
  } while (count > 0 && file.readMore());
  return text.take();
}

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
constexpr std::size_t kUsualNumberLength = 32;  // bytes

// Takes a number's text from a file, never more of it than can belong to the number: what follows
// is looked at in the buffer, up to three bytes ahead.
class NumberScanner {
 public:
  NumberScanner(LuaVM& vm, BufferedFile& file, Site site)
      : file_(file),
        meter_(LuaVM::Impl::of(vm).heap.meter()),
        site_(site),
        text_(LuaVM::Impl::of(vm).heap, kUsualNumberLength, site) {}

  // The text, owned, or nil.
  Value scan() {
    while (isOneOf(kWhiteSpace, 0)) {
      meter_.step(site_);
      file_.consume(1);
    }
    const std::size_t sign = isOneOf("+-", 0) ? 1 : 0;
    const std::size_t point = isOneOf(".", sign) ? 1 : 0;
    if (!isOneOf(kDigits, sign + point)) return Value();
    take(sign);
    takeDigits();
    if (isOneOf(".", 0)) take(1);
    takeDigits();
    takeExponent();
    return text_.take();
  }

 private:
  bool isOneOf(std::string_view set, std::size_t ahead) {
    while (file_.unread().size() <= ahead) {
      if (!file_.readMore()) return false;
    }
    return set.find(file_.unread()[ahead]) != std::string_view::npos;
  }

  void take(std::size_t count) {
    text_.append(file_.unread().substr(0, count));
    file_.consume(count);
  }

  void takeDigits() {
    while (isOneOf(kDigits, 0)) {
      take(std::min(file_.unread().find_first_not_of(kDigits), file_.unread().size()));
    }
  }

  void takeExponent() {
    if (!isOneOf("eE", 0)) return;
    const std::size_t sign = isOneOf("+-", 1) ? 1 : 0;
    if (!isOneOf(kDigits, 1 + sign)) return;
    take(1 + sign);
    takeDigits();
  }

  BufferedFile& file_;
  WorkMeter& meter_;
  Site site_;
  TextBuilder text_;
};

// The length of the number that the text starts with, by the scanner's rules; 0 where it may go on
// behind the text, or there is none.
std::size_t lengthOfNumber(std::string_view text) noexcept {
  std::size_t next = 0;
  const auto skipAny = [&](std::string_view set) {
    const bool found = next < text.size() && set.find(text[next]) != std::string_view::npos;
    if (found) ++next;
    return found;
  };
  const auto skipDigits = [&] {
    const std::size_t start = next;
    while (next < text.size() && text[next] >= '0' && text[next] <= '9') ++next;
    return next > start;
  };
  skipAny("+-");
  const bool hasDigits = skipDigits();
  if (!(skipAny(".") && skipDigits()) && !hasDigits) return 0;
  std::size_t end = next;
  if (skipAny("eE")) {
    skipAny("+-");
    if (skipDigits()) end = next;
  }
  return next < text.size() ? end : 0;
}

// Numbers that the buffer holds wholly, of the usual kind, need no text of their own. Nil, and
// nothing taken, where the scanner has to look.
Value readBufferedNumber(BufferedFile& file, WorkMeter& meter, Site site) {
  while (!file.unread().empty() && kWhiteSpace.find(file.unread()[0]) != std::string_view::npos) {
    meter.step(site);
    file.consume(1);
  }
  const std::string_view text = file.unread().substr(0, lengthOfNumber(file.unread()));
  const std::string_view unsignedText = text.substr(text.starts_with('+') ? 1 : 0);
  Value number;
  if (text.size() > kUsualNumberLength || !readPlainNumber(unsignedText, number)) return Value();
  file.consume(text.size());
  meter.spend(stepsForNumberText(text.size()), site);
  return number;
}

}  // namespace

Value readNumber(LuaVM& vm, BufferedFile& file, Site site) {
  const Value number = readBufferedNumber(file, LuaVM::Impl::of(vm).heap.meter(), site);
  if (!number.isNil()) return number;
  const OwnedValue text(NumberScanner(vm, file, site).scan());
  return baseToNumber(vm, ValueSpan(&text.get(), 1), site);
}

}  // namespace tarvel::lua::internal
