#pragma once

#include "platform/schedule/task_scheduler.h"

namespace platform {

/// The scheduler of this system.
TaskScheduler& systemScheduler();

}  // namespace platform
