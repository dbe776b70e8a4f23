#pragma once

#include <map>

#include "vatchange/form/change_form.h"

namespace vatchange {

/// The search windows behind the form's "Haku" and "Tuotehaku" buttons. They stay open beside the
/// form, so that numbers can also be dragged from them into its range edits, and are kept (with
/// their place, filter and ordering) until the form is closed.
std::map<SearchKind, Chooser> searchWindows();

}  // namespace vatchange
