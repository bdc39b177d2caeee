#include "conversions/layout/SameTree.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "platform/analyzer/tree/NodeVisitor.h"

namespace soca {
namespace {

using ca::astapi::Node;
using lf::astapi::NodeKind;

constexpr fl::ustring_view blanks = u"\t\v\f\r ";
constexpr fl::ustring_view separators = u"\t\n\v\f\r ,";
constexpr fl::ustring_view blanksAndMark = u"\t\v\f\r \uFEFF";

// A part of a text.
struct Stretch {
  std::size_t start = 0;
  std::size_t end = 0;

  friend auto operator<=>(const Stretch&, const Stretch&) = default;
};

// Whether a token of this kind may hold what looks like a comment.
bool mayLookLikeComment(NodeKind kind) {
  return kind == NodeKind::CharLiteral || kind == NodeKind::StringLiteral ||
         kind == NodeKind::CommandWord;
}

bool isWord(NodeKind kind) {
  return mayLookLikeComment(kind) || kind == NodeKind::Identifier ||
         kind == NodeKind::NumberLiteral;
}

// Where the parts of the old text are in the new one.
class Moves {
 public:
  explicit Moves(const std::vector<LineBreak>& breaks) {
    std::size_t inserted = 0;
    std::size_t deleted = 0;
    for (const LineBreak& each : breaks) {
      inserted += each.text.size();
      deleted += each.length;
      moves_.emplace_back(each.offset + each.length, inserted - deleted);
    }
  }

  std::size_t operator()(std::size_t position) const {
    const auto next = std::ranges::upper_bound(moves_, position, {}, &Move::first);
    // The distance may be negative: then it wraps around.
    return next == moves_.begin() ? position : position + std::prev(next)->second;
  }

  // An empty part stays empty.
  Stretch operator()(const Stretch& part) const {
    const std::size_t start = (*this)(part.start);
    return {start, part.end == part.start ? start : (*this)(part.end - 1) + 1};
  }

 private:
  using Move = std::pair<std::size_t, std::size_t>;
  std::vector<Move> moves_;
};

// The nodes of a tree, in the order of a walk.
class NodeLister : public ca::astapi::Visitor<NodeLister, lf::astapi::Const> {
 public:
  struct Listed {
    NodeKind kind;
    Stretch part;

    bool operator==(const Listed& other) const = default;
  };

  explicit NodeLister(const ca::AnalysisResult& analysis) : text_(analysis.sourceTextView()) {
    (*this)(analysis.getRootNode());
  }

  bool enter(const Node& node) {
    nodes_.push_back({node.kind, {node.position, endOf(node)}});
    return true;
  }

  const std::vector<Listed>& nodes() const { return nodes_; }

 private:
  // A clause ends after the separators of its last statement, which line breaks may replace.
  std::size_t endOf(const Node& node) const {
    std::size_t end = std::size_t{node.lastPosition} + 1;
    while (end > node.position && separators.find(text_[end - 1]) != fl::ustring_view::npos) {
      --end;
    }
    return end;
  }

  fl::ustring_view text_;
  std::vector<Listed> nodes_;
};

using Nodes = std::vector<NodeLister::Listed>;

enum class CommentType { ofLine, ofBlock, ofContinuation };

struct Comment {
  CommentType type;
  Stretch part;

  bool operator==(const Comment& other) const = default;
};

// Finds the comments of a text outside of its literals and the words of its commands.
class CommentFinder {
 public:
  CommentFinder(fl::ustring_view text, const Nodes& nodes) : text_(text) {
    for (const auto& [kind, part] : nodes) {
      if (mayLookLikeComment(kind)) literals_.push_back(part);
    }
    std::ranges::sort(literals_);
  }

  std::vector<Comment> find() {
    std::size_t position = 0;
    for (const Stretch& literal : literals_) {
      findIn({position, literal.start});
      position = literal.end;
    }
    findIn({position, text_.size()});
    return std::move(comments_);
  }

 private:
  void findIn(const Stretch& part) {
    const fl::ustring_view text = text_.substr(0, part.end);
    std::size_t position = part.start;
    while ((position = text.find_first_of(u"%.", position)) < part.end) {
      if (text_[position] == u'%') {
        position = addComment(position);
      } else if (text_.substr(position).starts_with(u"...")) {
        position = add(CommentType::ofContinuation, {position, endOfLine(position)});
      } else {
        ++position;
      }
    }
  }

  std::size_t addComment(std::size_t start) {
    if (!isAlone(start, u"%{")) return add(CommentType::ofLine, {start, endOfLine(start)});
    std::size_t depth = 1;
    std::size_t line = endOfLine(start);
    while (depth > 0 && line < text_.size()) {
      const std::size_t first = text_.find_first_not_of(blanks, line + 1);
      if (isAlone(first, u"%{")) ++depth;
      if (isAlone(first, u"%}")) --depth;
      line = endOfLine(line + 1);
    }
    return add(CommentType::ofBlock, {start, line});
  }

  std::size_t add(CommentType type, const Stretch& part) {
    comments_.push_back({type, part});
    return part.end;
  }

  std::size_t endOfLine(std::size_t position) const {
    return std::min(text_.find(u'\n', position), text_.size());
  }

  // Whether the line of the position has only this mark, which begins there.
  bool isAlone(std::size_t position, fl::ustring_view mark) const {
    if (position >= text_.size() || !text_.substr(position).starts_with(mark)) return false;
    const std::size_t before = text_.substr(0, position).rfind(u'\n');
    const std::size_t line = before == fl::ustring_view::npos ? 0 : before + 1;
    const std::size_t first = text_.find_first_not_of(line == 0 ? blanksAndMark : blanks, line);
    const std::size_t next = text_.find_first_not_of(blanks, position + mark.size());
    return first == position && (next == fl::ustring_view::npos || text_[next] == u'\n');
  }

  fl::ustring_view text_;
  std::vector<Stretch> literals_;
  std::vector<Comment> comments_;
};

}  // namespace

bool haveSameTree(const ca::AnalysisResult& before, const ca::AnalysisResult& after,
                  const std::vector<LineBreak>& breaks) {
  if (after.hasSyntaxError()) return false;
  const Moves moves(breaks);
  const fl::ustring_view oldText = before.sourceTextView();
  const fl::ustring_view newText = after.sourceTextView();
  const auto haveSameText = [&](const Stretch& left, const Stretch& right) {
    return oldText.substr(left.start, left.end - left.start) ==
           newText.substr(right.start, right.end - right.start);
  };
  const NodeLister oldNodes(before);
  const NodeLister newNodes(after);
  const auto areSameNodes = [&](const auto& left, const auto& right) {
    return left.kind == right.kind && moves(left.part) == right.part &&
           (!isWord(left.kind) || haveSameText(left.part, right.part));
  };
  if (!std::ranges::equal(oldNodes.nodes(), newNodes.nodes(), areSameNodes)) return false;
  return std::ranges::equal(CommentFinder(oldText, oldNodes.nodes()).find(),
                            CommentFinder(newText, newNodes.nodes()).find(),
                            [&](const Comment& left, const Comment& right) {
                              return left.type == right.type && moves(left.part) == right.part &&
                                     haveSameText(left.part, right.part);
                            });
}

}  // namespace soca
