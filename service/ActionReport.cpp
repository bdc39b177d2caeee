#include "service/ActionReport.h"

#include <cstddef>
#include <ostream>
#include <streambuf>

#include "platform/text/Locale.h"

namespace soca {
namespace {

using Stream = std::basic_ostream<char16_t>;

// Appends the printed text to a string, or only counts its code units.
class Sink : public std::basic_streambuf<char16_t> {
 public:
  // A null `text` only counts.
  explicit Sink(fl::ustring* text) : text_(text) {}

  std::size_t size() const { return size_; }

 protected:
  std::streamsize xsputn(const char16_t* units, std::streamsize count) override {
    const auto size = static_cast<std::size_t>(count);
    size_ += size;
    if (text_ != nullptr) text_->append(units, size);
    return count;
  }

  int_type overflow(int_type unit) override {
    if (traits_type::eq_int_type(unit, traits_type::eof())) return traits_type::not_eof(unit);
    const char16_t printed = traits_type::to_char_type(unit);
    xsputn(&printed, 1);
    return unit;
  }

 private:
  fl::ustring* text_;
  std::size_t size_ = 0;
};

void printEdit(Stream& out, const SingleAction& action, fl::ustring_view indentation) {
  out << u'\n' << indentation << u"Range: " << action.getExtent() << u'\n';
  out << indentation << u"Replacement: \"" << action.getText() << u"\"\n";
}

void printGroup(Stream& out, const ActionGroup& group) {
  out << u"\nGROUP\nRange: " << group.getExtent() << u'\n';
  for (const auto& child : group.getActions()) {
    if (!child->isGroup()) printEdit(out, static_cast<const SingleAction&>(*child), u"  ");
  }
}

void printAction(Stream& out, const Action& action) {
  if (action.isGroup()) {
    printGroup(out, static_cast<const ActionGroup&>(action));
  } else {
    printEdit(out, static_cast<const SingleAction&>(action), u"");
  }
}

// Prints the entries. `done` is called after each action is printed, and returns the next one.
template <class Done>
void printReport(Sink& sink, std::list<ClassActions>& entries, const Done& done) {
  Stream out(&sink);
  out.imbue(fl::i18n::facet::get_global_std_locale());
  for (ClassActions& entry : entries) {
    out << u"CLASS: " << entry.analyzedClass->className << u"\n\n";
    out << u"File: " << entry.analyzedClass->metaClass->getClassFile() << u'\n';
    for (auto action = entry.actions.begin(); action != entry.actions.end();) {
      printAction(out, **action);
      action = done(entry.actions, action);
    }
    out << u"\n\n";
  }
}

}  // namespace

// The report takes as much memory as the actions. Measuring it first avoids a reallocation, and
// each action is freed once it is printed.
fl::ustring formatActionReport(std::list<ClassActions> entries) {
  using Place = ActionList::iterator;
  Sink counter(nullptr);
  printReport(counter, entries, [](ActionList&, Place action) { return ++action; });
  fl::ustring text;
  text.reserve(counter.size());
  Sink sink(&text);
  printReport(sink, entries,
              [](ActionList& actions, Place action) { return actions.erase(action); });
  return text;
}

}  // namespace soca
