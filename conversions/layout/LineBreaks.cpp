#include "conversions/layout/LineBreaks.h"

#include <algorithm>
#include <deque>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <map>
#include <unordered_map>
#include <utility>

#include "model/AnalyzerPositions.h"
#include "platform/analyzer/tree/NodeVisitor.h"

namespace soca {
namespace {

using ca::astapi::Node;
using lf::astapi::NodeKind;

constexpr std::size_t none = std::numeric_limits<std::size_t>::max();
constexpr fl::ustring_view endKeyword = u"end";

constexpr bool isBlank(char16_t c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\v' || c == u'\f';
}

// What begins a line once the lines are laid apart.
struct Item {
  // Of its first character.
  std::uint32_t position = 0;
  // The indices of the item that it is a part of, and of the one before it in the same list.
  std::size_t parent = 0;
  std::size_t previous = none;
  // Whether it is indented like its parent: a clause or an `end`.
  bool isAligned = false;
};

// The lines of a text.
class Lines {
 public:
  explicit Lines(const ca::AnalysisResult* analysis)
      : analysis_(*analysis), text_(analysis->sourceTextView()) {}

  std::uint32_t lineOf(std::uint32_t position) const {
    return static_cast<std::uint32_t>(makePosition(analysis_, position, false).line);
  }

  // The first of the blanks before the position.
  std::size_t blanksBefore(std::size_t position) const {
    while (position > 0 && isBlank(text_[position - 1])) --position;
    return position;
  }

  // The same with a comma before the blanks, which the line end replaces, unless it is one of
  // several separators or begins the line.
  std::size_t separatorBefore(std::size_t position) const {
    const std::size_t start = blanksBefore(position);
    if (start == 0 || text_[start - 1] != u',') return start;
    const std::size_t comma = blanksBefore(start - 1);
    const bool isAlone = comma > 0 && text_[comma - 1] != u'\n' && text_[comma - 1] != u',' &&
                         text_[comma - 1] != u';';
    return isAlone ? comma : start;
  }

  bool isFirstOnLine(std::uint32_t position) const {
    const std::size_t start = blanksBefore(position);
    return start == 0 || text_[start - 1] == u'\n' || (start == 1 && text_[0] == u'\uFEFF');
  }

  fl::ustring_view indentOf(std::uint32_t line) const {
    std::size_t start = analysis_.lineStart(line);
    if (start == 0 && text_.starts_with(u'\uFEFF')) ++start;
    std::size_t end = start;
    while (end < text_.size() && isBlank(text_[end])) ++end;
    return text_.substr(start, end - start);
  }

  // That of the line, or if it is the last one, of the line before it.
  fl::ustring_view lineEndOf(std::uint32_t line) const {
    std::size_t end = text_.find(u'\n', analysis_.lineStart(line));
    if (end == fl::ustring_view::npos) end = text_.rfind(u'\n');
    const bool hasReturn = end != fl::ustring_view::npos && end > 0 && text_[end - 1] == u'\r';
    return hasReturn ? u"\r\n" : u"\n";
  }

 private:
  const ca::AnalysisResult& analysis_;
  fl::ustring_view text_;
};

// How much deeper the parts of a block are indented than the block, by the places of such parts.
class IndentSamples {
 public:
  void add(std::uint32_t position, fl::ustring_view unit) { samples_.emplace(position, unit); }

  // That of the nearest block; of two as near, the one before the position.
  fl::ustring_view nearestTo(std::uint32_t position) const {
    if (samples_.empty()) return u"    ";
    const auto after = samples_.lower_bound(position);
    if (after == samples_.begin()) return after->second;
    const auto before = std::prev(after);
    const bool isAfterNearer =
        after != samples_.end() && after->first - position < position - before->first;
    return isAfterNearer ? after->second : before->second;
  }

  bool empty() const { return samples_.empty(); }

