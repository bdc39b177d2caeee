// Writes the data file of messages as headers of constant tables: the texts of the catalog for the
// platform, and the explanations for users.
//
//   soca_message_table messages.json MessageTable.h ExplanationTable.h
//
// The file has the catalog's name and three lists: "messages" of the catalog, "program" for the
// messages of the program itself, and "rules". Pieces of source are lists of lines; the details and
// limits of a rule are lists of points.
#include <exception>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

namespace {

using Json = nlohmann::json;

// The text as a UTF-8 literal.
std::string quote(const std::string& text) {
  std::string literal = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') literal += '\\';
    literal += c == '\n' ? "\\n" : std::string(1, c);
  }
  return literal + '"';
}

std::string joinLines(const Json& lines) {
  std::string text;
  for (const Json& line : lines) {
    if (!text.empty()) text += '\n';
    text += line.get<std::string>();
  }
  return text;
}

void writeTexts(const Json& entry, std::initializer_list<const char*> keys, std::ostream& out) {
  for (const char* key : keys) out << "     " << quote(entry.at(key).get<std::string>()) << ",\n";
}

void writeLines(const Json& entry, std::initializer_list<const char*> keys, std::ostream& out) {
  for (const char* key : keys) out << "     " << quote(joinLines(entry.at(key))) << ",\n";
}

std::string kindOf(const Json& entry) {
  const auto kind = entry.at("kind").get<std::string>();
  for (const char* known : {"error", "finding", "reason"}) {
    if (kind == known) return "MessageKindType::" + kind;
  }
  throw std::runtime_error("unknown kind " + kind);
}

void writeCatalog(const Json& data, std::ostream& out) {
  const Json& entries = data.at("messages");
  out << "struct CatalogEntry {\n  std::string_view id;\n  std::string_view text;\n};\n\n"
      << "inline constexpr std::string_view catalogName = "
      << quote(data.at("catalog").get<std::string>()) << ";\n\n"
      << "inline constexpr std::array<CatalogEntry, " << entries.size() << "> catalogEntries{{\n";
  for (const Json& entry : entries) {
    out << "    {" << quote(entry.at("id").get<std::string>()) << ",\n     "
        << quote(entry.at("text").get<std::string>()) << "},\n";
  }
  out << "}};\n\n";
}

void writeMessages(const char* table, const Json& entries, const std::string& catalog,
                   std::ostream& out) {
  out << "inline constexpr std::array<MessageExplanation, " << entries.size() << "> " << table
      << "{{\n";
  for (const Json& entry : entries) {
    const auto id = entry.at("id").get<std::string>();
    const std::string prefix = catalog.empty() ? "" : catalog + ":";
    out << "    {" << quote(catalog) << ", " << quote(id) << ", " << quote(prefix + id)
        << ",\n     " << kindOf(entry) << ",\n";
    writeTexts(entry, {"rule", "text", "meaning", "cause", "fix"}, out);
    writeLines(entry, {"before", "after"}, out);
    out << "    },\n";
  }
  out << "}};\n\n";
}

// The names of the tables with the lists of the rule.
std::string textTableOf(const Json& rule) { return rule.at("id").get<std::string>() + "Texts"; }
std::string conversionTableOf(const Json& rule) {
  return rule.at("id").get<std::string>() + "Conversions";
}

// Writes the entries as a table of `type`, each with the texts of `keys`.
void writeTable(const char* type, const std::string& table, const Json& entries,
                std::initializer_list<const char*> keys, std::ostream& out) {
  out << "inline constexpr std::array<" << type << ", " << entries.size() << "> " << table
      << "{{\n";
  for (const Json& entry : entries) {
    out << "    {\n";
    writeTexts(entry, keys, out);
    out << "    },\n";
  }
  out << "}};\n\n";
}

void writeRules(const Json& rules, std::ostream& out) {
  for (const Json& rule : rules) {
    writeTable("ConversionText", textTableOf(rule), rule.at("texts"), {"id", "text"}, out);
    writeTable("ConversionExplanation", conversionTableOf(rule), rule.at("conversions"),
               {"from", "to"}, out);
  }
  out << "inline constexpr std::array<RuleExplanation, " << rules.size() << "> ruleTable{{\n";
  for (const Json& rule : rules) {
    out << "    {" << quote(rule.at("id").get<std::string>()) << ",\n";
    writeTexts(rule, {"name"}, out);
    out << "     " << textTableOf(rule) << ",\n";
    writeTexts(rule, {"title", "summary"}, out);
    out << "     " << conversionTableOf(rule) << ",\n";
    writeLines(rule, {"details", "limits", "before", "after"}, out);
    out << "    },\n";
  }
  out << "}};\n\n";
}

// A header in the given namespace that includes `types`.
template <class WriteTables>
void writeHeader(const char* path, const char* types, const char* nameSpace,
                 const WriteTables& writeTables) {
  std::ofstream out(path);
  out << "// Made from messages.json.\n#pragma once\n\n#include <array>\n\n#include " << types
      << "\n\nnamespace " << nameSpace << " {\n\n";
  writeTables(out);
  out << "}  // namespace " << nameSpace << "\n";
  out.close();
  if (!out) throw std::runtime_error(std::string(path) + " can't be written");
}

void generate(const char* from, const char* catalog, const char* explanations) {
  std::ifstream in(from);
  const Json data = Json::parse(in);
  writeHeader(catalog, "<string_view>", "fl::i18n",
              [&](std::ostream& out) { writeCatalog(data, out); });
  writeHeader(explanations, "\"reports/explanations/MessageExplanations.h\"", "soca",
              [&](std::ostream& out) {
                writeMessages("messageTable", data.at("messages"),
                              data.at("catalog").get<std::string>(), out);
                writeMessages("programTable", data.at("program"), "", out);
                writeRules(data.at("rules"), out);
              });
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 4) return 2;
  try {
    generate(argv[1], argv[2], argv[3]);
  } catch (const std::exception& failure) {
    std::cerr << argv[1] << ": " << failure.what() << "\n";
    return 1;
  }
  return 0;
}
