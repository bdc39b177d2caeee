#include "conversions/OldForms.h"

#include <algorithm>
#include <array>
#include <exception>
#include <optional>
#include <utility>

#include "model/BlockParts.h"
#include "model/PropertiesBlock.h"
#include "platform/analyzer/FileAnalysis.h"
#include "platform/analyzer/tree/Ast.h"
#include "platform/paths/Overlay.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/Conversions.h"
#include "platform/text/UString.h"
#include "service/UpdatePlan.h"

namespace soca {
namespace {

// The text of the file with another list of superclasses; empty if the class has none.
std::optional<fl::ustring> textOfSystemObject(const std::string& path) {
  const auto analysis = ca::analyzeFile(path);
  const auto classdef = analysis->getClassdef();
  if (classdef == nullptr || classdef->superClasses.empty()) return std::nullopt;
  fl::ustring text(analysis->sourceTextView());
  const std::size_t start = classdef->superClasses.front()->position;
  const std::size_t end = classdef->superClasses.back()->lastPosition + std::size_t{1};
  text.replace(start, end - start, u"velum.System");
  return text;
}

bool hasOldAttribute(const ca::astapi::PropertiesBlockNode& block) {
  using enum PropertyAttributeType;
  return std::ranges::any_of(std::array{Logical, PositiveInteger}, [&](auto attribute) {
    return blockParts::hasLogicalAttribute(block, propertyAttributeName(attribute));
  });
}

bool hasOldForm(const PlannedClass& planned) {
  const auto isEmptyAndOld = [](const auto* block) {
    return block->members.empty() && hasOldAttribute(*block);
  };
  const auto isOldForm = [&](const RuleConversion& conversion) {
    return conversion.kind != ConversionKindType::emptyBlock ||
           std::ranges::any_of(planned.analysis->getClassdef()->getPropertiesBlocks(),
                               isEmptyAndOld);
  };
  return !planned.result.messages.empty() || std::ranges::any_of(planned.conversions, isOldForm);
}

}  // namespace

bool hasOldForms(const std::string& className, const std::string& path, UpdateMask rules) {
  try {
    auto text = textOfSystemObject(path);
    if (!text) return false;
    const fl::filesystem::OverlayScope overlay(path, std::move(*text));
    const auto planned = planActions(fl::i18n::to_ustring(className), rules, false);
    return std::ranges::any_of(planned, hasOldForm);
  } catch (const fl::filesystem::ReadError&) {
    throw;
  } catch (const std::exception&) {
    // Whatever is wrong with the file.
    return false;
  }
}

}  // namespace soca