 private:
  std::map<std::uint32_t, fl::ustring_view> samples_;
};

// Collects the items of the tree: each after its parent, and after the one before it in its list.
class ItemFinder : public ca::astapi::Visitor<ItemFinder, lf::astapi::Const> {
 public:
  ItemFinder(const ca::AnalysisResult* analysis, const Lines* lines)
      : text_(analysis->sourceTextView()), lines_(*lines) {
    items_.push_back({});
    indices_.emplace(analysis->getRootNode(), 0);
    (*this)(analysis->getRootNode());
    if (samples_.empty() && classSample_.first) samples_.add(0, classSample_.second);
  }

  const std::vector<Item>& items() const { return items_; }
  const IndentSamples& samples() const { return samples_; }

  bool enter(const Node& node) {
    const auto index = indices_.find(&node);
    if (index == indices_.end()) return false;
    owner_ = index->second;
    return addPartsOf(node);
  }

 private:
  template <class T>
  static const T& as(const Node& node) {
    return static_cast<const T&>(node);
  }

  // Returns false if the node has no items in it.
  bool addPartsOf(const Node& node) {
    using namespace ca::astapi;
    switch (node.kind) {
      case NodeKind::SourceText:
      case NodeKind::ElseClause:
      case NodeKind::OtherwiseClause:
        addParts(as<ListNode>(node).elements);
        return true;
      case NodeKind::Classdef:
        addBlocks(as<Classdef>(node).members);
        return addEnd(node);
      case NodeKind::PropertiesBlockNode:
      case NodeKind::MethodsBlockNode:
      case NodeKind::EventsBlock:
      case NodeKind::EnumerationBlock:
        addParts(as<BlockNode>(node).members);
        return addEnd(node);
      case NodeKind::FunctionDefinition:
      case NodeKind::NestedFunction:
        addParts(as<FunctionDefinition>(node).argumentBlocks());
        addParts(as<FunctionDefinition>(node).body());
        return addEnd(node);
      case NodeKind::ArgumentsBlock:
        addParts(as<ArgumentsBlock>(node).declarations);
        return addEnd(node);
      default:
        return addPartsOfStatement(node);
    }
  }

  bool addPartsOfStatement(const Node& node) {
    using namespace ca::astapi;
    switch (node.kind) {
      case NodeKind::IfStatement:
        addParts(as<IfStatement>(node).body);
        for (const Node* clause : as<IfStatement>(node).elseIfs) addAligned(clause);
        addAligned(as<IfStatement>(node).otherwise);
        return addEnd(node);
      case NodeKind::ElseIfClause:
      case NodeKind::CaseClause:
        addParts(as<ConditionalBody>(node).body);
        return true;
      case NodeKind::WhileStatement:
        addParts(as<ConditionalBody>(node).body);
        return addEnd(node);
      case NodeKind::ForStatement:
        addParts(as<ForStatement>(node).body);
        return addEnd(node);
      case NodeKind::SwitchStatement:
        addCases(as<SwitchStatement>(node));
        return addEnd(node);
      case NodeKind::TryStatement:
        addParts(as<TryStatement>(node).body);
        addAligned(as<TryStatement>(node).catchClause);
        return addEnd(node);
      case NodeKind::CatchClause:
        addParts(as<CatchClause>(node).body);
        return true;
      case NodeKind::SpmdStatement:
        addParts(as<SpmdStatement>(node).body);
        return addEnd(node);
      default:
        return false;
    }
  }

  std::size_t add(const Node& node, std::size_t previous, bool isAligned) {
    indices_.emplace(&node, items_.size());
    items_.push_back({node.position, owner_, previous, isAligned});
    return items_.size() - 1;
  }

  template <class Parts>
  std::size_t addList(const Parts& parts) {
    std::size_t previous = none;
    for (const Node* part : parts) previous = add(*part, previous, false);
    return previous;
  }

  template <class Parts>
  void addParts(const Parts& parts) {
    addList(parts);
    const auto sample = findSample(parts);
    if (owner_ != 0 && sample.first) samples_.add(sample.first->position, sample.second);
  }

