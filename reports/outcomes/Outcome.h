// What became of the classes that an update looked at.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conversions/Conversions.h"
#include "conversions/FileEdits.h"
#include "platform/analyzer/Diagnostic.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/FileText.h"
#include "reports/outcomes/FileVerdict.h"
#include "rules/RuleFamilies.h"

namespace soca::cli {

// All texts are UTF-8.

// A stretch of one line of the file as it stands. All are one-based, columns count UTF-16 code
// units, and `endColumn` is the one behind it. A line of 0 is a place that is not known.
struct LinePlace {
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  std::uint64_t endColumn = 0;
};

// Another place that belongs to a finding.
struct RelatedPlace : LinePlace {
  std::string text;
};

// One message of the service beside its edits, at the name of the member that it is about.
struct Finding : LinePlace {
  // The short id; empty if it is not known.
  std::string id;
  std::string text;
  // What fills the placeholders of the text.
  std::vector<std::string> arguments;
  // In the order of the file.
  std::vector<RelatedPlace> related;
};

// A class that could not be updated, or was passed over.
struct Failure {
  // The class that was asked for, also when a superclass failed.
  std::string className;
  // A full message id, or one of the program's own.
  std::string id;
  std::string message;
  // What the message is about: a class name or a path.
  std::string argument;
  // For what is no System object, what its file turned out to be.
  FileVerdict::Type file = FileVerdict::Type::holdsClass;
  // The syntax errors of the file in question.
  std::vector<ca::Diagnostic> diagnostics;
  // The same as people read them, with the lines in question.
  std::string excerpt;
  // What the program knows besides, one sentence each.
  std::vector<std::string> hints;
};

// What is told of a file besides its text.
struct FileBytes {
  // The checksum, in hexadecimal digits.
  std::string sha256;
  fl::EncodingType encoding = fl::EncodingType::utf8;
  bool hasByteOrderMark = false;
};

struct ClassOutcome {
  std::string className;
  std::string file;
  // The service's word, and whether the text differs.
  bool updated = false;
  bool changed = false;
  // The service's text.
  std::string text;
  std::vector<Finding> findings;
  std::vector<std::string> hints;
  // Why the program does not take the new text; empty if it does.
  std::string refusal;
  // Why `--write` would not take it, where that is known in a dry run.
  std::string writeRefusal;
  // Only for a text that differs and is not refused.
  std::string diff;
  // What is printed of the class on standard output.
  std::string data;
  // Likewise: the file's new bytes, and the stamp of the file that they were computed from.
  std::string newBytes;
  fl::filesystem::FileStamp stamp;
  FileEdits edits;
  std::vector<Conversion> conversions;
  // Of the file as it stands, only if edits are asked for.
  std::optional<FileBytes> bytes;
  // How many edits each rule family made.
  PerFamily<std::size_t> editCounts;
  // Whether an update of the new text would change it again.
  bool changesAgain = false;
  // The methods that the update brings in by another name, and those that it deletes.
  std::vector<std::string> gainedMethods;
  std::vector<std::string> deletedMethods;

  bool isRefused() const { return !refusal.empty(); }
  // Drops what there is only of a text that is not refused.
  void refuse(std::string reason) {
    refusal = std::move(reason);
    diff.clear();
    newBytes.clear();
    gainedMethods.clear();
    deletedMethods.clear();
    changesAgain = false;
  }
  // Whether the file is to be replaced.
  bool hasNewFile() const { return changed && !isRefused(); }
};

// What became of one target.
struct TargetOutcome {
  std::vector<ClassOutcome> classes;
  std::vector<Failure> failures;
  // A class below a named folder that is none of ours.
  std::optional<Failure> skipped;
  // Whether the target turned out to be a file without a class.
  bool hasNoClass = false;
};

}  // namespace soca::cli
