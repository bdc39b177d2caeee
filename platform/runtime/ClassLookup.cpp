#include <algorithm>
#include <chrono>
#include <unordered_map>
#include <utility>

#include "platform/analyzer/FileAnalysis.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/paths/SourceReader.h"
#include "platform/paths/ViewMemory.h"
#include "platform/runtime/ClassDescription.h"
#include "platform/runtime/ClassGraph.h"
#include "platform/runtime/ClassPlace.h"
#include "platform/runtime/ClassTable.h"
#include "platform/runtime/DescriptionCache.h"
#include "platform/runtime/EnvironmentClasses.h"
#include "platform/runtime/ReadClasses.h"
#include "platform/runtime/SourceDescription.h"
#include "platform/text/Conversions.h"
#include "platform/text/FileText.h"

namespace sotarn {

namespace {

using Description = std::shared_ptr<const ClassDescription>;
using fl::filesystem::FileStamp;

// The bytes that are read of a file too large to analyse: enough for the line that names its
// superclasses.
constexpr std::size_t headLength = std::size_t{1} << 20U;

DescriptionCache& cache() {
  static DescriptionCache instance;
  return instance;
}

// The beginning of a large file, cut at a line end, which is never inside a character.
std::string readHead(const std::string& path) {
  std::string head = fl::filesystem::readHeadOfFile(path, headLength);
  head.resize(std::min(head.size(), head.rfind('\n')));
  return head;
}

// The description of a class from its file.
struct ReadDescription {
  std::shared_ptr<ClassDescription> description;
  // The stamp of the file; empty if the description must not be cached under it.
  std::optional<FileStamp> stamp;
  // Of the text, if there is no stamp and reads are recorded.
  std::size_t textHash = 0;
};

ReadDescription readLargeFile(const std::string& path) {
  const std::optional<FileStamp> stamp = fl::filesystem::stampOf(path);
  auto description = describeAnalysis(ca::SourceAnalysis(fl::decodeFileText(readHead(path)).text));
  description->readPart = ReadPartType::isTooLarge;
  return {std::move(description), stamp};
}

ReadPartType readPartOf(const ca::SourceAnalysis& analysis) {
  if (analysis.isTooDeep()) return ReadPartType::isTooDeep;
  return analysis.hasSyntaxError() ? ReadPartType::hasSyntaxErrors : ReadPartType::all;
}

// Throws ReadError.
ReadDescription readDescription(const std::string& path) {
  try {
    const auto analysis = ca::analyzeFile(path);
    ReadDescription read{describeAnalysis(*analysis), {}};
    read.description->readPart = readPartOf(*analysis);
    if (analysis->file()) {
      read.stamp = analysis->file()->stamp;
    } else if (ReadClasses::current() != nullptr) {
      read.textHash = ReadClasses::hashOf(analysis->sourceTextView());
    }
    return read;
  } catch (const fl::filesystem::TooLargeError&) {
    return readLargeFile(path);
  }
}

std::int64_t nanosecondsSinceEpoch() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// Whether a file with this stamp may change again after `now` and keep the stamp, because the clock
// of a file system may have a resolution of some milliseconds.
bool isRecent(const FileStamp& stamp, std::int64_t now) {
  constexpr std::int64_t resolution = 20'000'000;  // nanoseconds
  return now - std::max(stamp.modificationTime, stamp.changeTime) < resolution;
}

// The descriptions made from this thread's overlay texts.
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
  auto description = readDescription(path).description;
  description->name = name;
  description->sourcePath = path;
  kept.keep(key, text, description);
  return description;
}

void record(const ClassDescription& description, ReadClasses::FileRecord file) {
  if (ReadClasses* classes = ReadClasses::current()) classes->add(description, std::move(file));
}

Description describeFile(const std::string& name, const ClassPlace& place) {
  const std::string& path = place.source;
  if (const auto overlay = fl::filesystem::findOverlay(path)) {
    return describeOverlay(name, path, overlay);
  }
  const std::optional<FileStamp> stamp = fl::filesystem::stampInView(path);
  // With roots inside each other, one file may belong to several classes.
  const std::string key = name + '\0' + path;
  if (stamp) {
    if (Description kept = cache().find(key, *stamp)) {
      record(*kept, {place, stamp});
      return kept;
    }
  }
  const std::int64_t readAt = nanosecondsSinceEpoch();
  auto [description, stampOfText, textHash] = readDescription(path);
  description->name = name;
  description->sourcePath = path;
  if (stampOfText && !isRecent(*stampOfText, readAt)) {
    cache().keep(key, *stampOfText, description);
  }
  record(*description, {place, stampOfText, textHash});
  return description;
}

Description describePFile(const std::string& name, const ClassPlace& place) {
  auto description = std::make_shared<ClassDescription>();
  description->name = name;
  description->origin = ClassOriginType::pFileOnly;
  record(*description, {place});
  return description;
}

// The description of the class from the class path.
Description describeOnPath(const std::string& name) {
  const std::optional<ClassPlace> place = findClassPlace(name);
  if (!place) return nullptr;
  return place->source.empty() ? describePFile(name, *place) : describeFile(name, *place);
}

// The same, looked up once by each thread for each view of the files, unless the class has an
// overlay text.
Description describeInView(std::string_view name) {
  struct Known {
    const std::vector<PathDispatcher::Root>* roots = nullptr;
    Description description;
  };
  thread_local fl::filesystem::ViewMemory<Known, 1024> memory;
  if (fl::filesystem::hasOverlayOfClass(name)) return describeOnPath(std::string(name));
  const auto* roots = &PathDispatcher::getDispatcher().roots();
  const Known* known = memory.find(name);
  if (known != nullptr && known->roots == roots) return known->description;
  const ClassGraph* graph = ClassGraph::current();
  if (graph != nullptr && graph->knowsAsMissing(name)) return nullptr;
  Description description = describeOnPath(std::string(name));
  // A separate reference count for each thread, because threads would contend for a shared one.
  if (description != nullptr) {
    description = Description(std::make_shared<Description>(description), description.get());
  }
  memory.keep(name, {roots, description});
  return description;
}

template <class T>
void replaceIfGiven(T& value, const std::optional<T>& given) {
  if (given) value = *given;
}

// The description with the values of the class table in place of its own.
Description withTable(std::string_view name, const Description& known,
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
  const ClassTable* table = currentClassTable();
  ClassTable::const_iterator entry;
  const bool isInTable = table != nullptr && (entry = table->find(name)) != table->end();
  Description known = describeEnvironmentClass(name);
  if (known == nullptr) known = describeInView(name);
  return isInTable ? withTable(name, known, entry->second) : known;
}

}  // namespace sotarn
