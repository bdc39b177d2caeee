// The answers of the service, to compare them with what the program prints.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "platform/failure/Exception.h"
#include "platform/paths/PathDispatcher.h"
#include "platform/runtime/ClassTable.h"
#include "platform/text/Conversions.h"
#include "service/UpdaterImpl.h"

namespace soca::testing {

// During its life this process has the class path and the class table.
class ServiceHost {
 public:
  // An empty `classTable` is none.
  ServiceHost(const std::string& root, const std::string& classTable) {
    PathDispatcher::getDispatcher().setClassPath({root});
    if (classTable.empty()) return;
    sotarn::setClassTable(
        std::make_shared<const sotarn::ClassTable>(sotarn::parseClassTable(classTable)));
  }
  ~ServiceHost() { sotarn::setClassTable(nullptr); }
  ServiceHost(const ServiceHost&) = delete;
  ServiceHost& operator=(const ServiceHost&) = delete;
};

// One call of the service as the program prints it with `--format json`: the results in the order
// of the service, or one error. Throws what is no message of the service.
inline nlohmann::json answerOfService(const std::string& className, UpdateMask mask,
                                      bool includeSuperclasses) {
  using fl::i18n::to_string;
  nlohmann::json answer = {{"results", nlohmann::json::array()},
                           {"errors", nlohmann::json::array()}};
  try {
    UpdaterImpl updater;
    for (const UpdateResult& result :
         updater.update(fl::i18n::to_ustring(className), mask, includeSuperclasses)) {
      auto messages = nlohmann::json::array();
      for (const fl::ustring& message : result.messages) messages.push_back(to_string(message));
      answer["results"].push_back({{"class", to_string(result.className)},
                                   {"file", to_string(result.fileName)},
                                   {"updated", result.updated},
                                   {"text", to_string(result.text)},
                                   {"messages", std::move(messages)}});
    }
  } catch (const foundation::core::except::IMsgIDException& failure) {
    answer["errors"].push_back({{"class", className},
                                {"id", failure.GetID()},
                                {"message", to_string(failure.GetUnicodeMessageTxt())}});
  }
  return answer;
}

// Compares the lists of a document of the program with those of the service, whose keys are the
// ones that count.
inline void expectSameAnswers(const nlohmann::json& printed, const nlohmann::json& answer) {
  for (const auto& [list, entries] : answer.items()) {
    ASSERT_EQ(printed.at(list).size(), entries.size()) << list;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      for (const auto& [key, value] : entries[i].items()) {
        EXPECT_EQ(printed.at(list)[i].at(key), value) << list << ' ' << i << ' ' << key;
      }
    }
  }
}

}  // namespace soca::testing
