#pragma once

namespace tarvel::lua::internal {

// While it lives, public values are released at once, also if this thread is already in the middle
// of releasing one. For the end of a function handle: it can run a destructor of the host, and with
// that any script, whose values must not wait until all of this is over.
class ReleaseScope {
 public:
  ReleaseScope() noexcept;
  ~ReleaseScope();
  ReleaseScope(const ReleaseScope&) = delete;
  ReleaseScope& operator=(const ReleaseScope&) = delete;

 private:
  void* queueOutside_;
};

}  // namespace tarvel::lua::internal
