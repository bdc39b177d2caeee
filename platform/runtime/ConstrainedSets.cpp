#include "platform/runtime/ConstrainedSets.h"

#include <array>
#include <string_view>
#include <unordered_set>

#include "platform/text/Conversions.h"

namespace sotarn {

namespace {

using ca::astapi::Node;
using lf::astapi::NodeKind;

constexpr fl::ustring_view companionSuffix = u"Set";

// The set classes; the kind of each is its index plus one.
constexpr std::array<fl::ustring_view, 6> setClasses{u"StringSet",         u"StringSetGF",
                                                     u"MessageCatalogSet", u"DynamicStringSet",
                                                     u"DataTypeSet",       u"RoundingMethodSet"};

// The part of a chain of names before its last name, which must be `name`; null if it is not.
const Node* chainInFrontOf(const Node* chain, fl::ustring_view name) {
  if (chain == nullptr || chain->kind != NodeKind::FieldReference) return nullptr;
  const auto* field = static_cast<const ca::astapi::PairNode*>(chain);
  const auto* word = static_cast<const ca::astapi::Identifier*>(field->right);
  return word->text.view() == name ? field->left : nullptr;
}

bool isName(const Node* node, fl::ustring_view name) {
  return node != nullptr && node->kind == NodeKind::Identifier &&
         static_cast<const ca::astapi::Identifier*>(node)->text.view() == name;
}

// The kind of the set class that the callee names; 0 if it names none.
std::uint32_t kindOfSetClass(const Node& callee) {
  for (std::uint32_t index = 0; index < setClasses.size(); ++index) {
    const Node* package = chainInFrontOf(&callee, setClasses[index]);
    if (const Node* outer = chainInFrontOf(package, u"internal")) package = outer;
    if (isName(chainInFrontOf(package, u"system"), u"velum")) return index + 1;
  }
  return 0;
}

// The value of a literal.
fl::ustring unquote(fl::ustring_view literal) {
  fl::ustring value;
  const char16_t quote = literal.front();
  for (std::size_t at = 1; at + 1 < literal.size(); ++at) {
    value.push_back(literal[at]);
    if (literal[at] == quote) ++at;
  }
  return value;
}

void addLiteral(const Node& literal, ConstrainedSetInfo& info) {
  const auto& text = static_cast<const ca::astapi::CharLiteral&>(literal).text;
  if (info.values.empty()) info.valueType = literal.kind == NodeKind::StringLiteral ? 2 : 1;
  info.values.push_back(unquote(text.view()));
}

// Adds the literals among the nodes and in the lists among them.
void addLiterals(const lf::astapi::NodeList<Node>& nodes, ConstrainedSetInfo& info) {
  for (const Node* node : nodes) {
    switch (node->kind) {
      case NodeKind::CharLiteral:
      case NodeKind::StringLiteral:
        addLiteral(*node, info);
        break;
      case NodeKind::CellLiteral:
      case NodeKind::MatrixLiteral:
      case NodeKind::ListRow:
        addLiterals(static_cast<const ca::astapi::ListNode*>(node)->elements, info);
        break;
      default:
        break;
    }
  }
}

ConstrainedSetInfo readSet(const ca::astapi::PropertyNode& companion) {
  ConstrainedSetInfo info;
  const Node* value = companion.defaultValue;
  if (value == nullptr || value->kind != NodeKind::CallOrIndex) return info;
  const auto* call = static_cast<const ca::astapi::CallOrIndex*>(value);
  info.kind = kindOfSetClass(*call->base);
  if (info.kind == 0) return info;
  info.valueType = 1;
  info.setPropertyName = companion.name->text.getText();
  addLiterals(call->arguments, info);
  return info;
}

}  // namespace

void describeConstrainedSets(const ca::astapi::Classdef& classdef, ClassDescription& description) {
  std::unordered_set<fl::ustring_view> seen;
  for (const auto* block : classdef.getPropertiesBlocks()) {
    for (const Node* member : block->members) {
      const auto& companion = static_cast<const ca::astapi::PropertyNode&>(*member);
      fl::ustring_view name = companion.name->text.view();
      if (!name.ends_with(companionSuffix) || !seen.insert(name).second) continue;
      name.remove_suffix(companionSuffix.size());
      const auto target = description.properties.find(fl::i18n::to_string(name));
      if (target == description.properties.end()) continue;
      ConstrainedSetInfo info = readSet(companion);
      if (info.kind != 0)
        target->second.constrainedSet = std::make_shared<const ConstrainedSetInfo>(std::move(info));
    }
  }
}

}  // namespace sotarn
