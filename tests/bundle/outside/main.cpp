// Updates a class in this process: in_process CLASS_PATH_FOLDER CLASS
#include <platform/paths/PathDispatcher.h>
#include <platform/text/Conversions.h>
#include <service/UpdatePlan.h>
#include <service/UpdaterImpl.h>

#include <fstream>
#include <iostream>

int main(int, char* argv[]) {
  PathDispatcher::getDispatcher().setClassPath({argv[1]});
  const fl::ustring name = fl::i18n::to_ustring(argv[2]);
  soca::UpdaterImpl updater;
  const auto results = updater.update(name, 7, false);
  std::cout << fl::i18n::to_string(results.at(0).text);
  const bool agree = soca::planUpdate(name, 7, false).at(0).text() == results.at(0).text;
  return agree && std::ifstream(SOCA_BUNDLE).good() ? 0 : 1;
}
