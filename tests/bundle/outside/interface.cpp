#include <soca/Updater.h>

bool isUpdated(soca::Updater& updater) { return updater.update(u"a.B", 7, false).at(0).updated; }
