#include "platform/paths/FileView.h"

#include <atomic>
#include <utility>

namespace fl::filesystem {
namespace {

thread_local std::uint64_t inForce = 0;

std::uint64_t nextNumber() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace

FileView::FileView() : number_(nextNumber()) {}

FileView::Scope::Scope(const FileView& view) : outer_(std::exchange(inForce, view.number_)) {}

FileView::Scope::~Scope() { inForce = outer_; }

FileView::CallScope::CallScope() : outer_(inForce) {
  if (inForce == 0) inForce = nextNumber();
}

FileView::CallScope::~CallScope() { inForce = outer_; }

std::uint64_t FileView::current() { return inForce; }

}  // namespace fl::filesystem
