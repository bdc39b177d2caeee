// The phases of a client's run, in addition to those of the platform.
#pragma once

#include "platform/timing/Phase.h"

namespace soca {

inline constinit fl::timing::PhaseType walkPhase("walk");
inline constinit fl::timing::PhaseType rulesPhase("rules");
inline constinit fl::timing::PhaseType checksPhase("checks");
inline constinit fl::timing::PhaseType gitPhase("git");
inline constinit fl::timing::PhaseType diffPhase("diff");
inline constinit fl::timing::PhaseType printPhase("print");
inline constinit fl::timing::PhaseType writePhase("write");

}  // namespace soca
