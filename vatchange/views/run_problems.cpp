#include "vatchange/views/run_problems.h"

#include "framework/ui/dialogs.h"
#include "vatchange/journal/run_refused.h"

namespace vatchange {

bool reportProblems(QWidget* parent, const std::function<void()>& work) {
    return framework::reportErrors(parent, [&] {
        try {
            work();
        } catch (const RunRefused& refused) {
            throw std::runtime_error(refused.finnish().toStdString());
        }
    });
}

}  // namespace vatchange
