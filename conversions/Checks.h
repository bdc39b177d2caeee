// The conditions that a new text must meet before the program shows it as a diff or writes it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "conversions/KeptText.h"
#include "platform/analyzer/AnalysisResult.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {

// What is wrong with a new text.
struct NewTextFault {
  enum class Type { syntaxError, otherMembers, lostText };
  Type type = Type::syntaxError;
  // One clause in UTF-8: "property 'Gain' would get lost".
  std::string text;
  // For other members: the names of all members that are lost, changed or added.
  std::vector<fl::ustring> members;
  // For lost text: the line of the old text near which it is, counted from 0, if that is known.
  std::optional<std::uint64_t> line;
};

// The new text must have no syntax errors; the same properties, except deleted companions of sets,
// with the same default values; the same methods, except those that the actions rename or delete;
// and all text outside the actions.
class NewTextCheck {
 public:
  // Records what the new text must have. Points into the old text of `planned`, which must outlive
  // this object; its analysis and its actions need not.
  explicit NewTextCheck(const PlannedClass& planned);

  // The first fault of the new text; empty if there is none. `updated` is its analysis.
  std::optional<NewTextFault> findFault(const ca::AnalysisResult& updated) const;

  // The text of that fault.
  std::optional<std::string> findReasonToRefuse(const ca::AnalysisResult& updated) const;

 private:
  struct Property {
    fl::ustring_view name;
    // Empty if there is none.
    fl::ustring_view defaultText;
  };

  // Calls `visit` with the name and the set of each property whose companion is deleted.
  template <class Visit>
  void visitDeletedSets(const Visit& visit) const;
  void expectProperties(const PlannedClass& planned);
  void expectMethods(const PlannedClass& planned);
  std::optional<std::string> checkProperties(const ca::AnalysisResult& updated) const;
  std::optional<std::string> checkDeleted() const;
  std::optional<std::string> checkMethods(const ca::AnalysisResult& updated) const;
  std::vector<fl::ustring> findOtherMembers(const ca::AnalysisResult& updated) const;

  std::string className_;
  // In the order of the class.
  std::vector<Property> properties_;
  std::unordered_set<fl::ustring_view> deleted_;
  std::vector<fl::ustring> methods_;
  std::optional<LostText> lostText_;
};

}  // namespace soca
