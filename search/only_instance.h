#pragma once

#include <QPointer>
#include <QWidget>

namespace search {

/// The one window of a class: `only` while it lives and is not on its way out, else a new one,
/// which `only` then points at. Destroying the window clears the pointer.
template <class Form>
Form* onlyInstance(QPointer<Form>& only, QWidget* parent) {
    if (only.isNull() || only->isLeaving())
        only = new Form(parent);
    return only;
}

}  // namespace search
