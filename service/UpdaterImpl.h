// The service itself.
#pragma once

#include "soca/Updater.h"

namespace soca {

// Has no state: one object serves all clients.
class UpdaterImpl : public Updater {
 public:
  std::vector<UpdateResult> update(const fl::ustring& className, const UpdateMask& mask,
                                   bool includeSuperclasses) override;
  fl::ustring reportActions(const fl::ustring& className, bool includeSuperclasses) override;
  fl::ustring reportClass(const fl::ustring& className) override;
};

}  // namespace soca
