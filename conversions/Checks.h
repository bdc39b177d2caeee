// What a new text has to satisfy before the program shows it as a diff or writes it.
#pragma once

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// The new text has to be free of syntax errors; to have the same properties, less deleted
// companions of sets, each with the default value that it had; the same methods, renamed and
// deleted as the actions say; and all text outside the actions.
class NewTextCheck {
 public:
  // Takes down what is expected of the new text. Points into the old text of `planned`, which must
  // outlive this object; its analysis and its actions need not.
  explicit NewTextCheck(const PlannedClass& planned);

  // Why the program does not take the new text of the class; nothing if it does. `updated` is the
  // analysis of the new text.
  std::optional<std::string> findReasonToRefuse(const ca::AnalysisResult& updated) const;

 private:
  struct Property {
    fl::ustring_view name;
    // Empty without one.
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
