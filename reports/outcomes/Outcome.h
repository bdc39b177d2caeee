// The results for the classes of an update.
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

// A part of one line of the current file. All are one-based, columns count UTF-16 code units, and
// `endColumn` is the one after it. Line 0 is an unknown place.
struct LinePlace {
  std::uint64_t line = 0;
  std::uint64_t column = 0;
  std::uint64_t endColumn = 0;
};

// Another place that belongs to a finding.
struct RelatedPlace : LinePlace {
  std::string text;
};

// One message of the service, at the name of the member that it concerns.
struct Finding : LinePlace {
  // The short id; empty if it is not known.
  std::string id;
  std::string text;
  // The arguments for the placeholders of the text.
  std::vector<std::string> arguments;
  // In the order of the file.
  std::vector<RelatedPlace> related;
};

// A class that could not be updated, or was skipped.
struct Failure {
  // The class of the call, also when a superclass failed.
  std::string className;
  // A full message id, or one of the program's own.
  std::string id;
  std::string message;
  // The class name or path that the message is about.
  std::string argument;
  // For a class that is no System object, the contents of its file.
  FileVerdict::Type file = FileVerdict::Type::holdsClass;
  // The syntax errors of the file concerned.
  std::vector<ca::Diagnostic> diagnostics;
  // The same in the form for users, with the source lines.
  std::string excerpt;
  // Further details, one sentence each.
  std::vector<std::string> hints;
};

// Facts about a file besides its text.
struct FileBytes {
  // The checksum, in hexadecimal digits.
  std::string sha256;
  fl::EncodingType encoding = fl::EncodingType::utf8;
  bool hasByteOrderMark = false;
};

struct ClassOutcome {
  std::string className;
  std::string file;
  // The result of the service, and whether the text differs.
  bool updated = false;
  bool changed = false;
  // The text of the service.
  std::string text;
  std::vector<Finding> findings;
  std::vector<std::string> hints;
  // The reason why the program refuses the new text; empty if it does not.
  std::string refusal;
  // The reason why `--write` would refuse it, if it is known in a dry run.
  std::string writeRefusal;
  // Only for a text that differs and is not refused.
  std::string diff;
  // The output for the class on standard output.
  std::string data;
  // For the same texts: the file's new bytes, and the stamp of the file from which they were
  // computed.
  std::string newBytes;
  fl::filesystem::FileStamp stamp;
  FileEdits edits;
  std::vector<Conversion> conversions;
  // Of the current file, only if edits are requested.
  std::optional<FileBytes> bytes;
  // The number of edits of each rule family.
  PerFamily<std::size_t> editCounts;
  // Whether an update of the new text would change it again.
  bool changesAgain = false;
  // The new names of methods that the update renames, and the methods that it deletes.
  std::vector<std::string> gainedMethods;
  std::vector<std::string> deletedMethods;

  bool isRefused() const { return !refusal.empty(); }
  // Drops the fields that are only for a text that is not refused.
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

// The result for one target.
struct TargetOutcome {
  std::vector<ClassOutcome> classes;
  std::vector<Failure> failures;
  // A class in a named folder that is no System object.
  std::optional<Failure> skipped;
  // Whether the target is a file without a class.
  bool hasNoClass = false;
};

}  // namespace soca::cli
