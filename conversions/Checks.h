// The conditions that a new text must meet before the program shows it as a diff or writes it.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// The new text must have no syntax errors; the same properties, except deleted companions of sets,
// with the same default values; the same methods, except those that the actions rename or delete;
// and all text outside the actions.
class NewTextCheck {
 public:
  // Records what the new text must have. Points into the old text of `planned`, which must outlive
  // this object; its analysis and its actions need not.
  explicit NewTextCheck(const PlannedClass& planned);

  // The reason to refuse the new text of the class; empty if there is none. `updated` is the
  // analysis of the new text.
  std::optional<std::string> findReasonToRefuse(const ca::AnalysisResult& updated) const;

 private:
  struct Property {
    fl::ustring_view name;
    // Empty if there is none.
    fl::ustring_view defaultText;
  };

  void expectProperties(const PlannedClass& planned);
  void expectMethods(const PlannedClass& planned);
  std::optional<std::string> checkProperties(const ca::AnalysisResult& updated) const;
  std::optional<std::string> checkDeleted() const;
  std::optional<std::string> checkMethods(const ca::AnalysisResult& updated) const;

  std::string className_;
  // In the order of the class.
  std::vector<Property> properties_;
  std::unordered_set<fl::ustring_view> deleted_;
  std::vector<fl::ustring> methods_;
  std::optional<std::string> lostText_;
};

}  // namespace soca
