#pragma once
#include <QWidget>
#include "data/engine/engine.h"
