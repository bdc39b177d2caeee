#include "fuzz/HostileInputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace soca::fuzz {
namespace {

namespace fs = std::filesystem;

void write(const fs::path& path, std::string_view text) {
  fs::create_directories(path.parent_path());
  std::ofstream file(path, std::ios::binary);
  file.write(text.data(), static_cast<std::streamsize>(text.size()));
  if (!file.flush()) throw std::runtime_error("can't write " + path.string());
}

// Appends `unit` with each `#` in it replaced by the number.
void appendUnit(std::string_view unit, std::size_t number, std::string& text) {
  for (const char character : unit) {
    if (character == '#') {
      text += std::to_string(number);
    } else {
      text += character;
    }
  }
}

// `opening` as often as it fits, numbered, then `middle`, and `closing` as often.
std::string fill(std::string_view opening, std::string_view middle, std::string_view closing,
                 std::size_t bytes) {
  std::string text;
  text.reserve(bytes + opening.size() + middle.size() + 64);
  std::size_t times = 0;
  while (text.size() + (times + 1) * closing.size() < bytes) appendUnit(opening, times++, text);
  text += middle;
  while (times-- > 0) text += closing;
  return text;
}

// --- one class ---

// A class file: `head`, `opening` as often as it fits, `middle`, `closing` as often, `tail`.
struct ClassRow {
  const char* name;
  std::string_view head;
  std::string_view opening;
  std::string_view middle = "";
  std::string_view closing = "";
  std::string_view tail = "";
  // As in HostileInput.
  std::size_t promisedBytes = 10'000'000;
};

// The frames of the text in most rows.
#define CLASS "classdef C < velum.System\n"
#define FUNCTION CLASS "methods (Access = protected)\nfunction stepImpl(obj)\n"
#define FUNCTION_END "\nend\nend\nend\n"
#define METHODS CLASS "methods (Access = protected)\n"
#define PROPERTIES CLASS "properties\n"
#define BLOCK_END "\nend\nend\n"

const ClassRow classRows[] = {
    // Nesting, always deeper than the analyzer's limit.
    {"deep parentheses", FUNCTION "x = ", "(", "1", ")", FUNCTION_END},
    {"deep lists", FUNCTION "x = ", "[", "1", "]", FUNCTION_END},
    {"deep cells", FUNCTION "x = ", "{", "1", "}", FUNCTION_END},
    {"deep calls", FUNCTION "x = ", "f(", "1", ")", FUNCTION_END},
    {"deep indexes", FUNCTION "x = ", "f{", "1", "}", FUNCTION_END},
    {"deep fields", FUNCTION "x = ", "a.(", "b", ")", FUNCTION_END},
    {"deep signs", FUNCTION "x = ", "-", "1", "", FUNCTION_END},
    {"deep negations", FUNCTION "x = ", "~", "1", "", FUNCTION_END},
    {"deep powers", FUNCTION "x = ", "2^-", "1", "", FUNCTION_END},
    {"deep anonymous functions", FUNCTION "x = ", "@()", "1", "", FUNCTION_END},
    {"deep ifs", FUNCTION, "if x\n", "y", "end\n", FUNCTION_END},
    {"deep elses", FUNCTION, "if x,else\n", "y", "end\n", FUNCTION_END},
    {"deep loops", FUNCTION, "for k=1\n", "y", "end\n", FUNCTION_END},
    {"deep whiles", FUNCTION, "while x\n", "y", "end\n", FUNCTION_END},
    {"deep switches", FUNCTION, "switch x\ncase 1\n", "y", "end\n", FUNCTION_END},
    {"deep tries", FUNCTION, "try\n", "y", "end\n", FUNCTION_END},
    {"deep spmd", FUNCTION, "spmd\n", "y", "end\n", FUNCTION_END},
    {"deep functions", FUNCTION, "function f\n", "y", "end\n", FUNCTION_END},
    {"deep block comments", CLASS, "%{\n", "", "%}\n", "end\n"},
    {"open block comments", CLASS, "%{\n"},
    {"open parentheses", PROPERTIES "A = 1\nB = ", "("},
    {"deep attribute values", "classdef (A = ", "(", "1", ")", ") C < velum.System\nend\n"},
    {"deep set values", PROPERTIES "A = 'a'\nASet = velum.system.StringSet(", "{", "'a'", "}",
     ")" BLOCK_END},

    // One line or construct that fills the file.
    {"a long sum", FUNCTION "x = 1", "+1", "", "", FUNCTION_END},
    {"mixed operators", FUNCTION "x = a", "+b*c^d:e<f&g|h&&i||a", "", "", FUNCTION_END},
    {"a chain of fields", FUNCTION "x = a", ".b", "", "", FUNCTION_END},
    {"a chain of calls", FUNCTION "x = f", "(1)", "", "", FUNCTION_END},
    {"a chain of indexes", FUNCTION "x = f", "{1}", "", "", FUNCTION_END},
    {"a chain of transposes", FUNCTION "x = y", "'", "", "", FUNCTION_END},
    {"a chain of powers", FUNCTION "x = y", "^2", "", "", FUNCTION_END},
    {"a chain of colons", FUNCTION "x = 1", ":1", "", "", FUNCTION_END},
    {"a long row", FUNCTION "x = [", "1 ", "]", "", FUNCTION_END},
    {"a long column", FUNCTION "x = [", "1\n", "]", "", FUNCTION_END},
    {"many arguments", FUNCTION "f(1", ",x", ")", "", FUNCTION_END},
    {"a long number", FUNCTION "x = ", "9", "", "", FUNCTION_END},
    {"a long fraction", FUNCTION "x = 0.", "1", "", "", FUNCTION_END},
    {"a long hexadecimal", FUNCTION "x = 0x", "F", "", "", FUNCTION_END},
    {"a long literal", FUNCTION "x = '", "a''", "'", "", FUNCTION_END},
    {"an open literal", FUNCTION "x = '", "a", "", "", FUNCTION_END},
    {"a long string", FUNCTION "x = \"", "a", "\"", "", FUNCTION_END},
    {"a long identifier", FUNCTION, "a", " = 1", "", FUNCTION_END},
    {"a long command", FUNCTION "hold ", "on ", "", "", FUNCTION_END},
    {"a long comment", CLASS "%", "a", "\n", "", "end\n"},
    {"blanks", CLASS, " ", "", "", "end\n"},
    {"empty lines", CLASS, "\n", "", "", "end\n"},
    {"carriage returns", CLASS, "\r", "", "", "end\n"},
    {"continuations", FUNCTION "x = 1", " ...\n", "", "", FUNCTION_END},
    {"elseif", FUNCTION "if a\n", "elseif b\n", "end", "", FUNCTION_END},
    {"case", FUNCTION "switch a\n", "case b\n", "end", "", FUNCTION_END},
    {"a long class name", "classdef ", "C", " < velum.System\nend\n"},
    {"a long superclass name", "classdef C < velum.System & ", "a.", "b\nend\n"},
    {"a long property name", PROPERTIES, "a", " = 1", "", BLOCK_END},
    {"a long method name", METHODS "function ", "a", "\nend", "", BLOCK_END},

    // A large number of one construct.
    {"many properties", PROPERTIES, "a#=1\n", "", "", BLOCK_END},
    {"many properties to convert", CLASS "properties (Logical)\n", "a#=1\n", "", "", BLOCK_END},
    {"many integers to convert", CLASS "properties (PositiveInteger)\n", "a#=1\n", "", "",
     BLOCK_END},
    {"many properties on a line", PROPERTIES, "a#=1;", "", "", BLOCK_END},
    {"one property repeated", CLASS "properties (Logical)\n", "a=1\n", "", "", BLOCK_END,
     5'000'000},
    {"many sets", PROPERTIES, "a#='x'\na#Set=velum.system.StringSet({'x'})\n", "", "", BLOCK_END},
    {"many sets that are used", PROPERTIES "z=[obj.a0Set,obj.aSet]\n",
     "a#='x'\na#Set=velum.system.StringSet({'x'})\n", "", "", BLOCK_END},
    {"many sets without a direct call", PROPERTIES, "a#='x'\na#Set=velum.system.StringSet(y)\n", "",
     "", BLOCK_END},
    {"properties of one set", PROPERTIES "aSet=velum.system.StringSet({'x'})\n", "a='x'\n", "", "",
     BLOCK_END, 4'000'000},
    {"many values of a set", PROPERTIES "a='x'\naSet=velum.system.StringSet({'x'", ",'v#'", "})",
     "", BLOCK_END},
    {"many attributes", CLASS "properties (Logical", ",A#", ")\nA = 1", "", BLOCK_END},
    {"one attribute repeated", CLASS "properties (Hidden", ",Logical", ")\nA = 1", "", BLOCK_END},
    {"many validators", CLASS "properties (PositiveInteger)\nA {a", ",v#", "} = 1", "", BLOCK_END},
    {"many empty blocks", CLASS, "properties\nend\n", "", "", "end\n"},
    {"many blocks to join", CLASS, "properties (Logical)\na#=1\nend\n", "", "", "end\n"},
    {"many blocks of methods", CLASS, "methods\nend\n", "", "", "end\n"},
    {"many enumeration members", CLASS "enumeration\n", "a#(1)\n", "", "", BLOCK_END},
    {"many methods", METHODS, "function a#,end\n", "", "", BLOCK_END},
    {"many signatures", METHODS, "a#(x)\n", "", "", BLOCK_END},
    {"one method repeated", METHODS, "function f=isInputSizeLockedImpl(~,~)\nf=x;\nend\n", "", "",
     BLOCK_END},
    {"many returns in a method", METHODS "function f=isInputSizeLockedImpl(~,~)\n", "return\n",
     "end", "", BLOCK_END},
    {"many references to a method",
     METHODS "function f=isInputSizeLockedImpl(~,~)\nf=x;\nend\nfunction g\n",
     "isInputSizeLockedImpl()\n", "end", "", BLOCK_END},
    {"many getters", METHODS, "function x=get.a#Set(o),end\n", "", "",
     "\nend\nproperties\nA=1\nASet=velum.system.StringSet({'a'})" BLOCK_END},
    {"many functions after the class", CLASS "end\n", "function a#,end\n"},
    {"many superclasses", "classdef C < velum.system.mixin.CustomIcon", " & a#.B", "\nend\n"},
    {"many mixins", "classdef C < velum.System", " & velum.system.mixin.Propagates", "\nend\n"},
    {"one superclass repeated", "classdef C < velum.System", " & a.B", "\nend\n"},
    {"many inputs", METHODS "function f(a", ",a#", ")\nend", "", BLOCK_END},
    {"many outputs", METHODS "function [a", ",a#", "]=f\nend", "", BLOCK_END},

    // No valid class.
    {"closing parentheses", CLASS, ")\n"},
    {"wrong characters", CLASS, "$"},
    {"wrong members", PROPERTIES, "1\n"},
    {"unfinished statements", FUNCTION, "x=\n"},
    {"NUL characters", CLASS, std::string_view("\0", 1)},
    {"bytes that are no UTF-8", CLASS "%", "\xFF\xFE"},
    {"open functions", "", "function f\n"},
    {"class after class", "", CLASS "end\n"},
    {"extra ends", CLASS, "end\n"},
    {"quotes", FUNCTION, "'\"\n"},
};

HostileInput inputOf(const ClassRow& row) {
  return {row.name,
          {"update", "C"},
          [&row](const fs::path& folder, std::size_t bytes) {
            std::string text(row.head);
            text += fill(row.opening, row.middle, row.closing, bytes);
            write(folder / "C.vlm", text += row.tail);
          },
          row.promisedBytes};
}

// --- class paths ---

// A class D<number> that derives from `base`.
std::string derivedClass(std::size_t number, const std::string& base) {
  return fmt::format("classdef D{} < {}\nproperties (Logical)\nA = 1\nend\nend\n", number, base);
}

std::string numberedClass(std::size_t number) { return fmt::format("D{}", number); }

// A chain of 10,000 classes at full size; `last` is the superclass of the last one, `others` are
// further superclasses of the others.
void makeChain(const fs::path& folder, std::size_t bytes, const std::string& last,
               const std::string& others = "") {
  const std::size_t length = bytes / 1000;
  for (std::size_t number = 0; number < length; ++number) {
    const bool isLast = number + 1 == length;
    write(folder / (numberedClass(number) + ".vlm"),
          derivedClass(number, isLast ? last : numberedClass(number + 1) + others));
  }
}

// 100,000 files at full size, in folders of a hundred.
void makeManyFiles(const fs::path& folder, std::size_t bytes) {
  for (std::size_t number = 0; number < bytes / 100; ++number) {
    const fs::path package = folder / fmt::format("p{}", number / 100);
    write(package / (numberedClass(number) + ".vlm"), derivedClass(number, "velum.System"));
  }
}

void makeLinks(const fs::path& folder, std::size_t /*bytes*/) {
  write(folder / "sub" / "C.vlm", derivedClass(0, "velum.System"));
  fs::create_symlink("Loop.vlm", folder / "Loop.vlm");
  fs::create_symlink("Two.vlm", folder / "One.vlm");
  fs::create_symlink("One.vlm", folder / "Two.vlm");
  fs::create_directory_symlink(".", folder / "self");
  fs::create_directory_symlink("..", folder / "sub" / "up");
}

// A class with superclasses from a class table only, with names that are no identifiers.
void makeWrongNames(const fs::path& folder, std::size_t bytes) {
  write(folder / "C.vlm", CLASS "end\n");
  std::string names;
  for (std::size_t number = 0; names.size() < bytes; ++number) {
    names += fmt::format(
        R"("../../a{0}","/etc/passwd{0}","a\u0000b{0}","%2e%2e%2fa{0}","a..b{0}",)", number);
  }
  write(folder / "table.json",
        R"({"classes": {"C": {"superclasses": [)" + names + R"("velum.System"]}}})");
}

void makeTable(const fs::path& folder, std::string_view head, std::string_view unit,
               std::string_view tail, std::size_t bytes) {
  write(folder / "C.vlm", CLASS "end\n");
  write(folder / "table.json", std::string(head) + fill(unit, "", "", bytes) + std::string(tail));
}

std::string longName(std::size_t bytes) {
  return std::string(std::min<std::size_t>(bytes, 100'000), 'a');
}

std::vector<HostileInput> pathInputs() {
  const std::vector<std::string> withTable = {"update", "--class-table", "table.json", "C"};
  return {
      {"many files", {"update"}, makeManyFiles},
      {"a chain of superclasses, one class",
       {"update", "D0"},
       [](const fs::path& folder, std::size_t bytes) { makeChain(folder, bytes, "velum.System"); }},
      {"a chain of superclasses, with -s",
       {"update", "-s", "D0"},
       [](const fs::path& folder, std::size_t bytes) { makeChain(folder, bytes, "velum.System"); }},
      {"a chain of superclasses, each class",
       {"update"},
       [](const fs::path& folder, std::size_t bytes) { makeChain(folder, bytes, "velum.System"); }},
      {"a cycle of superclasses, each class",
       {"update"},
       [](const fs::path& folder, std::size_t bytes) { makeChain(folder, bytes, "D0"); }},
      {"a cycle of System objects, each class",
       {"update"},
       [](const fs::path& folder, std::size_t bytes) {
         makeChain(folder, bytes, "D0 & velum.System");
       }},
      {"a chain of mixins, each class",
       {"update"},
       [](const fs::path& folder, std::size_t bytes) {
         makeChain(folder, bytes, "velum.System", " & velum.system.mixin.CustomIcon");
       }},
      {"a chain to an unknown class, each class",
       {"update"},
       [](const fs::path& folder, std::size_t bytes) { makeChain(folder, bytes, "nowhere.D"); }},
      {"a class report of a chain",
       {"classes", "D0"},
       [](const fs::path& folder, std::size_t bytes) { makeChain(folder, bytes, "velum.System"); }},
      {"links that loop", {"update"}, makeLinks},
      {"links that loop, followed", {"update", "--no-ignore"}, makeLinks},
      {"a class table with invalid names", withTable, makeWrongNames},
      {"arguments that are no class names",
       {"update", "../../etc/passwd", "a%2fb", "a..b", "%00", "/", "", longName(100'000)},
       makeLinks},
      {"a deeply nested class table", withTable,
       [](const fs::path& folder, std::size_t bytes) { makeTable(folder, "", "[", "", bytes); }},
      {"a class table of many classes", withTable,
       [](const fs::path& folder, std::size_t bytes) {
         makeTable(folder, R"({"classes": {)", R"("a#": {"superclasses": ["a"]},)", R"("b": {}}})",
                   bytes);
       }},
      {"a class table of many properties", withTable,
       [](const fs::path& folder, std::size_t bytes) {
         makeTable(folder, R"({"classes": {"C": {"properties": {)", R"("a#": {"abstract": true},)",
                   R"("b": {}}}}})", bytes);
       }},
      {"a file over the limit",
       {"update", "C"},
       [](const fs::path& folder, std::size_t /*bytes*/) {
         write(folder / "C.vlm", CLASS "end\n");
         fs::resize_file(folder / "C.vlm", (std::uintmax_t{256} << 20U) + 1);
       }},
      {"a syntax check of wrong lines",
       {"check", "C.vlm"},
       [](const fs::path& folder, std::size_t bytes) {
         write(folder / "C.vlm", CLASS + fill(")\n", "", "", bytes));
       }},
      {"a syntax check of one wrong line",
       {"check", "C.vlm"},
       [](const fs::path& folder, std::size_t bytes) {
         write(folder / "C.vlm", CLASS + fill("$", "", "", bytes));
       }},
      {"JSON of many edits",
       {"update", "--format", "json", "C"},
       [](const fs::path& folder, std::size_t bytes) {
         write(folder / "C.vlm",
               CLASS "properties (Logical)\n" + fill("a#=1\n", "", "", bytes) + BLOCK_END);
       }},
      {"an action report of many edits",
       {"actions", "C"},
       [](const fs::path& folder, std::size_t bytes) {
         write(folder / "C.vlm",
               CLASS "properties (Logical)\n" + fill("a#=1\n", "", "", bytes) + BLOCK_END);
       }},
      {"a class report of many properties",
       {"classes", "C"},
       [](const fs::path& folder, std::size_t bytes) {
         write(folder / "C.vlm", PROPERTIES + fill("a#=1\n", "", "", bytes) + BLOCK_END);
       }},
  };
}

}  // namespace

std::vector<HostileInput> hostileInputs() {
  std::vector<HostileInput> inputs;
  for (const ClassRow& row : classRows) inputs.push_back(inputOf(row));
  std::ranges::move(pathInputs(), std::back_inserter(inputs));
  return inputs;
}

}  // namespace soca::fuzz
