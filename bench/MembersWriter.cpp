#include "bench/MembersWriter.h"

#include <fmt/format.h>

#include <iterator>

namespace bench {
namespace {

constexpr std::string_view headOf(MemberType type) {
  switch (type) {
    case MemberType::plain:
      return "properties (Nontunable)";
    case MemberType::positiveInteger:
      return "properties (PositiveInteger)";
    case MemberType::stringSet:
      return "properties (Hidden)";
    case MemberType::method:
      return "methods (Access = protected)";
  }
  return {};
}

std::string memberText(MemberType type, std::size_t number) {
  switch (type) {
    case MemberType::plain:
      return fmt::format("        Gain{} = 0.5; % of the channel\n", number);
    case MemberType::positiveInteger:
      return fmt::format("        Count{} = {};\n", number, number + 1);
    case MemberType::stringSet:
      return fmt::format(
          "        Mode{0} = 'a';\n        Mode{0}Set = velum.system.StringSet({{'a', 'b'}});\n",
          number);
    case MemberType::method:
      return fmt::format(
          "        function flag = check{0}(obj, k)\n            flag = k > {0};\n        end\n",
          number);
  }
  return {};
}

}  // namespace

std::string writeMembers(std::string_view name, MemberType type, std::size_t count) {
  std::string text = fmt::format("classdef {} < velum.System\n    {}\n", name, headOf(type));
  for (std::size_t i = 0; i < count; ++i) text += memberText(type, i);
  text += "    end\n";
  if (type == MemberType::method) {
    text +=
        "    methods (Access = protected)\n        function flag = isInputSizeLockedImpl(~, ~)\n"
        "            flag = true;\n        end\n    end\n";
  }
  return text + "end\n";
}

}  // namespace bench
