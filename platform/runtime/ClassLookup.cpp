#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <unordered_map>
#include <utility>

#include "platform/analyzer/Analyzer.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/ClassPathItem.h"
#include "platform/paths/NativePath.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/ClassTable.h"
#include "platform/runtime/CurrentClassTable.h"
#include "platform/runtime/DescriptionCache.h"
#include "platform/runtime/EnvironmentClasses.h"
#include "platform/runtime/SourceDescription.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace sotarn {

namespace {

using Description = std::shared_ptr<const ClassDescription>;
using fl::filesystem::FileStamp;

// What is read of a file that is too large to be analysed: enough for the line that names its
// superclasses.
constexpr std::size_t headLength = std::size_t{1} << 20U;

DescriptionCache& cache() {
  static DescriptionCache instance;
  return instance;
}

std::string readHead(const std::string& path) {
  std::string head(headLength, '\0');
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return {};
  const ssize_t length = read(file, head.data(), head.size());
  close(file);
  head.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
  // Not in the middle of a character.
  head.resize(std::min(head.size(), head.rfind('\n')));
  return head;
}

// What the file says of its class; nothing if it can't be read at all.
std::shared_ptr<ClassDescription> readDescription(const std::string& path) {
  try {
    return describeAnalysis(*ca::analyzeFile(path));
  } catch (const ca::InvalidAnalysisException&) {
    const std::optional<FileStamp> stamp = fl::filesystem::stampOf(path);
    if (!stamp || stamp->size <= ca::maximumFileSize) return std::make_shared<ClassDescription>();
    return describeAnalysis(ca::SourceAnalysis(fl::decodeFileText(readHead(path)).text));
  }
}

std::int64_t nanosecondsSinceEpoch() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// Whether a file with this stamp may change once more at time `now` and keep the stamp: the clock
// of a file system may stand still for some milliseconds.
bool isRecent(const FileStamp& stamp, std::int64_t now) {
  constexpr std::int64_t resolution = 20'000'000;  // nanoseconds
  return now - std::max(stamp.modificationTime, stamp.changeTime) < resolution;
}

// What was read from the texts that lie over files on this thread.
class OverlayDescriptions {
 public:
  Description find(const std::string& key, const std::shared_ptr<const fl::ustring>& text) const {
    const auto entry = entries_.find(key);
    if (entry == entries_.end() || entry->second.text.lock() != text) return nullptr;
    return entry->second.description;
  }

  void keep(const std::string& key, const std::shared_ptr<const fl::ustring>& text,
            Description description) {
    if (entries_.size() >= mostEntries) entries_.clear();
    entries_.insert_or_assign(key, Entry{text, std::move(description)});
  }

 private:
  static constexpr std::size_t mostEntries = 256;

  struct Entry {
    std::weak_ptr<const fl::ustring> text;
    Description description;
  };

  std::unordered_map<std::string, Entry> entries_;
};

Description describeOverlay(const std::string& name, const std::string& path,
                            const std::shared_ptr<const fl::ustring>& text) {
  thread_local OverlayDescriptions kept;
  const std::string key = name + '\0' + path;
  if (Description known = kept.find(key, text)) return known;
  auto description = readDescription(path);
  description->name = name;
  description->sourcePath = path;
  kept.keep(key, text, description);
  return description;
}

Description describeFile(const std::string& name, const std::string& path) {
  if (const auto overlay = fl::filesystem::findOverlay(path)) {
    return describeOverlay(name, path, overlay);
  }
  const std::optional<FileStamp> stamp = fl::filesystem::stampOf(path);
  // One file may be the file of several classes, under roots inside each other.
  const std::string key = name + '\0' + path;
  if (stamp) {
    if (Description kept = cache().find(key, *stamp)) return kept;
  }
  const std::int64_t readAt = nanosecondsSinceEpoch();
  auto description = readDescription(path);
  description->name = name;
  description->sourcePath = path;
  // The stamp is older than the reading; a file that changed in between has another one now.
  if (stamp && !isRecent(*stamp, readAt) && fl::filesystem::stampOf(path) == stamp) {
    cache().keep(key, *stamp, description);
  }
  return description;
}

bool isPFile(const ClassPathItem& item) { return item.file.ends_with(u".p"); }

std::string nativePath(const ClassPathItem& item, const fl::ustring& file) {
  const foundation::storage::vfs::CanonicalAbsoluteIRI location(item.base, item.folder + file);
  return fl::i18n::to_string(
      fl::filesystem::detail::make_native_form(location.getPath(), /*decode=*/true));
}

Description describePFile(const std::string& name, const ClassPathItem& item) {
  const fl::ustring source = item.file.substr(0, item.file.size() - 1) + u"vlm";
  const std::string path = nativePath(item, source);
  if (fl::filesystem::findOverlay(path) != nullptr || fl::filesystem::stampOf(path)) {
    return describeFile(name, path);
  }
  auto description = std::make_shared<ClassDescription>();
  description->name = name;
  description->origin = ClassOriginType::pFileOnly;
  return description;
}

// What the environment or the class path knows of the class.
Description describeKnown(const std::string& name) {
  if (Description environment = describeEnvironmentClass(name)) return environment;
  const auto item =
      omGetMatchingClassPathItem(PathDispatcher::getDispatcher(), fl::i18n::to_ustring(name));
  if (item == nullptr) return nullptr;
  return isPFile(*item) ? describePFile(name, *item)
                        : describeFile(name, nativePath(*item, item->file));
}

template <class T>
void replaceIfGiven(T& value, const std::optional<T>& given) {
  if (given) value = *given;
}

// The description with what the class table says in place of it.
Description withTable(const std::string& name, const Description& known,
                      const ClassTableEntry& entry) {
  auto description = known != nullptr ? std::make_shared<ClassDescription>(*known)
                                      : std::make_shared<ClassDescription>();
  if (known == nullptr) description->origin = ClassOriginType::classTable;
  description->name = name;
  replaceIfGiven(description->superClasses, entry.superClasses);
  replaceIfGiven(description->strictDefaults, entry.strictDefaults);
  replaceIfGiven(description->methods, entry.methods);
  for (const auto& [property, given] : entry.properties) {
    PropertyDescription& target = description->properties[property];
    if (given.isAbstract) target.isAbstract = given.isAbstract;
    if (given.isDependent) target.isDependent = given.isDependent;
    if (given.constrainedSet) target.constrainedSet = given.constrainedSet;
  }
  return description;
}

}  // namespace

Description describeClass(std::string_view name) {
  if (name.empty()) return nullptr;
  const std::string className(name);
  Description known = describeKnown(className);
  const std::shared_ptr<const ClassTable> table = currentClassTable();
  if (table == nullptr) return known;
  const auto entry = table->find(className);
  return entry == table->end() ? known : withTable(className, known, entry->second);
}

}  // namespace sotarn
