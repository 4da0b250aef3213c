#include "emulator/face.h"

namespace emulator {

Face::Face(const ControllerOptions& options, Logging logging)
    : ownController(options, *this, logging == Logging::On ? &log : nullptr)
{}

Face::~Face() = default;

void Face::setPaused(bool paused)
{
    ownController.setPaused(paused);
    if (!paused)
        readInput();
}

} // namespace emulator
