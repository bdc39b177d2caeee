#include "model/AnalyzedClass.h"

namespace soca {

fl::ustring AnalyzedClass::getSourceText() const {
  return analysis->getSubtreeText(*analysis->getRootNode());
}

fl::ustring_view AnalyzedClass::sourceTextView() const {
  return analysis->nodeTextView(*analysis->getRootNode());
}

}  // namespace soca
