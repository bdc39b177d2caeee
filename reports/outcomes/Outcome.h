// The results for the classes of an update.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "conversions/ClassUpdate.h"
#include "conversions/Conversions.h"
#include "conversions/FileEdits.h"
#include "conversions/passes/PassFacts.h"
#include "conversions/superclasses/Ancestry.h"
#include "platform/analyzer/Diagnostic.h"
#include "platform/paths/SourceReader.h"
#include "platform/text/FileText.h"
#include "reports/outcomes/FileVerdict.h"
#include "reports/text/SourceHunks.h"

namespace soca {

// All texts are UTF-8.

// A class that could not be updated, was skipped, or is not known to be a System object.
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
  // For a class that is no System object as far as is known: its ancestors that were not found.
  std::vector<Ancestry::Missing> missing;
  // For an undecided class, its file, and the place of its superclass there.
  std::string path;
  LinePlace place;
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

// The second stage of an outcome: the effect of the update on the class's file. Has the parts that
// were requested; only an accepted text that differs has a diff, new bytes and edits.
struct FileUpdate {
  std::string diff;
  // With the stamp of the file from which they were computed.
  std::string newBytes;
  fl::filesystem::FileStamp stamp;
  std::vector<FileEdit> edits;
  // Also of a class without a new text.
  std::vector<SourceHunk> hunks;
  // Of the file that was read, only if edits or the identification are requested.
  std::optional<FileBytes> bytes;
};

// All results for one class.
struct ClassOutcome {
  ClassUpdate update;
  FileUpdate file;
  // The text of the service.
  std::string text;
  std::vector<std::string> hints;
  // The reason why `--write` would refuse it, if it is known in a dry run.
  std::string writeRefusal;
  // Only if they are requested.
  PassFacts facts;
  // The output for the class on standard output, and for users.
  std::string data;
  std::string notes;

  // Drops the fields that are only for an accepted text.
  void refuse(std::string reason) {
    update.refusal = std::move(reason);
    update.methods = {};
    update.changesAgain = false;
    file.diff.clear();
    update.conversions.clear();
    file.newBytes.clear();
  }
};

// A file that holds no class, with the reason.
struct PassedOverFile {
  enum class Type { isNamed, hasOtherName, isUtf16 };
  Type type = Type::isNamed;
  std::string path;
  std::string reason;
};

// The result for one target.
struct TargetOutcome {
  std::vector<ClassOutcome> classes;
  // The class whose outcomes the target shares with others, instead of `classes`; empty if none.
  std::string sharedClass;
  std::vector<Failure> failures;
  // A class in a named folder that is no System object.
  std::optional<Failure> skipped;
  // A class with old forms that is not known to be a System object, because a superclass was not
  // found.
  std::optional<Failure> undecided;
  // Whether the target is a file without a class.
  bool hasNoClass = false;
  // A file that is counted on its own.
  std::optional<PassedOverFile> passedOver;
  // Of a class without an outcome: its name, and what it has to do with others of the run.
  std::optional<std::pair<std::string, PassFacts>> bystander;
  // Of a class whose file or folder an argument names.
  DirectSuperClasses superClasses;
  // The folder of its file, if any of these was not found.
  std::string folder;

  // Sets these two for a class; `path` is that of the target, empty for a class name.
  void addSuperClasses(const std::string& className, const std::string& path) {
    if (path.empty()) return;
    superClasses = findDirectSuperClasses(className);
    if (superClasses.missing.empty()) return;
    folder = path.substr(0, std::max<std::size_t>(path.rfind('/'), 1));
  }
};

}  // namespace soca
