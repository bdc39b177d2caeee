#include "platform/analyzer/tree/NodeKind.h"

#include <ostream>

namespace lf::astapi {
namespace {

const char* nameOf(NodeKind kind) {
  switch (kind) {
#define LF_ASTAPI_NAME(number, name) \
  case NodeKind::name:               \
    return #name;
    LF_ASTAPI_NODE_KINDS(LF_ASTAPI_NAME)
#undef LF_ASTAPI_NAME
  }
  return nullptr;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, NodeKind kind) {
  if (const char* name = nameOf(kind)) return out << name;
  return out << static_cast<unsigned>(kind);
}

}  // namespace lf::astapi
