#include "reports/SecondReport.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace soca {
namespace {

class JoinedReport : public UpdateReport {
 public:
  JoinedReport(std::unique_ptr<UpdateReport> first, std::unique_ptr<UpdateReport> second)
      : first_(std::move(first)), second_(std::move(second)) {}

  // The size of the first one's data, a colon, and the data of both.
  std::string dataOf(const ClassOutcome& outcome) const override {
    const std::string first = first_->dataOf(outcome);
    const std::string second = second_->dataOf(outcome);
    if (first.empty() && second.empty()) return {};
    return fmt::format("{}:{}{}", first.size(), first, second);
  }

  void printData(const std::string& data) override {
    const std::size_t colon = data.find(':');
    std::size_t size = 0;
    std::from_chars(data.data(), data.data() + colon, size);
    if (size > 0) first_->printData(data.substr(colon + 1, size));
    const std::size_t second = colon + 1 + size;
    if (second < data.size()) second_->printData(data.substr(second));
  }

  std::string notesOf(const ClassOutcome& outcome) const override {
    return first_->notesOf(outcome);
  }
  void printNotes(const std::string& notes) override { first_->printNotes(notes); }

  void addFailure(const Failure& failure) override {
    first_->addFailure(failure);
    second_->addFailure(failure);
  }
  void addSkipped(const Failure& failure) override {
    first_->addSkipped(failure);
    second_->addSkipped(failure);
  }
  void addUndecided(const Failure& failure) override {
    first_->addUndecided(failure);
    second_->addUndecided(failure);
  }
  void addNotFound(const std::string& id, const std::string& reason) override {
    first_->addNotFound(id, reason);
    second_->addNotFound(id, reason);
  }
  void addSuggestion(const SuggestedRoots& suggestion, const std::string& text) override {
    first_->addSuggestion(suggestion, text);
    second_->addSuggestion(suggestion, text);
  }
  void finish(ExitCodeType exitCode) override {
    first_->finish(exitCode);
    second_->finish(exitCode);
  }

 private:
  std::unique_ptr<UpdateReport> first_;
  std::unique_ptr<UpdateReport> second_;
};

}  // namespace

std::unique_ptr<UpdateReport> joinReports(std::unique_ptr<UpdateReport> first,
                                          std::unique_ptr<UpdateReport> second) {
  return std::make_unique<JoinedReport>(std::move(first), std::move(second));
}

OutcomeNeeds joinNeeds(const OutcomeNeeds& first, const OutcomeNeeds& second) {
  return {.diff = first.diff || second.diff,
          .text = first.text || second.text,
          .hints = first.hints || second.hints,
          .newBytes = first.newBytes || second.newBytes,
          .edits = first.edits || second.edits,
          .conversions = first.conversions || second.conversions,
          .editsOfEach = first.editsOfEach || second.editsOfEach,
          .places = std::max(first.places, second.places),
          .facts = first.facts || second.facts,
          .identity = first.identity || second.identity,
          .hunks = first.hunks || second.hunks};
}

}  // namespace soca
