#include "service/ActionReport.h"

#include <sstream>
#include <utility>

#include "platform/text/Locale.h"

namespace soca {
namespace {

using Stream = std::basic_ostringstream<char16_t>;

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

}  // namespace

fl::ustring formatActionReport(const std::list<ClassActions>& entries) {
  Stream out;
  out.imbue(fl::i18n::facet::get_global_std_locale());
  for (const ClassActions& entry : entries) {
    out << u"CLASS: " << entry.analyzedClass->className << u"\n\n";
    out << u"File: " << entry.analyzedClass->metaClass->getClassFile() << u'\n';
    for (const auto& action : entry.actions) printAction(out, *action);
    out << u"\n\n";
  }
  return std::move(out).str();
}

}  // namespace soca
