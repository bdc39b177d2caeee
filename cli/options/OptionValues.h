// The values of options: their readers, and the possible words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/options/Options.h"

namespace soca::cli {

// The families, and the kinds that have other names.
std::vector<std::string_view> ruleWords();
std::vector<std::string_view> riskWords();
// The default is the first.
std::vector<std::string_view> groupWords();
std::vector<std::string_view> formatWords();
std::vector<std::string_view> colorWords();

// Each sets the member of its option. All throw UsageError.
void readRules(const std::string& value, Options& options);
void readRisk(const std::string& value, Options& options);
void readGroup(const std::string& value, Options& options);
void readFormat(const std::string& value, Options& options);
void readColor(const std::string& value, Options& options);
void readJobs(const std::string& value, Options& options);
void readVerify(const std::string& value, Options& options);
void readStdinPath(const std::string& value, Options& options);
void readSelectionFile(const std::string& value, Options& options);
void readReportFile(const std::string& value, Options& options);
void readClassTable(const std::string& value, Options& options);

// Empty for a word that is not in `colorWords`.
std::optional<ColorType> parseColor(std::string_view word);

// One job for each processor that the process may use.
unsigned numberOfProcessors();

}  // namespace soca::cli
