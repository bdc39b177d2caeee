// Makes one document of the parts of the review page, and writes it as a header of two texts in
// parts: what comes before the data of a run, and what comes after it.
//
//   soca_review_page ReviewPage.h page.html STYLE.css ... MODULE.js ...
//
// The modules become one script, in which each of their names must be unique. A policy in the
// document allows nothing but this script and these styles, by their checksums.
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include "files/writing/Digest.h"

namespace {

std::string readFile(const char* path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error(std::string(path) + " can't be read");
  return {std::istreambuf_iterator<char>(in), {}};
}

// Replaces the one occurrence of the mark.
void fill(std::string& text, std::string_view mark, const std::string& value) {
  const std::size_t at = text.find(mark);
  if (at == std::string::npos || text.find(mark, at + 1) != std::string::npos) {
    throw std::runtime_error("the page must have " + std::string(mark) + " once");
  }
  text.replace(at, mark.size(), value);
}

// The module without its imports, which may take several lines, and without the word `export`.
std::string withoutImports(const std::string& module) {
  constexpr std::string_view exportWord = "export ";
  std::string text;
  bool isInImport = false;
  for (std::size_t at = 0; at < module.size();) {
    const std::size_t end = std::min(module.find('\n', at), module.size() - 1) + 1;
    std::string_view line = std::string_view(module).substr(at, end - at);
    at = end;
    isInImport = isInImport || line.starts_with("import ");
    if (isInImport) {
      isInImport = line.find(';') == std::string_view::npos;
      continue;
    }
    if (line.starts_with(exportWord)) line.remove_prefix(exportWord.size());
    text += line;
  }
  return text;
}

std::string base64(const std::string& hexadecimal) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  std::uint32_t bits = 0;
  int count = 0;
  for (const char digit : hexadecimal) {
    bits = bits << 4U | static_cast<std::uint32_t>(std::stoi(std::string(1, digit), nullptr, 16));
    count += 4;
    if (count < 6) continue;
    count -= 6;
    text += digits[bits >> static_cast<unsigned>(count) & 63U];
  }
  if (count > 0) text += digits[bits << static_cast<unsigned>(6 - count) & 63U];
  while (text.size() % 4 != 0) text += '=';
  return text;
}

std::string sourceOf(const std::string& content) {
  return "'sha256-" + base64(soca::sha256(content)) + "'";
}

// The text as parts, with one UTF-8 literal for each line. Compilers may refuse longer literals.
std::string quote(std::string_view text) {
  constexpr std::size_t largestPart = 32'000;
  std::string literal = "{\n    \"";
  std::size_t size = 0;
  for (const char c : text) {
    // A question mark could begin a trigraph.
    if (c == '"' || c == '\\' || c == '?') literal += '\\';
    literal += c == '\n' ? "\\n\"" : std::string(1, c);
    ++size;
    if (c != '\n') continue;
    if (size > largestPart) {
      literal += ',';
      size = 0;
    }
    literal += "\n    \"";
  }
  return literal + "\"}";
}

void generate(int count, char** paths) {
  std::string page = readFile(paths[1]);
  std::string style = "\n";
  std::string script = "\n'use strict';\n";
  for (int i = 2; i < count; ++i) {
    const std::string part = readFile(paths[i]);
    if (std::string_view(paths[i]).ends_with(".css")) {
      style += part;
    } else {
      script += withoutImports(part);
    }
  }
  if (script.find("</script") != std::string::npos) {
    throw std::runtime_error("a module has the end of a script in it");
  }
  fill(page, "@STYLE_SOURCE@", sourceOf(style));
  fill(page, "@SCRIPT_SOURCE@", sourceOf(script));
  fill(page, "<style></style>", "<style>" + style + "</style>");
  fill(page, "<script></script>", "<script>" + script + "</script>");
  constexpr std::string_view dataMark = "<!-- data -->\n";
  const std::size_t data = page.find(dataMark);
  if (data == std::string::npos) throw std::runtime_error("the page has no place for data");
  std::ofstream out(paths[0]);
  out << "// Made from the files in reports/html.\n#pragma once\n\n#include <string_view>\n\n"
      << "namespace soca {\n\ninline constexpr std::string_view reviewPageStart[] = "
      << quote(std::string_view(page).substr(0, data))
      << ";\n\ninline constexpr std::string_view reviewPageEnd[] = "
      << quote(std::string_view(page).substr(data + dataMark.size()))
      << ";\n\n}  // namespace soca\n";
  out.close();
  if (!out) throw std::runtime_error(std::string(paths[0]) + " can't be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) return 2;
  try {
    generate(argc - 1, argv + 1);
  } catch (const std::exception& failure) {
    std::cerr << argv[0] << ": " << failure.what() << "\n";
    return 1;
  }
  return 0;
}
