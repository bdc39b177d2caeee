#include "bench/ClassWriter.h"

#include <array>

#include "bench/LineWriter.h"

namespace bench {
namespace {

constexpr std::array<std::string_view, 12> kNouns = {"Gain",    "Offset", "Window", "Rate",
                                                     "Limit",   "Level",  "Order",  "Delay",
                                                     "Carrier", "Noise",  "Target", "Scale"};
constexpr std::array<std::string_view, 6> kModes = {"Method",   "Shape",  "Scheme",
                                                    "Rounding", "Format", "Solver"};
constexpr std::array<std::string_view, 6> kSwitches = {"Enabled", "Verbose",   "Smooth",
                                                       "Limited", "Symmetric", "Cascade"};
constexpr std::array<std::string_view, 6> kValues = {"none",  "linear",   "cubic",
                                                     "exact", "adaptive", "fixed point"};

class ClassWriter : private LineWriter {
 public:
  explicit ClassWriter(const ClassShape& shape) : shape_(shape), dice_(shape.seed) {}

  std::string write() {
    writeHead();
    writeProperties();
    writePublicMethods();
    writeProtectedMethods();
    writeHelpers();
    line(0, "end");
    return take();
  }

 private:
  bool outdated() const { return shape_.form == FormType::outdated; }

  void writeHead() {
    std::string supers = shape_.base.empty() ? "velum.System" : shape_.base;
    if (outdated()) {
      supers += " & velum.system.mixin.Propagates & velum.system.mixin.CustomIcon";
    }
    line(0, "classdef {} < {}", shape_.name, supers);
    line(1, "%{}  {} of a signal, block by block", shape_.name, dice_.pick(kNouns));
    line(1, "%");
    line(1, "%   obj = {}('Name', value) sets properties by name; step(obj, x) takes one block,",
         shape_.name);
    line(1, "%   which is a matrix with one column for each channel.");
    blank();
  }

  void writeProperties() {
    mode_ = dice_.pick(kModes);
    switch_ = dice_.pick(kSwitches);
    if (outdated()) {
      writeOutdatedProperties();
    } else {
      writeCurrentProperties();
    }
    line(1, "properties");
    for (int i = 0; i < 3; ++i) {
      const std::string_view noun = dice_.pick(kNouns);
      line(2, "%{}{}  {} of channel {}", noun, i, noun, i + 1);
      line(2, "{}{} = {}.{:02};", noun, i, dice_.roll(20), dice_.roll(100));
    }
    line(1, "end");
    blank();
    line(1, "properties (Access = private)");
    line(2, "pState");
    line(2, "pCount = 0;          % blocks since the last reset");
    line(2, "pTable = [1 2 3; ...");
    line(2, "          4 5 6];");
    line(1, "end");
    blank();
  }

  void writeOutdatedProperties() {
    const std::size_t first = dice_.roll(3);
    line(1, "properties (Nontunable)");
    line(2, "%{}  How the work is done", mode_);
    line(2, "{} = '{}';", mode_, kValues[first]);
    line(1, "end");
    blank();
    line(1, "properties (Constant, Hidden)");
    line(2, "{}Set = velum.system.StringSet({{'{}', '{}', '{}'}});", mode_, kValues[first],
         kValues[first + 1], kValues[first + 3]);
    line(1, "end");
    blank();
    line(1, "properties (Logical, Nontunable)");
    line(2, "%{}  Whether it is done at all", switch_);
    line(2, "{} = {};", switch_, dice_.once(2) ? "true" : "false");
    line(1, "end");
    blank();
    line(1, "properties (PositiveInteger, Nontunable)");
    line(2, "ChannelCount = {};", 1 + dice_.roll(8));
    line(2, "BlockLength = {};", 64 << dice_.roll(5));
    line(1, "end");
    blank();
  }

  void writeCurrentProperties() {
    const std::size_t first = dice_.roll(3);
    line(1, "properties (Nontunable)");
    line(2, "%{}  How the work is done", mode_);
    line(2, "{0} (1, :) char {{velum.system.mustBeMember({0}, {{'{1}', '{2}'}})}} = '{1}';", mode_,
         kValues[first], kValues[first + 2]);
    line(2, "%{}  Whether it is done at all", switch_);
    line(2, "{} (1, 1) logical = {};", switch_, dice_.once(2) ? "true" : "false");
    line(2, "ChannelCount (1, 1) {{mustBePositive, mustBeInteger}} = {};", 1 + dice_.roll(8));
    line(2, "BlockLength (1, 1) {{mustBePositive, mustBeInteger}} = {};", 64 << dice_.roll(5));
    line(1, "end");
    blank();
  }

