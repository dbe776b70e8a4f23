#include <QWidget>
#include "data/engine.h"
#include "vatchange/rules/rounding.h"