  // Blocks may be indented otherwise than what is in them.
  template <class Parts>
  void addBlocks(const Parts& parts) {
    addList(parts);
    classSample_ = findSample(parts);
  }

  void addCases(const ca::astapi::SwitchStatement& node) {
    const std::size_t last = addList(node.cases);
    if (node.otherwise != nullptr) add(*node.otherwise, last, false);
  }

  void addAligned(const Node* clause) {
    if (clause != nullptr) add(*clause, none, true);
  }

  bool addEnd(const Node& node) {
    const std::size_t end = std::size_t{node.lastPosition} + 1;
    const std::size_t start = end - endKeyword.size();
    if (end >= endKeyword.size() && text_.substr(start, endKeyword.size()) == endKeyword) {
      items_.push_back({static_cast<std::uint32_t>(start), owner_, none, true});
    }
    return true;
  }

  // The first part that begins its line, and how much deeper it is than its parent; null if there
  // is no such part.
  template <class Parts>
  std::pair<const Node*, fl::ustring_view> findSample(const Parts& parts) const {
    const std::uint32_t parent = items_[owner_].position;
    if (!lines_.isFirstOnLine(parent)) return {nullptr, {}};
    for (const Node* part : parts) {
      if (!lines_.isFirstOnLine(part->position)) continue;
      const fl::ustring_view indent = lines_.indentOf(lines_.lineOf(part->position));
      const fl::ustring_view outer = lines_.indentOf(lines_.lineOf(parent));
      if (!indent.starts_with(outer)) break;
      return {part, indent.substr(outer.size())};
    }
    return {nullptr, {}};
  }

  fl::ustring_view text_;
  const Lines& lines_;
  std::vector<Item> items_;
  std::unordered_map<const Node*, std::size_t> indices_;
  // The item of the node that is being visited.
  std::size_t owner_ = 0;
  IndentSamples samples_;
  std::pair<const Node*, fl::ustring_view> classSample_;
};

class LineBreaker {
 public:
  LineBreaker(const ca::AnalysisResult* analysis, const std::set<std::uint64_t>* broken)
      : lines_(analysis), broken_(*broken), items_(analysis, &lines_) {}

  std::vector<LineBreak> findBreaks() {
    indents_.reserve(items_.items().size());
    for (const Item& item : items_.items()) indents_.push_back(placeItem(item));
    std::ranges::sort(breaks_, {}, &LineBreak::offset);
    return std::move(breaks_);
  }

 private:
  // Adds the break before the item, if it needs one, and returns its indentation.
  fl::ustring_view placeItem(const Item& item) {
    const std::uint32_t line = lines_.lineOf(item.position);
    if (!broken_.contains(line) || lines_.isFirstOnLine(item.position)) {
      return lines_.indentOf(line);
    }
    const fl::ustring_view indent = indentOf(item);
    const std::size_t offset = lines_.separatorBefore(item.position);
    fl::ustring text(lines_.lineEndOf(line));
    breaks_.push_back({offset, item.position - offset, text.append(indent), line});
    return indent;
  }

  fl::ustring_view indentOf(const Item& item) {
    if (item.isAligned) return indents_[item.parent];
    if (item.previous != none) return indents_[item.previous];
    fl::ustring& indent = newIndents_.emplace_back(indents_[item.parent]);
    return indent.append(items_.samples().nearestTo(item.position));
  }

  Lines lines_;
  const std::set<std::uint64_t>& broken_;
  ItemFinder items_;
  // Of each item so far.
  std::vector<fl::ustring_view> indents_;
  std::deque<fl::ustring> newIndents_;
  std::vector<LineBreak> breaks_;
};

}  // namespace

std::vector<LineBreak> findLineBreaks(const ca::AnalysisResult& analysis,
                                      const std::set<std::uint64_t>& lines) {
  return LineBreaker(&analysis, &lines).findBreaks();
}

}  // namespace soca