  void writePublicMethods() {
    line(1, "methods");
    line(2, "function obj = {}(varargin)", shape_.name);
    verbatim(3, "setProperties(obj, nargin, varargin{:});");
    line(2, "end");
    blank();
    line(2, "function n = available(obj)");
    line(3, "%available  Blocks that were taken so far");
    line(3, "n = obj.pCount;");
    line(2, "end");
    line(1, "end");
    blank();
  }

  void writeProtectedMethods() {
    line(1, "methods (Access = protected)");
    writeStep();
    line(2, "function resetImpl(obj)");
    line(3, "[obj.pState, obj.pCount] = deal(zeros(obj.BlockLength, obj.ChannelCount), 0);");
    line(2, "end");
    blank();
    if (outdated()) {
      writeQuery("isInputSizeLockedImpl", "true");
      writeQuery("isInputComplexityLockedImpl", "true");
      writeQuery("isOutputSizeLockedImpl", dice_.once(2) ? "true" : "false");
      writeSizeChange();
    } else {
      writeQuery("isInputSizeMutableImpl", "false");
    }
    line(2, "function icon = getIconImpl(obj)");
    line(3, "icon = sprintf('{}\\n%s', obj.{});", shape_.name, mode_);
    line(2, "end");
    line(1, "end");
    blank();
  }

  void writeStep() {
    line(2, "function y = stepImpl(obj, x)");
    line(3, "if ~obj.{} || isempty(x)", switch_);
    line(4, "y = x;");
    line(4, "return");
    line(3, "end");
    line(3, "switch obj.{}", mode_);
    verbatim(4, "case {'none', 'exact'}");
    line(5, "y = x - obj.pState(1:size(x, 1), :);");
    line(4, "case 'linear'");
    line(5, "y = {} * x.' + obj.pTable(end, 1:2)';", 1 + dice_.roll(9));
    line(4, "otherwise");
    line(5, "y = filter([1 -{:.2f}], 1, x);", 0.01 * static_cast<double>(dice_.roll(100)));
    line(3, "end");
    line(3, "obj.pCount = obj.pCount + 1;");
    line(2, "end");
    blank();
  }

  void writeQuery(std::string_view name, std::string_view answer) {
    line(2, "function flag = {}(~, ~)", name);
    line(3, "flag = {};", answer);
    line(2, "end");
    blank();
  }

  void writeSizeChange() {
    line(2, "function processInputSizeChangeImpl(obj, x)");
    line(3, "obj.pState = zeros(size(x), 'like', x);");
    line(2, "end");
    blank();
  }

  void writeHelpers() {
    line(1, "methods (Access = private)");
    std::size_t number = 0;
    do {
      writeHelper(++number);
    } while (size() < shape_.minimumBytes);
    line(1, "end");
  }

  void writeHelper(std::size_t number) {
    const std::string_view noun = dice_.pick(kNouns);
    line(2, "function [y, count] = update{}{}(obj, x, varargin)", noun, number);
    line(3, "% {} of the blocks, in the order in which they came", noun);
    line(3, "count = 0;");
    line(3, "y = zeros(size(x));");
    line(3, "for k = 1:{}:size(x, 1)", 1 + dice_.roll(3));
    line(4, "if x(k, 1) > {} && ~any(isnan(x(k, :)))", dice_.roll(100));
    line(5, "y(k, :) = {} * x(k, :) + (1 - {:.2f}) .* obj.pState(k, :);", 1 + dice_.roll(5),
         0.01 * static_cast<double>(dice_.roll(100)));
    line(5, "count = count + 1;");
    line(4, "elseif strcmp(obj.{}, '{}')", mode_, dice_.pick(kValues));
    line(5, "continue");
    line(4, "end");
    line(3, "end");
    verbatim(3, "names = cellfun(@(c) upper(c), {'left', 'right'; 'up', 'down'}, varargin{:});");
    line(3, "if nargout > 1, fprintf('%s: %d\\n', names{{1, end}}, count); end");
    line(2, "end");
    blank();
  }

  const ClassShape& shape_;
  Dice dice_;
  // Words that the text uses repeatedly.
  std::string_view mode_;
  std::string_view switch_;
};

}  // namespace

std::string writeClass(const ClassShape& shape) { return ClassWriter(shape).write(); }

}  // namespace bench
