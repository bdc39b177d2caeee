#include "reports/formats/ClassTableText.h"

#include <nlohmann/json.hpp>

#include "platform/runtime/ClassTable.h"

namespace soca {

std::string formatClassTable(const std::vector<std::string>& classNames) {
  const nlohmann::json entry = {{"superclasses", {sotarn::superClassToFillIn}}};
  std::string text;
  for (const std::string& name : classNames) {
    text.append(text.empty() ? "\n  " : ",\n  ");
    text.append(nlohmann::json(name).dump()).append(": ").append(entry.dump());
  }
  return "{\"classes\": {" + text + "}}\n";
}

}  // namespace soca
