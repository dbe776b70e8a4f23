#include "platform/schedule/task_scheduler.h"

#include "platform/schedule/system_scheduler.h"

namespace platform {

namespace {
TaskScheduler* current = nullptr;
}

TaskScheduler& TaskScheduler::instance() {
    return current != nullptr ? *current : systemScheduler();
}

TaskScheduler* TaskScheduler::setInstance(TaskScheduler* scheduler) {
    TaskScheduler* previous = current;
    current = scheduler;
    return previous;
}

}  // namespace platform
