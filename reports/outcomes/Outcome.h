// The results for the classes of an update.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conversions/ClassUpdate.h"
#include "conversions/Conversions.h"
#include "conversions/FileEdits.h"
#include "platform/analyzer/Diagnostic.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/FileText.h"
#include "reports/outcomes/FileVerdict.h"

namespace soca {

// All texts are UTF-8.

// A class that could not be updated, or was passed over.
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

// A file besides its text.
struct FileBytes {
  // The checksum, in hexadecimal digits.
  std::string sha256;
  fl::EncodingType encoding = fl::EncodingType::utf8;
  bool hasByteOrderMark = false;
};

// The second stage of an outcome: what the update makes of the class's file. Holds what was asked
// for; only an accepted text that differs has a diff, new bytes, edits and conversions.
struct FileUpdate {
  std::string diff;
  // With the stamp of the file that they were computed from.
  std::string newBytes;
  fl::filesystem::FileStamp stamp;
  FileEdits edits;
  std::vector<Conversion> conversions;
  // Of the file as it was read, only if edits are asked for.
  std::optional<FileBytes> bytes;
};

// All that is shown or written of one class.
struct ClassOutcome {
  ClassUpdate update;
  FileUpdate file;
  // The service's text.
  std::string text;
  std::vector<std::string> hints;
  // Why `--write` would not take it, where that is known in a dry run.
  std::string writeRefusal;
  // What is printed of the class on standard output.
  std::string data;

  // Drops what only an accepted text has.
  void refuse(std::string reason) {
    update.refusal = std::move(reason);
    update.methods = {};
    update.changesAgain = false;
    file.diff.clear();
    file.newBytes.clear();
  }
};

// The result for one target.
struct TargetOutcome {
  std::vector<ClassOutcome> classes;
  std::vector<Failure> failures;
  // A class below a named folder that is no System object.
  std::optional<Failure> skipped;
  // Whether the target is a file without a class.
  bool hasNoClass = false;
};

}  // namespace soca
